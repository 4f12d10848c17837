// What the system does for temporary files.
#include "platform/TempFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/MemoryPages.h"

#include "tests/Scratch.h"

namespace RynCommon::platform {
namespace {

namespace fs = std::filesystem;

class TempFilesTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return folder_.path(name); }

    const ScratchFolder folder_;
    const std::string& directory_ = folder_.path();
};

TEST_F(TempFilesTest, DirectoryComesFromTheEnvironment) {
    const std::pair<std::optional<std::string>, std::string> rows[] = {
        {{}, "/tmp/"}, {"", "/tmp/"}, {"/var/tmp", "/var/tmp/"}, {"/x/", "/x/"}, {"/", "/"},
    };
    for (const auto& [variable, expected] : rows) {
        const ScopedVariable environment("TMPDIR", variable);
        EXPECT_EQ(getTempDirectory(), expected);
    }
}

TEST_F(TempFilesTest, CreatesNewFilesOnly) {
    std::ofstream(path("file")) << "content";
    ASSERT_EQ(symlink(path("target").c_str(), path("dangling").c_str()), 0);
    ASSERT_EQ(symlink(path("file").c_str(), path("link").c_str()), 0);
    const struct {
        std::string path;
        std::errc expected;
    } rows[] = {
        {path("file"), std::errc::file_exists},
        {path("dangling"), std::errc::file_exists},
        {path("link"), std::errc::file_exists},
        {directory_, std::errc::file_exists},
        {path("missing/file"), std::errc::no_such_file_or_directory},
        {path("file/file"), std::errc::not_a_directory},
        {path("n") + std::string("\0ul", 3), std::errc::invalid_argument},
        {"", std::errc::no_such_file_or_directory},
    };
    for (const auto& row : rows) EXPECT_EQ(createNewFile(row.path), row.expected) << row.path;
    EXPECT_FALSE(fs::exists(path("target")));
    EXPECT_FALSE(fs::exists(path("n")));
    EXPECT_EQ(fs::file_size(path("file")), 7U);

    EXPECT_FALSE(createNewFile(path("new")));
    struct stat status {};
    ASSERT_EQ(stat(path("new").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    EXPECT_EQ(status.st_size, 0);
}

TEST_F(TempFilesTest, WritesRegularFilesOnly) {
    std::ofstream(path("file")) << "a long content";
    ASSERT_EQ(symlink(path("file").c_str(), path("link").c_str()), 0);
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    std::error_code error;
    for (const std::string& refused : {path("link"), path("fifo"), directory_, std::string()}) {
        EXPECT_EQ(openTempFile(refused, error), nullptr) << refused;
        EXPECT_TRUE(error) << refused;
    }
    for (const char* name : {"file", "new"}) {
        *openTempFile(path(name), error) << "text";
        EXPECT_FALSE(error);
        EXPECT_EQ(fs::file_size(path(name)), 4U) << name;
    }
}

TEST_F(TempFilesTest, RemovesFilesNeverDirectories) {
    std::ofstream(path("file")) << "x";
    fs::create_directory(path("directory"));
    ASSERT_EQ(symlink(path("file").c_str(), path("link").c_str()), 0);
    ASSERT_EQ(symlink(path("nowhere").c_str(), path("dangling").c_str()), 0);
    ASSERT_EQ(symlink(path("directory").c_str(), path("to-directory").c_str()), 0);
    for (const std::string& gone :
         {path("dangling"), path("link"), path("to-directory"), path("missing"), path("no/file"),
          path("file/x"), path("long") + std::string(300, 'g'), std::string()}) {
        EXPECT_FALSE(removeFile(gone)) << gone;
        struct stat status {};
        EXPECT_NE(lstat(gone.c_str(), &status), 0) << gone;
    }
    EXPECT_FALSE(removeFile(path("file") + std::string(1, '\0')));
    EXPECT_TRUE(fs::exists(path("file")));
    EXPECT_EQ(removeFile(path("directory")), std::errc::is_a_directory);
    EXPECT_TRUE(fs::exists(path("directory")));
    EXPECT_FALSE(removeFile(path("file")));
    EXPECT_FALSE(fs::exists(path("file")));
}

TEST(MemoryPagesTest, PagesAreAlignedAndZero) {
    for (int i = 0; i < 3; ++i) {
        auto* const page = static_cast<char*>(mapLargePage());
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(page) % LARGE_PAGE, 0U);
        EXPECT_EQ(page[0] + page[LARGE_PAGE - 1], 0);
        page[LARGE_PAGE - 1] = 'x';
        unmapLargePage(page);
    }
}

}  // namespace
}  // namespace RynCommon::platform
