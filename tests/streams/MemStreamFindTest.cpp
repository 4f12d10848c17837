// The search kernels against the standard library's search.
#include "streams/MemStreamFind.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace RynCommon {
namespace {

/// Bytes in a block of exactly their size, so that a sanitizer sees a read past either end.
struct Exact {
    explicit Exact(std::string_view text) : block(text.begin(), text.end()) {}
    std::string_view get() const { return {block.data(), block.size()}; }

    std::vector<char> block;
};

TEST(MemStreamFindTest, FindsAtEveryPlaceInTextsOfEveryLength) {
    const std::string pattern = "pattern of some forty bytes, more or less";
    for (const std::size_t length : {1U, 2U, 3U, 8U, 33U, 41U}) {
        const std::string wanted = pattern.substr(0, length);
        for (std::size_t size = 0; size < 140; ++size) {
            EXPECT_EQ(BytePattern(wanted).find(Exact(std::string(size, '-')).get()),
                      BytePattern::NOT_FOUND);
            for (std::size_t at = 0; at + length <= size; ++at) {
                std::string text(size, '-');
                // What comes before has the ends of the pattern and not its middle.
                if (length > 2 && at >= length) {
                    text[at - length] = wanted.front();
                    text[at - 1] = wanted.back();
                }
                text.replace(at, length, wanted);
                ASSERT_EQ(BytePattern(wanted).find(Exact(text).get()), at)
                    << "length " << length << ", size " << size;
            }
        }
    }
}

/// Texts full of near misses use up the credit; what is found must not depend on that.
TEST(MemStreamFindTest, NearMissesChangeNothing) {
    const std::tuple<const char*, std::string, std::string> rows[] = {
        {"absent", std::string(100'000, 'a'), std::string(500, 'a') + "b" + std::string(500, 'a')},
        {"at the end", std::string(99'000, 'a') + "b" + std::string(700, 'a'),
         std::string(500, 'a') + "b" + std::string(500, 'a')},
        {"runs only", std::string(5000, 'a'), std::string(5000, 'a')},
    };
    for (const auto& [what, text, pattern] : rows) {
        const std::size_t expected = text.find(pattern);
        BytePattern search(pattern);
        // Again with what the first search left of the credit.
        EXPECT_EQ(search.find(Exact(text).get()), expected) << what;
        EXPECT_EQ(search.find(Exact(text).get()), expected) << what;
    }
}

}  // namespace
}  // namespace RynCommon
