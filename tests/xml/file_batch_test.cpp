#include "xml/file_batch.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "xml/file_io.h"

namespace qm::io {
namespace {

namespace fs = std::filesystem;

fs::path EmptyFolder(const char* name) {
    const fs::path dir = fs::temp_directory_path() / name;
    fs::remove_all(dir);
    fs::create_directories(dir);
    return dir;
}

std::ptrdiff_t FilesIn(const fs::path& dir) {
    return std::distance(fs::directory_iterator(dir), fs::directory_iterator());
}

TEST(FileBatch, ReplacesAtOnceFlushesLaterAndNamesAFileItCannotWrite) {
    const fs::path dir = EmptyFolder("quillmark-file-batch");
    FileBatch batch;
    batch.Replace(dir / "a.xml", "first");
    batch.Replace(dir / "a.xml", "second");
    for (int i = 0; i < 40; ++i) batch.Replace(dir / ("p" + std::to_string(i) + ".xml"), std::to_string(i));
    EXPECT_EQ(ReadFileBytes(dir / "a.xml"), "second");  // readable before the flush
    EXPECT_FALSE(batch.empty());
    batch.Sync();
    EXPECT_TRUE(batch.empty());
    EXPECT_EQ(ReadFileBytes(dir / "p39.xml"), "39");
    EXPECT_EQ(FilesIn(dir), 41) << "no temporaries left";
    try {
        batch.Replace(dir / "missing" / "b.xml", "x");
        FAIL() << "wrote into a missing folder";
    } catch (const FileError& e) {
        EXPECT_NE(std::string(e.what()).find("b.xml"), std::string::npos) << e.what();
    }
    fs::remove_all(dir);
}

// A replaced file may live on as the next temporary file: never one with another name.
TEST(FileBatch, NeverWritesOverAReplacedFileThatHasAnotherName) {
    const fs::path dir = EmptyFolder("quillmark-file-batch-links");
    {
        FileBatch batch;
        batch.Replace(dir / "linked.xml", "old");
        batch.Replace(dir / "next.xml", "first");
        fs::create_hard_link(dir / "linked.xml", dir / "other-name.xml");
        batch.Replace(dir / "linked.xml", "new");
        batch.Replace(dir / "next.xml", "second");
        batch.Replace(dir / "next.xml", "third");
        EXPECT_EQ(ReadFileBytes(dir / "linked.xml"), "new");
        EXPECT_EQ(ReadFileBytes(dir / "other-name.xml"), "old");
        EXPECT_EQ(ReadFileBytes(dir / "next.xml"), "third");
    }
    EXPECT_EQ(FilesIn(dir), 3) << "no temporaries left";
    fs::remove_all(dir);
}

}  // namespace
}  // namespace qm::io
