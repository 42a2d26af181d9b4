#include "xml/file_io.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <system_error>

#include "core/text.h"
#include "xml/xml_chars.h"

namespace qm::io {
namespace {

struct FileCloser {
    void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File Open(const std::filesystem::path& path, const char* mode) { return File(OpenFile(path, mode)); }

std::u16string DecodeUtf16(std::string_view bytes, bool bigEndian) {
    std::u16string out;
    out.reserve(bytes.size() / 2);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        auto hi = static_cast<unsigned char>(bytes[bigEndian ? i : i + 1]);
        auto lo = static_cast<unsigned char>(bytes[bigEndian ? i + 1 : i]);
        out.push_back(static_cast<char16_t>((hi << 8) | lo));
    }
    return out;
}

// The path as UTF-8 on every platform (Windows paths are wide).
std::string PathUtf8(const std::filesystem::path& path) {
    const std::u8string utf8 = path.u8string();
    return std::string(utf8.begin(), utf8.end());
}

}  // namespace

FileError::FileError(const std::filesystem::path& path, const std::string& what)
    : std::runtime_error(PathUtf8(path) + ": " + what), path_(path) {}

std::string ReadFileBytes(const std::filesystem::path& path) {
    File f = Open(path, "rb");
    if (!f) throw FileError(path, "cannot open the file for reading");
    std::string bytes;
    char buffer[1 << 16];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f.get())) > 0) bytes.append(buffer, n);
    if (std::ferror(f.get())) throw FileError(path, "cannot read the file");
    return bytes;
}

std::filesystem::path TemporaryBeside(const std::filesystem::path& path) {
    static std::atomic<unsigned> counter{0};
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    std::filesystem::path temp = path;
    temp += ".tmp" + std::to_string(stamp % 1000000007) + "-" + std::to_string(counter++);
    return temp;
}

void WriteNewContent(const std::filesystem::path& file, std::string_view bytes, bool flush,
                     const std::filesystem::path& reported) {
    File f = Open(file, "wb");
    if (!f) throw FileError(reported, "cannot create a temporary file beside it");
    bool ok = std::fwrite(bytes.data(), 1, bytes.size(), f.get()) == bytes.size();
    ok = ok && std::fflush(f.get()) == 0;
    if (ok && flush) SyncFile(f.get());
    ok = ok && !std::ferror(f.get());
    if (std::fclose(f.release()) != 0) ok = false;
    if (!ok) {
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
        throw FileError(reported, "cannot write the file (is the disk full?)");
    }
}

void WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes, bool flush) {
    const std::filesystem::path temp = TemporaryBeside(path);
    WriteNewContent(temp, bytes, flush, path);
    MoveIntoPlace(temp, path);
}

void MoveIntoPlace(const std::filesystem::path& temp, const std::filesystem::path& path) {
    if (std::string error; !RenameOver(temp, path, error)) {
        std::error_code ignored;
        std::filesystem::remove(temp, ignored);
        throw FileError(path, "cannot replace the file: " + error);
    }
}

std::u16string DecodeXmlBytes(std::string_view bytes) {
    auto at = [&](size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0x100u; };
    if (at(0) == 0xFF && at(1) == 0xFE) return DecodeUtf16(bytes.substr(2), false);
    if (at(0) == 0xFE && at(1) == 0xFF) return DecodeUtf16(bytes.substr(2), true);
    if (at(0) == 0xEF && at(1) == 0xBB && at(2) == 0xBF) return xml::Utf8ToUtf16(bytes.substr(3));
    if (at(0) == '<' && at(1) == 0) return DecodeUtf16(bytes, false);
    if (at(0) == 0 && at(1) == '<') return DecodeUtf16(bytes, true);
    return xml::Utf8ToUtf16(bytes);
}

std::string EncodeUtf16Le(std::u16string_view text) {
    std::string out;
    out.resize(text.size() * 2);
    for (size_t i = 0; i < text.size(); ++i) {
        out[2 * i] = static_cast<char>(text[i] & 0xFF);
        out[2 * i + 1] = static_cast<char>(text[i] >> 8);
    }
    return out;
}

}  // namespace qm::io
