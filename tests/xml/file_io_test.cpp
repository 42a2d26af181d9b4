#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "xml/file_io.h"

namespace qm::io {
namespace {

namespace fs = std::filesystem;

fs::path ScratchDir(const std::string& name) {
    fs::path dir = fs::temp_directory_path() / ("quillmark-file-io-" + name);
    fs::remove_all(dir);
    fs::create_directories(dir);
    return dir;
}

TEST(FileIo, DecodesEveryEncodingOurFilesArriveIn) {
    const std::u16string expected = u"<a>\u00e9</a>";
    struct Case {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"utf-8", "<a>\xC3\xA9</a>"},
        {"utf-8 with mark", "\xEF\xBB\xBF<a>\xC3\xA9</a>"},
        {"utf-16le with mark", std::string("\xFF\xFE", 2) + EncodeUtf16Le(expected)},
        {"utf-16le without mark", EncodeUtf16Le(expected)},
        {"utf-16be with mark", std::string("\xFE\xFF\0<\0a\0>\0\xE9\0<\0/\0a\0>", 18)},
    };
    for (const Case& c : cases) EXPECT_EQ(DecodeXmlBytes(c.bytes), expected) << c.what;
}

TEST(FileIo, AtomicWriteReplacesTheFileAndLeavesNoTemporary) {
    fs::path dir = ScratchDir("write");
    fs::path file = dir / "list.xml";
    WriteFileAtomically(file, "first");
    WriteFileAtomically(file, "second");
    EXPECT_EQ(ReadFileBytes(file), "second");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
}

TEST(FileIo, FailuresNameTheFileAndKeepTheOldOne) {
    fs::path dir = ScratchDir("fail");
    EXPECT_THROW(ReadFileBytes(dir / "missing.xml"), FileError);
    try {
        WriteFileAtomically(dir / "no-such-folder" / "list.xml", "x");
        FAIL() << "write into a missing folder succeeded";
    } catch (const FileError& e) {
        EXPECT_NE(std::string(e.what()).find("list.xml"), std::string::npos) << e.what();
    }
}

}  // namespace
}  // namespace qm::io
