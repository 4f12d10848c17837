// Recognising compound files and the kinds of office documents.
#include <RynCommon/RyUri.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/Scratch.h"
#include "tests/Text.h"
#include "tests/resources/OleFixture.h"

namespace RynCommon {
namespace {

using test::makeContent;
using test::OleWriter;

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
    const struct {
        const char* what;
        std::vector<Stream> streams;
        int type;
    } rows[] = {
        {"nothing", {}, 0},
        {"word processor", {{false, u"WordDocument", 5000}}, 1},
        {"an empty stream is one", {{false, u"WordDocument", 0}}, 1},
        {"names are exact", {{false, u"wordDocument", 50}}, 0},
        {"spreadsheet", {{false, u"Workbook", 50}}, 2},
        {"both", {{false, u"Workbook", 50}, {false, u"WordDocument", 50}}, 1},
        {"presentation", {{false, user, 20}, {false, slides, 5000}}, 3},
        {"user too short", {{false, user, 19}, {false, slides, 50}}, 0},
        {"user alone", {{false, user, 20}}, 0},
        {"slides alone", {{false, slides, 50}}, 0},
        {"dual", {{true, user, 1}, {true, slides, 50}}, 3},
        {"slides not beside the user", {{true, user, 20}, {false, slides, 50}}, 0},
        {"the dual user counts", {{true, user, 5}, {false, user, 20}, {false, slides, 50}}, 0},
        {"user at the root", {{false, user, 20}, {false, slides, 5}, {true, slides, 5}}, 3},
        {"view styles", {{false, u"DocumentViewStyles", 5}}, 4},
        {"view styles come last",
         {{false, u"DocumentViewStyles", 5}, {false, user, 20}, {false, slides, 50}},
         3},
    };
    testing::internal::CaptureStderr();
    for (const auto& row : rows) {
        std::istringstream in(makeFile(row.streams));
        in.seekg(3);
        EXPECT_EQ(OleCompFile::detectOLEDocument(in), row.type) << row.what;
        EXPECT_EQ(in.tellg(), 3) << row.what;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

/// Hands out its bytes once.
class OnceBuf : public std::streambuf {
public:
    explicit OnceBuf(std::string bytes) : bytes_(std::move(bytes)) {
        setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
    }

private:
    std::string bytes_;
};

class ThrowingBuf : public std::streambuf {
protected:
    int_type underflow() override { throw 1; }
};

TEST(OleDocumentClass, RecognisesTheSignatureWherverTheStreamStands) {
    const std::string file = makeFile({{false, u"Workbook", 50}});
    const struct {
        const char* what;
        std::string bytes;
        int start;
        bool isOle;
    } rows[] = {
        {"a file", file, 0, true},
        {"511 bytes", file.substr(0, 511), 0, false},
        {"512 bytes", file.substr(0, 512), 0, true},
        {"later", "xx" + file, 2, true},
        {"elsewhere", "xx" + file, 0, false},
        {"nothing", "", 0, false},
        {"another signature", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE0" + file.substr(8), 0, false},
    };
    for (const auto& row : rows) {
        std::istringstream in(row.bytes);
        in.seekg(row.start);
        EXPECT_EQ(OleCompFile::isOLEUri(in), row.isOle) << row.what;
        EXPECT_EQ(in.tellg(), row.start) << row.what;
        in.exceptions(std::ios_base::eofbit | std::ios_base::failbit | std::ios_base::badbit);
        EXPECT_EQ(OleCompFile::isOLEUri(in), row.isOle) << row.what;
    }
    ThrowingBuf throwing;
    for (const bool tells : {false, true}) {
        std::istream in(&throwing);
        if (tells) in.exceptions(std::ios_base::badbit);
        EXPECT_FALSE(OleCompFile::isOLEUri(in));
        EXPECT_EQ(OleCompFile::detectOLEDocument(in), 0);
    }
}

TEST(OleDocumentClass, StreamsThatCannotSeekAndUris) {
    const std::string file = makeFile({{false, u"Workbook", 5000}});
    OnceBuf once(file);
    std::istream in(&once);
    EXPECT_EQ(OleCompFile::detectOLEDocument(in), 2);
    OnceBuf text(std::string(1000, 'x'));
    std::istream none(&text);
    EXPECT_EQ(OleCompFile::detectOLEDocument(none), 0);

    const ScratchFolder folder;
    folder.write("file", file);
    const auto uri = [&](const char* name) { return RyUri(u("file://" + folder.path(name))); };
    EXPECT_TRUE(OleCompFile::isOLEUri(uri("file")));
    EXPECT_EQ(OleCompFile::detectOLEDocument(uri("file")), 2);
    EXPECT_FALSE(OleCompFile::isOLEUri(uri("missing")));
    EXPECT_EQ(OleCompFile::detectOLEDocument(uri("missing")), 0);
    EXPECT_EQ(OleCompFile::detectOLEDocument(uri("")), 0);
}

}  // namespace
}  // namespace RynCommon
