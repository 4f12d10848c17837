// Temporary files: names, ownership, removal, inflation.
#include <RynCommon/RyError.h>
#include <RynCommon/RyString.h>
#include <RynCommon/RyTempFile.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "tests/Scratch.h"
#include "tests/Text.h"
#include "tests/streams/DeflateData.h"

namespace RynCommon {
namespace {

namespace fs = std::filesystem;

bool exists(const UnicodeString& path) {
    return fs::exists(fs::symlink_status(s(path)));
}

class TempFileTest : public testing::Test {
protected:
    explicit TempFileTest(const std::string& parent = testing::TempDir()) : folder_(parent) {}

    RyCStr create(const char* prefix = nullptr, const char* suffix = nullptr) const {
        return RyTempFile::getTempFile(directory_.c_str(), prefix, suffix);
    }

    const ScratchFolder folder_;
    const std::string directory_ = folder_.path("");
};

std::string processPart() {
    char text[32];
    std::snprintf(text, sizeof text, "%03lx_", static_cast<unsigned long>(getpid()));
    return text;
}

/// The counter in a name that ends with it.
unsigned counterOf(const RyCStr& path) {
    const std::string text = path.c_str();
    return static_cast<unsigned>(std::stoul(text.substr(text.size() - 4), nullptr, 16));
}

std::string nameAfter(unsigned counter, unsigned steps) {
    char text[8];
    std::snprintf(text, sizeof text, "%04x", (counter + steps) & 0xFFFFu);
    return processPart() + text;
}

TEST_F(TempFileTest, NamesAreMadeOfTheirParts) {
    const RyCStr first = create("pdf");
    const unsigned counter = counterOf(first);
    EXPECT_EQ(std::string(first), directory_ + "pdf" + nameAfter(counter, 0));
    struct stat status {};
    ASSERT_EQ(stat(first, &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    EXPECT_EQ(status.st_size, 0);

    const UnicodeString dir = u(directory_);
    const UnicodeString& none = RyBogusString::BOGUS_VALUE;
    const std::string temp = RyTempFile::getTempDirectory().c_str();
    EXPECT_EQ(temp.back(), '/');
    const std::tuple<const char*, RyCStr, std::string> rows[] = {
        {"no suffix", create("p"), directory_ + "p" + nameAfter(counter, 1)},
        {"neither", create(), directory_ + nameAfter(counter, 2)},
        {"texts", RyTempFile::getTempFile(dir, u"é", u".ü"),
         directory_ + "é" + nameAfter(counter, 3) + ".ü"},
        {"no directory", RyTempFile::getTempFile(nullptr, "p", nullptr),
         temp + "p" + nameAfter(counter, 4)},
        {"bogus directory", RyTempFile::getTempFile(none, u"p", u""),
         temp + "p" + nameAfter(counter, 5)},
        {"part of a name for a directory",
         RyTempFile::getTempFile((directory_ + "tmp").c_str(), "x", nullptr),
         directory_ + "tmpx" + nameAfter(counter, 6)},
        {"empty directory", RyTempFile::getTempFile(UnicodeString(), u(directory_ + "e"), none),
         directory_ + "e" + nameAfter(counter, 7)},
    };
    for (const auto& [what, path, expected] : rows) {
        EXPECT_EQ(std::string(path), expected) << what;
        EXPECT_TRUE(exists(path)) << what;
        EXPECT_TRUE(RyTempFile::removeTempFile(path)) << what;
    }
}

TEST_F(TempFileTest, TakenNamesAreLeftAlone) {
    const unsigned counter = counterOf(create());
    std::ofstream(directory_ + nameAfter(counter, 1)) << "kept";
    fs::create_directory(directory_ + nameAfter(counter, 2));
    fs::create_symlink(directory_ + "target", directory_ + nameAfter(counter, 3));
    const RyCStr path = create();
    EXPECT_EQ(std::string(path), directory_ + nameAfter(counter, 4));
    EXPECT_EQ(fs::file_size(directory_ + nameAfter(counter, 1)), 4U);
    EXPECT_FALSE(fs::exists(directory_ + "target"));
}

/// Expects the error of creating or removing `path`.
template <class Action>
void expectError(unsigned short code, const std::string& message, const char* reason,
                 Action action) {
    try {
        action();
        FAIL() << message;
    } catch (const RyError& error) {
        EXPECT_EQ(error.getErrorCode(), code);
        EXPECT_TRUE(s(error.getMessage()).starts_with(message)) << s(error.getMessage());
        EXPECT_TRUE(s(error.getMessage()).ends_with(reason)) << s(error.getMessage());
        EXPECT_EQ(s(error.getSource()), "RynCommon::RyTempFile");
    }
}

TEST_F(TempFileTest, TellsWhatCannotBeCreated) {
    RyTempFile file(directory_.c_str(), "p", nullptr);
    const RyCStr path = file.getFileName();
    const std::string missing = directory_ + "missing/";
    expectError(4110, "Cannot create temporary file: " + missing + "p" + processPart(),
                " (cannot create)\nNo such file or directory",
                [&] { file.setFileName(missing.c_str(), "p", nullptr); });
    EXPECT_FALSE(exists(path));
    EXPECT_FALSE(file.isTempFile());
    EXPECT_THROW(RyTempFile(u(directory_), UnicodeString(u"\0", 1), u""), RyError);
    EXPECT_TRUE(fs::is_empty(directory_));
}

/// 65,536 names take a disk much longer than memory.
class CrowdedTempFileTest : public TempFileTest {
protected:
    CrowdedTempFileTest()
        : TempFileTest(fs::is_directory("/dev/shm") ? "/dev/shm/" : testing::TempDir()) {}
};

TEST_F(CrowdedTempFileTest, GivesUpWhenAllNamesAreTaken) {
    for (unsigned i = 0; i <= 0xFFFF; ++i)
        ASSERT_EQ(symlink("nowhere", (directory_ + nameAfter(i, 0)).c_str()), 0);
    expectError(4110, "Cannot create temporary file: " + directory_ + processPart(), "",
                [&] { create(); });
}

TEST_F(TempFileTest, ObjectsOwnTheirFiles) {
    RyCStr path;
    {
        const RyTempFile file(directory_.c_str(), "a", ".tmp");
        path = file.getFileName();
        EXPECT_TRUE(file.isTempFile());
        EXPECT_TRUE(exists(path));
    }
    EXPECT_FALSE(exists(path));
    {
        RyTempFile file(u(directory_), u"b", u"");
        path = file.releaseFileName();
        EXPECT_FALSE(file.isTempFile());
        EXPECT_TRUE(file.getFileName().isEmpty());
    }
    EXPECT_TRUE(exists(path));
    {
        RyTempFile file;
        EXPECT_EQ(file.setFileName(path), path);
        const RyCStr second = file.setFileName(directory_.c_str(), "c", nullptr);
        EXPECT_FALSE(exists(path));
        file.remove();
        EXPECT_FALSE(exists(second));
        EXPECT_TRUE(file.isTempFile());
        file.setFileName(static_cast<const char*>(nullptr));
        EXPECT_FALSE(file.isTempFile());
    }
    EXPECT_TRUE(fs::is_empty(directory_));
}

TEST_F(TempFileTest, TellsWhatCannotBeRemoved) {
    const std::string message = "Cannot remove temporary file: " + directory_ + ": ";
    RyTempFile file;
    file.setFileName(directory_.c_str());
    expectError(4109, message, "", [&] { file.remove(); });
    expectError(4109, message, "", [&] { file.setFileName("other"); });
    expectError(4109, message, "", [&] { RyTempFile().setFileName(directory_.c_str()); });
    EXPECT_EQ(std::string(file.releaseFileName()), directory_);
    EXPECT_FALSE(RyTempFile::removeTempFile(directory_.c_str()));
    EXPECT_TRUE(RyTempFile::removeTempFile((directory_ + "missing").c_str()));
    EXPECT_TRUE(fs::exists(directory_));
    // A second exception would end the process.
    EXPECT_THROW(
        {
            RyTempFile unwound;
            unwound.setFileName(directory_.c_str());
            throw std::runtime_error("first");
        },
        std::runtime_error);
}

TEST_F(TempFileTest, ThreadsNeverShareAName) {
    constexpr int THREADS = 8;
    constexpr int NAMES = 200;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < THREADS; ++thread) {
        threads.emplace_back([this] {
            for (int i = 0; i < NAMES; ++i) create("t");
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::distance(fs::directory_iterator(directory_), {}), THREADS * NAMES);
}

std::vector<unsigned char> deflateBytes(const std::string& text) {
    const std::string bytes = deflateData(text);
    return {bytes.begin(), bytes.end()};
}

TEST_F(TempFileTest, InflatesRawData) {
    const auto inflate = [](std::ostream& out, const std::vector<unsigned char>& data) {
        return RyTempFile::inflate(out, data.data(), static_cast<unsigned int>(data.size()));
    };
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 100'000U}) {
        std::vector<unsigned char> data = deflateBytes(makeText(size));
        data.push_back('x');
        std::ostringstream out;
        EXPECT_TRUE(inflate(out, data)) << size;
        EXPECT_EQ(out.str(), makeText(size));
    }
    std::vector<unsigned char> data = deflateBytes(makeText(20'000));
    std::ostringstream failed;
    failed.setstate(std::ios_base::badbit);
    EXPECT_FALSE(inflate(failed, data));
    std::ostream throwing(nullptr);
    EXPECT_THROW(throwing.exceptions(std::ios_base::badbit), std::ios_base::failure);
    EXPECT_FALSE(inflate(throwing, data));
    EXPECT_FALSE(RyTempFile::inflate(std::cout, nullptr, 5));
    data.resize(data.size() / 2);
    std::ostringstream cut;
    EXPECT_FALSE(inflate(cut, data));
    EXPECT_EQ(cut.str(), makeText(20'000).substr(0, cut.str().size()));
    EXPECT_GT(cut.str().size(), 8'000U);
}

TEST_F(TempFileTest, InflatesIntoItsFile) {
    const RyTempFile file(directory_.c_str(), "f", nullptr);
    const std::vector<unsigned char> data = deflateBytes(makeText(7));
    const auto size = static_cast<unsigned int>(data.size());
    std::ofstream(file.getFileName().c_str()) << makeText(50'000);
    EXPECT_TRUE(file.inflate(data.data(), size));
    EXPECT_EQ(fs::file_size(file.getFileName().c_str()), 7U);
    EXPECT_FALSE(file.inflate(data.data(), size / 2));
    EXPECT_FALSE(RyTempFile().inflate(data.data(), size));
    RyTempFile other;
    other.setFileName((directory_ + "missing/file").c_str());
    EXPECT_FALSE(other.inflate(data.data(), size));
}

TEST(CStrTest, NarrowFormIsUtf8) {
    RyCStr text(UnicodeString(u"aé漢\U0001F600"));
    EXPECT_STREQ(text, "aé漢😀");
    const RyCStr copy = text;
    text.append(u'b');
    EXPECT_STREQ(text, "aé漢😀b");
    EXPECT_STREQ(copy, "aé漢😀");
    EXPECT_STREQ(RyCStr(RyBogusString::BOGUS_VALUE), "");
}

}  // namespace
}  // namespace RynCommon
