// Readers over files and streams: what opens, reading and seeking, writing.
#include <RynCommon/JZIOobj.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>
#include <tuple>

#include "tests/Scratch.h"
#include "tests/Text.h"
#include "tests/streams/ByteSources.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {
namespace {

class JZIOobjTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return folder_.path(name); }

    const ScratchFolder folder_;
    const std::string& directory_ = folder_.path();
};

TEST_F(JZIOobjTest, OpensRegularFilesOnly) {
    std::ofstream(path("file")) << "x";
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    ASSERT_EQ(symlink("/dev/zero", path("zero").c_str()), 0);
    const std::tuple<std::string, const char*, bool> rows[] = {
        {path("file"), "rb", true},
        {path("\xC3\xA9"), "wb", true},
        {path("file") + std::string(1, '\0'), "rb", false},
        {path("file"), "r", false},
        {path("file"), nullptr, false},
        {"", "rb", false},
        {directory_, "rb", false},
        {directory_, "wb", false},
        {path("fifo"), "rb", false},
        {path("zero"), "rb", false},
    };
    for (const auto& [name, mode, opens] : rows)
        EXPECT_EQ(JZFileIOobj(u(name), mode).isOpen(), opens)
            << name << " " << testing::PrintToString(mode);
    EXPECT_FALSE(JZFileIOobj(static_cast<const char*>(nullptr), "rb").isOpen());
}

void readAnywhere(JZIOobj& io, const std::string& content) {
    std::size_t at = 0;
    std::string buffer(20'000, '\0');
    for (const std::size_t count : {0UL, 1UL, 4095UL, 4096UL, 4097UL, 20'000UL}) {
        for (std::size_t step = 0; step < 40; ++step) {
            if (step % 3 == 0) {
                at = (at * 31 + step * 977 + count) % (content.size() + 1);
                ASSERT_TRUE(io.seek(static_cast<std::int64_t>(at), SEEK_SET));
            }
            const std::size_t got = io.read(buffer.data(), count);
            ASSERT_EQ(got, std::min(count, content.size() - at));
            ASSERT_EQ(buffer.substr(0, got), content.substr(at, got)) << at << " " << count;
            at += got;
        }
    }
}

TEST_F(JZIOobjTest, ReadsAndSeeksAlike) {
    const std::string content = makeText(50'000);
    std::ofstream(path("file"), std::ios::binary) << content;
    std::istringstream text(content);
    std::istringstream throwing(content);
    throwing.exceptions(std::ios_base::eofbit | std::ios_base::failbit);
    JZFileIOobj file(path("file").c_str(), "rb");
    JZStreamIOobj overText(text);
    JZStreamIOobj overThrowing(throwing);
    for (JZIOobj* const io : std::initializer_list<JZIOobj*>{&file, &overText, &overThrowing}) {
        ASSERT_TRUE(io->isOpen());
        readAnywhere(*io, content);
        char byte = 0;
        const std::tuple<std::int64_t, int, bool, std::size_t> rows[] = {
            {0, SEEK_SET, true, 0},       {10, SEEK_CUR, true, 10},
            {-11, SEEK_CUR, false, 10},   {-1, SEEK_SET, false, 10},
            {-1, SEEK_END, true, 49'999}, {-50'001, SEEK_END, false, 49'999},
            {5, 3, false, 49'999},        {5, -1, false, 49'999},
            {-50'000, SEEK_END, true, 0}, {50'000, SEEK_SET, true, 50'000},
        };
        for (const auto& [offset, whence, sought, position] : rows) {
            EXPECT_EQ(io->seek(offset, whence), sought) << offset;
            const bool inside = position < content.size();
            ASSERT_EQ(io->read(&byte, 1), inside ? 1U : 0U) << offset;
            if (inside) {
                EXPECT_EQ(byte, content[position]) << offset;
                ASSERT_TRUE(io->seek(-1, SEEK_CUR));
            }
        }
        EXPECT_TRUE(io->isOpen());
        EXPECT_EQ(io->read(nullptr, 3), 0U);
    }
    EXPECT_FALSE(file.seek(50'001, SEEK_SET));
    EXPECT_FALSE(file.seek(std::numeric_limits<std::int64_t>::max(), SEEK_CUR));
    EXPECT_EQ(file.write("x", 1), 0U);
}

TEST_F(JZIOobjTest, AFileThatGrowsIsReadOn) {
    std::ofstream(path("file")) << "ab";
    JZFileIOobj file(path("file").c_str(), "rb");
    EXPECT_FALSE(file.seek(3, SEEK_SET));
    std::ofstream(path("file"), std::ios::app) << "cd";
    ASSERT_TRUE(file.seek(3, SEEK_SET));
    char byte = 0;
    EXPECT_EQ(file.read(&byte, 1), 1U);
    EXPECT_EQ(byte, 'd');
}

TEST_F(JZIOobjTest, WritesAtPositions) {
    std::ofstream(path("file")) << "what was there before";
    JZFileIOobj file(path("file").c_str(), "wb");
    EXPECT_EQ(file.write("abcdef", 6), 6U);
    ASSERT_TRUE(file.seek(1, SEEK_SET));
    EXPECT_EQ(file.write("XY", 2), 2U);
    ASSERT_TRUE(file.seek(2, SEEK_END));
    EXPECT_EQ(file.write("z", 1), 1U);
    char byte = 0;
    EXPECT_EQ(file.read(&byte, 1), 0U);
    EXPECT_FALSE(file.seek(-1, SEEK_SET));
    EXPECT_TRUE(file.close());
    EXPECT_EQ(folder_.read("file"), std::string("aXYdef\0\0z", 9));
    EXPECT_FALSE(file.isOpen());
    EXPECT_FALSE(file.close());
    EXPECT_EQ(file.write("x", 1), 0U);
    EXPECT_FALSE(file.seek(0, SEEK_SET));
}

TEST_F(JZIOobjTest, StreamsThatAreBadAreClosed) {
    std::istream none(nullptr);
    EXPECT_FALSE(JZStreamIOobj(none).isOpen());
    BreakingSource buffer;
    for (const bool tells : {false, true}) {
        std::istream broken(&buffer);
        if (tells) broken.exceptions(std::ios_base::badbit);
        JZStreamIOobj io(broken);
        EXPECT_TRUE(io.isOpen());
        char byte = 0;
        EXPECT_EQ(io.read(&byte, 1), 0U);
        EXPECT_FALSE(io.isOpen());
        EXPECT_FALSE(io.seek(0, SEEK_SET));
    }
}

}  // namespace
}  // namespace RynCommon
