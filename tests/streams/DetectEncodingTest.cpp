// Guessing encodings.
#include <RynCommon/RyDMCStream.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>

#include "ByteSources.h"
#include "tests/Scratch.h"
#include "tests/Text.h"

namespace RynCommon {
namespace {

std::string encode(const UnicodeString& text, const char* encoding, bool mark = false) {
    std::ostringstream bytes;
    {
        RyDMCOStream out(&bytes, encoding, mark);
        for (int i = 0; i < 20; ++i) out.writeString(text);
    }
    return bytes.str();
}

const UnicodeString JAPANESE = u"これは日本語の文章です。漢字とかなとカタカナがあります。\n";
const UnicodeString ENGLISH = u"This is a plain sentence, and it is followed by others.\n";

TEST(DetectEncodingTest, Samples) {
    // A three-byte character lies across the end of the sample.
    const std::string cut = std::string(64 * 1024 - 1, 'a') + "\xE6\xBC\xA2 and more";
    const std::tuple<const char*, std::string, const char*, bool> rows[] = {
        {"nothing", "", "", false},
        {"ASCII", "<a/>", "UTF-8", false},
        {"UTF-8", encode(JAPANESE, "UTF-8"), "UTF-8", false},
        {"UTF-8 cut by the sample", cut, "UTF-8", false},
        {"UTF-8 with mark", "\xEF\xBB\xBF", "UTF-8", true},
        {"UTF-16LE with mark", encode(ENGLISH, "UTF-16LE", true), "UTF-16LE", true},
        {"UTF-32BE with mark", encode(ENGLISH, "UTF-32BE", true), "UTF-32BE", true},
        {"GB18030 with mark", "\x84\x31\x95\x33x", "GB18030", true},
        {"UTF-16LE", encode(ENGLISH, "UTF-16LE"), "UTF-16LE", false},
        {"UTF-16BE", encode(ENGLISH, "UTF-16BE"), "UTF-16BE", false},
        {"Shift_JIS", encode(JAPANESE, "Shift_JIS"), "Shift_JIS", false},
        {"ISO-2022-JP", encode(JAPANESE, "ISO-2022-JP"), "ISO-2022-JP", false},
        {"a stray NUL", encode(ENGLISH, "UTF-8") + '\0', "UTF-8", false},
        {"a stray escape", encode(ENGLISH, "UTF-8") + "\x1B[0m", "UTF-8", false},
        {"Latin", "Un caf\xE9 au lait pour Andr\xE9 et Ren\xE9\n", "ISO-8859-1", false},
    };
    for (const auto& [what, bytes, expected, hasMark] : rows) {
        std::istringstream in("?" + bytes);
        in.get();
        UnicodeString name = u"old";
        bool flag = true;
        EXPECT_EQ(RyDMCStream::detectEncoding(&in, name, flag), *expected != '\0') << what;
        EXPECT_EQ(s(name), expected) << what;
        EXPECT_EQ(flag, hasMark) << what;
        EXPECT_TRUE(in.good()) << what;
        EXPECT_EQ(in.tellg(), std::streampos(1)) << what;
    }
}

TEST(DetectEncodingTest, SourcesThatCannotSeekAndFiles) {
    ChunkSource chunks(encode(JAPANESE, "EUC-JP"), 3);
    std::istream slow(&chunks);
    UnicodeString name;
    bool flag = false;
    EXPECT_TRUE(RyDMCStream::detectEncoding(&slow, name, flag));
    EXPECT_TRUE(name == u"EUC-JP");

    const ScratchFolder folder;
    folder.write("file", encode(JAPANESE, "Shift_JIS"));
    EXPECT_TRUE(RyDMCStream::detectEncoding(folder.path("file").c_str(), name, flag));
    EXPECT_TRUE(name == u"Shift_JIS");
    EXPECT_FALSE(RyDMCStream::detectEncoding(folder.path("missing").c_str(), name, flag));
    EXPECT_TRUE(name.isEmpty());
    EXPECT_FALSE(RyDMCStream::detectEncoding(static_cast<const char*>(nullptr), name, flag));
    EXPECT_FALSE(RyDMCStream::detectEncoding(static_cast<std::istream*>(nullptr), name, flag));
}

}  // namespace
}  // namespace RynCommon
