// The error value, the texts and places of raised errors, and formatted messages.
#include <RynCommon/RyError.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>

#include "core/ErrorLocations.h"

#include "tests/Text.h"

namespace RynCommon {
namespace {

RyError thrownBy(const std::function<void()>& raise) {
    try {
        raise();
    } catch (const RyError& error) {
        return error;
    }
    ADD_FAILURE() << "nothing was thrown";
    return RyError();
}

TEST(RyError, StartsWithoutErrorAndPosition) {
    const RyError error;
    EXPECT_EQ(error.getErrorCode(), 0);
    EXPECT_EQ(error.getLineNumber(), -1);
    EXPECT_EQ(error.getColumnNumber(), -1);
    EXPECT_TRUE(error.getRawMessage().isEmpty());
}

TEST(RyError, CategoryIsTheUpperFiveBits) {
    const std::pair<unsigned short, int> rows[] = {{0x07FF, RYERROR_NONE},
                                                   {0x0803, RYERROR_SYSTEM},
                                                   {0x0FFF, RYERROR_SYSTEM},
                                                   {0xFFFF, 0xF800}};
    for (const auto& [code, category] : rows)
        EXPECT_EQ(RyError(code, "", "", -1, -1, "").getErrorCategory(), category) << code;
}

TEST(RyError, MessageCarriesThePosition) {
    const struct {
        const char *what, *raw;
        int line, column;
        const char* uri;
        const char* position;
        const char* message;
    } rows[] = {
        {"nothing known", "m", -1, -1, "", "", "m"},
        {"all known", "m", 12, 5, "file:///a.xml", "Line 12, Col 5, file:///a.xml",
         "m\nLine 12, Col 5, file:///a.xml"},
        {"line alone keeps its comma", "m", 3, -1, "", "Line 3, ", "m\nLine 3, "},
        {"column alone", "m", -1, 0, "", "Col 0, ", "m\nCol 0, "},
        {"empty message", "", 1, 1, "", "Line 1, Col 1, ", "\nLine 1, Col 1, "},
        {"negative and large numbers", "m", -2, 2147483647, "", "Line -2, Col 2147483647, ",
         "m\nLine -2, Col 2147483647, "},
    };
    for (const auto& row : rows) {
        RyError error(2051, row.raw, "s", row.line, row.column, row.uri);
        EXPECT_EQ(s(error.getPositionDescription()), row.position) << row.what;
        EXPECT_EQ(s(error.getMessage()), row.message) << row.what;
        error.setMessage(error.getMessage());
        EXPECT_EQ(s(error.getRawMessage()), row.raw) << row.what << ", stored back";
    }
}

TEST(RyError, SetMessageTakesOffOnlyItsOwnPosition) {
    RyError error(2051, "", "", 3, -1, "");
    const std::pair<const char*, const char*> rows[] = {{"m\nLine 4, ", "m\nLine 4, "},
                                                        {"mLine 3, ", "mLine 3, "},
                                                        {"\nLine 3, ", ""},
                                                        {"m\nLine 3, \nLine 3, ", "m\nLine 3, "},
                                                        {"m\nLine 3, x", "m\nLine 3, x"}};
    for (const auto& [message, raw] : rows) {
        error.setMessage(message);
        EXPECT_EQ(s(error.getRawMessage()), raw);
    }
}

TEST(RyError, AppendMessageStartsALineOfItsOwn) {
    RyError error;
    error.appendMessage("");
    EXPECT_EQ(s(error.getRawMessage()), "");
    error.appendMessage("a");
    EXPECT_EQ(s(error.getRawMessage()), "a");
    error.appendMessage("");
    error.appendMessage("b");
    EXPECT_EQ(s(error.getRawMessage()), "a\nb");
}

TEST(RyError, OnlyFatalErrorsAreThrown) {
    const struct {
        unsigned short code;
        bool thrown;
    } rows[] = {{0, false},      {2051, true},    {0x0C03, false}, {0x0B03, true},
                {0x0400, false}, {0x0700, false}, {0x0300, true},  {0x1803, true}};
    for (const auto& row : rows) {
        const RyError error(row.code, "m", "s", 1, 2, "u");
        bool thrown = false;
        try {
            error.throwFatalError();
        } catch (const RyError& caught) {
            thrown = true;
            EXPECT_EQ(caught.getErrorCode(), row.code);
            EXPECT_EQ(s(caught.getMessage()), "m\nLine 1, Col 2, u");
            EXPECT_EQ(s(caught.getSource()), "s");
        }
        EXPECT_EQ(thrown, row.thrown) << row.code;
    }
}

TEST(RyError, ConvertsStandardExceptions) {
    const RyError memory(std::bad_alloc(), "here");
    EXPECT_EQ(memory.getErrorCode(), 2049);
    EXPECT_EQ(s(memory.getMessage()), "Out of memory.");
    EXPECT_EQ(s(memory.getSource()), "here");

    const RyError other(std::runtime_error("caf\xC3\xA9 \xFF!"), "there");
    EXPECT_EQ(other.getErrorCode(), 2050);
    EXPECT_EQ(s(other.getMessage()), "C++ exception: caf\xC3\xA9 \xEF\xBF\xBD!");
    EXPECT_EQ(s(other.getSource()), "there");
}

void throwAnyError(unsigned short code, const char* first, const char* second) {
    if (RyError(code, "", "", -1, -1, "").getErrorCategory() == RYERROR_IO)
        throwIoError(code, LOCATION_TEMP_FILE, first);
    throwSystemError(code, LOCATION_NODE_APPEND_CHILD, first, second);
}

TEST(ErrorLocations, Texts) {
    const struct {
        unsigned short code;
        const char *first, *second, *text;
    } rows[] = {
        {2051, "", "", "SYSTEM ERROR: arg is null."},
        {2051, "newChild", "", "SYSTEM ERROR: newChild is null."},
        {2052, "index", "", "SYSTEM ERROR: RyErrorCodeRYNLIB"},
        {2054, "newChild", "", "SYSTEM ERROR: newChildarg is created from a different document."},
        {2055, "newAttr", "", "SYSTEM ERROR: newAttr is not an RyAttr object."},
        {2056, "newAttr", "",
         "SYSTEM ERROR: newAttr is an RyAttr that is already an attribute of another RyElement "
         "object."},
        {2057, "oldChild", "", "SYSTEM ERROR: oldChild is not a child of this node."},
        {2058, "newChild", "", "SYSTEM ERROR: RyErrorCodeRYNLIB"},
        {2059, "RyElement", "", "SYSTEM ERROR: Cannot set a value on node type: RyElement"},
        {2059, "", "", "SYSTEM ERROR: Cannot set a value on node type."},
        {2060, "", "", "SYSTEM ERROR: startDocument() must be called just after setOutput()."},
        {2061, "", "", "SYSTEM ERROR: attribute() must be called just after startTag()."},
        {2062, "", "", "SYSTEM ERROR: Unexpected endTag()."},
        {2063, "b", "a", "SYSTEM ERROR: End tag 'b' does not match the start tag 'a'."},
        {2063, "", "%1%2", "SYSTEM ERROR: End tag '' does not match the start tag '%1%2'."},
        {2064, "", "", "SYSTEM ERROR: Unexpected docdecl()."},
        {2066, "", "", "SYSTEM ERROR: Unsupported node type."},
        {4099, "a%1.xml", "", "Cannot open file: a%1.xml"},
        {4100, "", "", "Unexpected end of input stream."},
        {4101, "", "", "Output stream is not set."},
        {4102, "", "", "Input stream error."},
        {4103, "", "", "Output stream error."},
        {4109, "a%1.xml", "", "Cannot remove temporary file: a%1.xml"},
        {4110, "a%1.xml", "", "Cannot create temporary file: a%1.xml"},
        {4104, "", "", "RyErrorCodeIO"},
    };
    for (const auto& row : rows) {
        const RyError error = thrownBy([&] { throwAnyError(row.code, row.first, row.second); });
        EXPECT_EQ(error.getErrorCode(), row.code);
        EXPECT_EQ(s(error.getMessage()), row.text);
        EXPECT_EQ(s(error.getSource()),
                  row.code < 4096 ? "RynCommon::RyNode::appendChild" : "RynCommon::RyTempFile");
    }
}

// The ends of the table, and the names that nobody would guess.
TEST(ErrorLocations, Names) {
    const std::pair<int, const char*> rows[] = {
        {0, "RynCommon::RyDocument::loadNextNode"},
        {LOCATION_ATTRMAP_SET_NAMED_ITEM_NS, "RynCommon::AttrNodeMap::setNamedItemNS"},
        {LOCATION_PARSER_CHECK_STREAM, "RynCommon::XmlParserImpl::checkStream"},
        {LOCATION_SERIALIZER_START_DOCUMENT, "RynCommon::XmlSerializerImpl::startDocumen"},
        {LOCATION_SERIALIZER_ATTRIBUTE, "RynCommon::XmlSerializerImpl::attributeSub"},
        {LOCATION_SERIALIZER_END_TAG, "RynCommon::XmlSerializerImpl::endTagt"},
        {LOCATION_SERIALIZER_DOCDECL, ""},
        {LOCATION_PLATFORM_PARSER, ""},
        {27, "RynCommon::RyTempFile"},
        {28, ""},
        {-1, ""},
        {-2147483647, ""},
    };
    for (const auto& [location, name] : rows)
        EXPECT_EQ(s(getErrorLocationName(location)), name) << location;
}

TEST(RyMessage, FillsThePattern) {
    const struct {
        const char *what, *pattern, *expected;
    } rows[] = {
        {"all four", "{3}{2}{1}{0}", "dcba"},
        {"twice and not at all", "{0}-{0}", "a-a"},
        {"no place", "plain", "plain"},
        {"quoted braces", "'{0}' {0}", "{0} a"},
        {"argument that is not there", "{4}", "{4}"},
    };
    for (const auto& row : rows) {
        const RyMessage message(row.pattern, "a", "b", "c", "d");
        EXPECT_EQ(s(message.toString()), row.expected) << row.what;
        EXPECT_EQ(s(RyMessage(message)), row.expected) << row.what << ", copied";
    }
    EXPECT_NO_THROW(RyMessage("{0", "a"));
    EXPECT_EQ(s(RyMessage("{0}|{1}", "{1}")), "{1}|");
}

}  // namespace
}  // namespace RynCommon
