// Recognising compound files and the kinds of office documents.
#include <RynCommon/RyUri.h>
#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

#include "tests/Scratch.h"
#include "tests/Text.h"
#include "tests/resources/OleFixture.h"
#include "tests/streams/ByteSources.h"

namespace RynCommon {
namespace {

using namespace test;

struct Stream {
    bool dual;  ///< in the storage "PP97_DUALSTORAGE"
    const char16_t* name;
    std::size_t size;
};

std::string makeFile(const std::vector<Stream>& streams) {
    OleWriter writer;
    int storage = 0;
    for (const Stream& stream : streams) {
        if (stream.dual && storage == 0) storage = writer.addStorage(0, u"PP97_DUALSTORAGE");
        writer.addStream(stream.dual ? storage : 0, stream.name, makeContent(stream.size));
    }
    return writer.write().bytes();
}

TEST(OleDocumentClass, TellsKindsByTheirStreams) {
    const char16_t* const user = u"Current User";
    const char16_t* const slides = u"PowerPoint Document";
    const std::tuple<const char*, std::vector<Stream>, int> rows[] = {
        {"word processor", {{false, u"WordDocument", 5000}}, 1},
        {"an empty stream is one", {{false, u"WordDocument", 0}}, 1},
        {"names are exact", {{false, u"wordDocument", 50}}, 0},
        {"spreadsheet", {{false, u"Workbook", 50}}, 2},
        {"both", {{false, u"Workbook", 50}, {false, u"WordDocument", 50}}, 1},
        {"presentation", {{false, user, 20}, {false, slides, 5000}}, 3},
        {"user too short", {{false, user, 19}, {false, slides, 50}}, 0},
        {"dual", {{true, user, 1}, {true, slides, 50}}, 3},
        {"slides not beside the user", {{true, user, 20}, {false, slides, 50}}, 0},
        {"the dual user counts", {{true, user, 5}, {false, user, 20}, {false, slides, 50}}, 0},
        {"view styles", {{false, u"DocumentViewStyles", 5}}, 4},
        {"view styles come last",
         {{false, u"DocumentViewStyles", 5}, {false, user, 20}, {false, slides, 50}},
         3},
    };
    testing::internal::CaptureStderr();
    for (const auto& [what, streams, type] : rows) {
        std::istringstream in(makeFile(streams));
        in.seekg(3);
        EXPECT_EQ(OleCompFile::detectOLEDocument(in), type) << what;
        EXPECT_EQ(in.tellg(), 3) << what;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(OleDocumentClass, RecognisesTheSignatureWherverTheStreamStands) {
    const std::string file = makeFile({{false, u"Workbook", 50}});
    const std::tuple<const char*, std::string, int, bool> rows[] = {
        {"a file", file, 0, true},
        {"511 bytes", file.substr(0, 511), 0, false},
        {"512 bytes", file.substr(0, 512), 0, true},
        {"elsewhere", "xx" + file, 0, false},
        {"another signature", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE0" + file.substr(8), 0, false},
    };
    for (const auto& [what, bytes, start, isOle] : rows) {
        std::istringstream in(bytes);
        in.seekg(start);
        EXPECT_EQ(OleCompFile::isOLEUri(in), isOle) << what;
        EXPECT_EQ(in.tellg(), start) << what;
        in.exceptions(std::ios_base::eofbit | std::ios_base::failbit | std::ios_base::badbit);
        EXPECT_EQ(OleCompFile::isOLEUri(in), isOle) << what;
    }
    BreakingSource throwing;
    std::istream in(&throwing);
    in.exceptions(std::ios_base::badbit);
    EXPECT_FALSE(OleCompFile::isOLEUri(in));
    EXPECT_EQ(OleCompFile::detectOLEDocument(in), 0);
}

TEST(OleDocumentClass, StreamsThatCannotSeekAndUris) {
    const std::string file = makeFile({{false, u"Workbook", 5000}});
    ChunkSource once(file, file.size());
    std::istream in(&once);
    EXPECT_EQ(OleCompFile::detectOLEDocument(in), 2);
    const ScratchFolder folder;
    folder.write("file", file);
    const auto uri = [&](const char* name) { return RyUri(u("file://" + folder.path(name))); };
    EXPECT_TRUE(OleCompFile::isOLEUri(uri("file")));
    EXPECT_EQ(OleCompFile::detectOLEDocument(uri("file")), 2);
    EXPECT_FALSE(OleCompFile::isOLEUri(uri("missing")));
    EXPECT_EQ(OleCompFile::detectOLEDocument(uri("missing")), 0);
}

}  // namespace
}  // namespace RynCommon
