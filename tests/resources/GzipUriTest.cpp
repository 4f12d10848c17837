// Telling gzip data and inflating it by URI and by stream.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <tuple>

#include "tests/resources/Fetching.h"
#include "tests/streams/DeflateData.h"

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

const std::tuple<const char*, std::string, bool> HEADERS[] = {
    {"empty", "", false},
    {"three bytes", "\x1F\x8B\x08", false},
    {"four bytes", std::string("\x1F\x8B\x08\x00", 4), true},
    {"known flags", "\x1F\x8B\x08\x1F", true},
    {"reserved flag 20", "\x1F\x8B\x08\x20", false},
    {"another method", "\x1F\x8B\x07\x01", false},
    {"another magic number", "\x1F\x9D\x08\x01", false},
    {"compressed", deflateData("data", Wrapper::Gzip), true},
};

TEST(GzipUriTest, LooksWithoutMovingTheStream) {
    for (const auto& [what, bytes, isGzip] : HEADERS) {
        std::istringstream seekable(bytes);
        seekable.seekg(static_cast<std::streamoff>(bytes.size() / 2));
        seekable.setstate(std::ios_base::eofbit);
        EXPECT_EQ(RyUri::isGzip(seekable), isGzip) << what;
        EXPECT_EQ(seekable.rdstate(), std::ios_base::eofbit) << what;
        seekable.clear();
        EXPECT_EQ(readInSteps(seekable, 4096), bytes.substr(bytes.size() / 2)) << what;

        NarrowBuf buffer(bytes);
        std::istream narrow(&buffer);
        EXPECT_EQ(RyUri::isGzip(narrow), isGzip) << what;
        EXPECT_EQ(narrow.rdstate(), std::ios_base::goodbit) << what;
        EXPECT_EQ(readInSteps(narrow, 4096), bytes) << what;

        NarrowBuf again(bytes);
        std::istream packed(&again);
        const std::unique_ptr<std::istream> in(RyUri::getGzipStream(packed));
        EXPECT_EQ(in != nullptr, isGzip) << what;
        if (in && bytes.size() > 4) {
            EXPECT_EQ(readInSteps(*in, 4096), "data") << what;
        }
    }
    std::istream bufferless(nullptr);
    EXPECT_FALSE(RyUri::isGzip(bufferless));
}

TEST(GzipUriTest, InflatesByUri) {
    const std::string text = makeRandom(100'000);
    const std::string packed = deflateData(text, Wrapper::Gzip);
    const ScratchFolder folder;
    const std::pair<std::string, bool> rows[] = {
        {folder.write("a.gz", packed), true},
        {folder.write("a.txt", text), false},
        {folder.write("empty", ""), false},
        {"data:;base64,H4sIAAAAAAAAA0tMSgYAwkEkNQMAAAA=", true},
        {"/no/such", false},
    };
    for (const auto& [name, isGzip] : rows) {
        const RyUri uri(u(name));
        EXPECT_EQ(uri.isGzip(), isGzip) << name;
        const std::unique_ptr<std::istream> in(uri.getGzipStream());
        const std::string expected = uri.isDataScheme() ? "abc" : text;
        EXPECT_TRUE((in ? readInSteps(*in, 4096) : "(none)") == (isGzip ? expected : "(none)"))
            << name;
    }
}

}  // namespace
}  // namespace RynCommon
