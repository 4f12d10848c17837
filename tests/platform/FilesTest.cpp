// Files by path: what opens, what does not, reading, seeking, writing.
#include "platform/Files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/Scratch.h"

namespace RynCommon::platform {
namespace {

class FilesTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return folder_.path(name); }

    static void write(const std::string& path, const std::string& content) {
        std::error_code error;
        const auto out = openOutputFile(path, error);
        ASSERT_NE(out, nullptr) << error.message();
        *out << content;
    }

    const ScratchFolder folder_;
    const std::string& directory_ = folder_.path();
};

std::string makePattern(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 7 + i / 251);
    return text;
}

TEST_F(FilesTest, OpensRegularFilesOnly) {
    write(path("file"), "x");
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    ASSERT_EQ(symlink(path("file").c_str(), path("link").c_str()), 0);
    ASSERT_EQ(symlink("/dev/zero", path("zero").c_str()), 0);
    const struct {
        std::string path;
        bool opens;
    } rows[] = {
        {path("file"), true},  {path("link"), true},  {path("missing"), false},
        {directory_, false},   {path("fifo"), false}, {"/dev/zero", false},
        {path("zero"), false}, {"", false},           {path("file") + std::string(1, '\0'), false},
    };
    for (const auto& row : rows) {
        std::error_code error;
        EXPECT_EQ(openInputFile(row.path, error) != nullptr, row.opens) << row.path;
        EXPECT_EQ(!error, row.opens) << row.path;
        EXPECT_EQ(isExistingFile(row.path), row.opens) << row.path;
    }
    for (const std::string& refused :
         {directory_, path("fifo"), path("zero"), path("no/dir"), std::string()}) {
        std::error_code error;
        EXPECT_EQ(openOutputFile(refused, error), nullptr) << refused;
        EXPECT_TRUE(error) << refused;
    }
}

TEST_F(FilesTest, StandardInputContinuesWhereItStands) {
    write(path("in"), "abcdef");
    const int saved = dup(STDIN_FILENO);
    ASSERT_NE(freopen(path("in").c_str(), "r", stdin), nullptr);
    ASSERT_EQ(lseek(STDIN_FILENO, 2, SEEK_SET), 2);
    std::error_code error;
    const auto in = openInputFile("/dev/stdin", error);
    ASSERT_NE(in, nullptr) << error.message();
    std::string text;
    *in >> text;
    EXPECT_EQ(text, "cdef");
    EXPECT_TRUE(isExistingFile("/dev/stdin"));
    dup2(saved, STDIN_FILENO);
    close(saved);
}

TEST_F(FilesTest, ReadsBackWhatWasWrittenInPiecesOfAnySize) {
    const std::string content = makePattern(300'000);
    for (const std::size_t piece : {1UL, 7UL, 4096UL, 65535UL, 65536UL, 65537UL, 300'000UL}) {
        {
            std::error_code error;
            const auto out = openOutputFile(path("file"), error);
            for (std::size_t i = 0; i < content.size(); i += piece) {
                const std::string part = content.substr(i, piece);
                out->write(part.data(), static_cast<std::streamsize>(part.size()));
            }
            EXPECT_EQ(out->tellp(), std::streampos(300'000));
        }
        std::error_code error;
        const auto in = openInputFile(path("file"), error);
        EXPECT_EQ(in->rdbuf()->in_avail(), 300'000);
        std::string back;
        std::string part(piece, '\0');
        while (in->read(part.data(), static_cast<std::streamsize>(piece)), in->gcount() > 0) {
            back.append(part, 0, static_cast<std::size_t>(in->gcount()));
            if (back.size() < content.size()) {
                // One byte back and again: put-back works across blocks and direct reads.
                in->unget();
                ASSERT_EQ(in->get(), static_cast<unsigned char>(back.back()));
            }
        }
        EXPECT_EQ(back, content) << piece;
        EXPECT_TRUE(in->eof());
    }
}

TEST_F(FilesTest, SeeksInsideAndOutsideOfTheBlock) {
    const std::string content = makePattern(200'000);
    write(path("file"), content);
    std::error_code error;
    const auto in = openInputFile(path("file"), error);
    for (const int position : {0, 100, 50, 70'000, 69'000, 199'999, 3, 131'072}) {
        in->seekg(position);
        EXPECT_EQ(in->tellg(), std::streampos(position));
        EXPECT_EQ(in->get(),
                  static_cast<unsigned char>(content[static_cast<std::size_t>(position)]));
        EXPECT_EQ(in->rdbuf()->sgetc() == EOF, position == 199'999);
        EXPECT_EQ(in->tellg(), std::streampos(position + 1));
    }
    in->seekg(-1, std::ios_base::end);
    EXPECT_EQ(in->get(), static_cast<unsigned char>(content.back()));
    in->seekg(-2, std::ios_base::cur);
    EXPECT_EQ(in->get(), static_cast<unsigned char>(content[199'998]));
    EXPECT_FALSE(in->seekg(-1));
}

TEST_F(FilesTest, WritingReplacesAFile) {
    write(path("file"), "a long text");
    write(path("file"), "short");
    EXPECT_EQ(std::filesystem::file_size(path("file")), 5U);
}

TEST_F(FilesTest, TellsFilesApartByInode) {
    write(path("a"), "same");
    write(path("b"), "same");
    ASSERT_EQ(link(path("a").c_str(), path("hard").c_str()), 0);
    ASSERT_EQ(symlink("a", path("soft").c_str()), 0);
    EXPECT_TRUE(isSameFile(path("a"), path("hard")));
    EXPECT_TRUE(isSameFile(path("a"), path("soft")));
    EXPECT_TRUE(isSameFile(path("a"), directory_ + "/./a"));
    EXPECT_FALSE(isSameFile(path("a"), path("b")));
    EXPECT_FALSE(isSameFile(path("missing"), path("missing")));
}

}  // namespace
}  // namespace RynCommon::platform
