// Telling gzip data and inflating it by URI and by stream.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>

#include "tests/resources/Fetching.h"

namespace RynCommon {
namespace {

/// Hands out one byte at a time, cannot seek, and takes three bytes back.
class NarrowBuf : public std::streambuf {
public:
    explicit NarrowBuf(std::string bytes) : bytes_(std::move(bytes)) {}

protected:
    int_type underflow() override {
        if (next_ >= bytes_.size()) return traits_type::eof();
        const std::size_t first = next_ - std::min<std::size_t>(next_, 3);
        setg(&bytes_[first], &bytes_[next_], &bytes_[next_] + 1);
        return traits_type::to_int_type(bytes_[next_++]);
    }

private:
    std::string bytes_;
    std::size_t next_ = 0;
};

const struct {
    const char* what;
    std::string bytes;
    bool isGzip;
} HEADERS[] = {
    {"empty", "", false},
    {"three bytes", "\x1F\x8B\x08", false},
    {"four bytes", std::string("\x1F\x8B\x08\x00", 4), true},
    {"known flags", "\x1F\x8B\x08\x1F", true},
    {"reserved flag 20", "\x1F\x8B\x08\x20", false},
    {"another method", "\x1F\x8B\x07\x01", false},
    {"another magic number", "\x1F\x9D\x08\x01", false},
    {"compressed", makeGzip("data"), true},
};

TEST(GzipUriTest, LooksWithoutMovingTheStream) {
    for (const auto& row : HEADERS) {
        std::istringstream seekable(row.bytes);
        seekable.seekg(static_cast<std::streamoff>(row.bytes.size() / 2));
        seekable.setstate(std::ios_base::eofbit);
        EXPECT_EQ(RyUri::isGzip(seekable), row.isGzip) << row.what;
        EXPECT_EQ(seekable.rdstate(), std::ios_base::eofbit) << row.what;
        seekable.clear();
        EXPECT_EQ(drain(seekable), row.bytes.substr(row.bytes.size() / 2)) << row.what;

        NarrowBuf buffer(row.bytes);
        std::istream narrow(&buffer);
        EXPECT_EQ(RyUri::isGzip(narrow), row.isGzip) << row.what;
        EXPECT_EQ(narrow.rdstate(), std::ios_base::goodbit) << row.what;
        EXPECT_EQ(drain(narrow), row.bytes) << row.what;

        NarrowBuf again(row.bytes);
        std::istream packed(&again);
        const std::unique_ptr<std::istream> in(RyUri::getGzipStream(packed));
        EXPECT_EQ(in != nullptr, row.isGzip) << row.what;
        if (in && row.bytes.size() > 4) {
            EXPECT_EQ(drain(*in), "data") << row.what;
        }
    }
    std::istream bufferless(nullptr);
    EXPECT_FALSE(RyUri::isGzip(bufferless));
}

TEST(GzipUriTest, InflatesByUri) {
    const std::string text = makeNoise(100'000);
    const std::string packed = makeGzip(text);
    const ScratchFolder folder;
    const struct {
        std::string uri;
        bool isGzip;
    } rows[] = {
        {folder.write("a.gz", packed), true},
        {folder.write("a.txt", text), false},
        {folder.write("empty", ""), false},
        {"data:;base64,H4sIAAAAAAAAA0tMSgYAwkEkNQMAAAA=", true},
        {"/no/such", false},
    };
    for (const auto& row : rows) {
        const RyUri uri(u(row.uri));
        EXPECT_EQ(uri.isGzip(), row.isGzip) << row.uri;
        const std::unique_ptr<std::istream> in(uri.getGzipStream());
        ASSERT_EQ(in != nullptr, row.isGzip) << row.uri;
        if (in) {
            EXPECT_TRUE(drain(*in) == (uri.isDataScheme() ? "abc" : text)) << row.uri;
        }
    }
}

}  // namespace
}  // namespace RynCommon
