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
    EXPECT_EQ(error.getErrorCategory(), RYERROR_NONE);
    EXPECT_EQ(error.getLineNumber(), -1);
    EXPECT_EQ(error.getColumnNumber(), -1);
    EXPECT_TRUE(error.getRawMessage().isEmpty());
    EXPECT_TRUE(error.getSource().isEmpty());
    EXPECT_TRUE(error.getUri().isEmpty());
}

TEST(RyError, CategoryIsTheUpperFiveBits) {
    const std::pair<unsigned short, int> rows[] = {
        {0x0803, RYERROR_SYSTEM}, {0x0C03, RYERROR_SYSTEM}, {0x0FFF, RYERROR_SYSTEM},
        {0x1003, RYERROR_IO},     {0x1801, RYERROR_XML},    {0x07FF, RYERROR_NONE},
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
        {"uri alone", "m", -1, -1, "u", "u", "m\nu"},
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

TEST(ErrorLocations, SystemTexts) {
    const struct {
        unsigned short code;
        const char *first, *second, *text;
    } rows[] = {
        {2051, "", "", "arg is null."},
        {2051, "newChild", "", "newChild is null."},
        {2052, "index", "", "RyErrorCodeRYNLIB"},
        {2054, "", "", "argarg is created from a different document."},
        {2054, "newChild", "", "newChildarg is created from a different document."},
        {2055, "newAttr", "", "newAttr is not an RyAttr object."},
        {2056, "newAttr", "",
         "newAttr is an RyAttr that is already an attribute of another RyElement object."},
        {2057, "oldChild", "", "oldChild is not a child of this node."},
        {2058, "newChild", "", "RyErrorCodeRYNLIB"},
        {2059, "RyElement", "", "Cannot set a value on node type: RyElement"},
        {2059, "", "", "Cannot set a value on node type."},
        {2060, "", "", "startDocument() must be called just after setOutput()."},
        {2061, "", "", "attribute() must be called just after startTag()."},
        {2062, "", "", "Unexpected endTag()."},
        {2063, "b", "a", "End tag 'b' does not match the start tag 'a'."},
        {2063, "", "%1%2", "End tag '' does not match the start tag '%1%2'."},
        {2064, "", "", "Unexpected docdecl()."},
        {2066, "", "", "Unsupported node type."},
        {2053, "x", "y", "RyErrorCodeRYNLIB"},
        {0xFFFF, "", "", "RyErrorCodeRYNLIB"},
    };
    for (const auto& row : rows) {
        const RyError error = thrownBy(
            [&] { throwSystemError(row.code, LOCATION_NODE_APPEND_CHILD, row.first, row.second); });
        EXPECT_EQ(error.getErrorCode(), row.code);
        EXPECT_EQ(s(error.getMessage()), std::string("SYSTEM ERROR: ") + row.text);
        EXPECT_EQ(s(error.getSource()), "RynCommon::RyNode::appendChild");
    }
}

TEST(ErrorLocations, IoTexts) {
    const struct {
        unsigned short code;
        const char* text;
    } rows[] = {
        {4099, "Cannot open file: a%1.xml"},
        {4100, "Unexpected end of input stream."},
        {4101, "Output stream is not set."},
        {4102, "Input stream error."},
        {4103, "Output stream error."},
        {4109, "Cannot remove temporary file: a%1.xml"},
        {4110, "Cannot create temporary file: a%1.xml"},
        {4104, "RyErrorCodeIO"},
    };
    for (const auto& row : rows) {
        const RyError error =
            thrownBy([&] { throwIoError(row.code, LOCATION_TEMP_FILE, "a%1.xml"); });
        EXPECT_EQ(error.getErrorCode(), row.code);
        EXPECT_EQ(s(error.getMessage()), row.text);
        EXPECT_EQ(s(error.getSource()), "RynCommon::RyTempFile");
    }
}

TEST(ErrorLocations, Names) {
    const std::pair<int, const char*> rows[] = {
        {LOCATION_DOCUMENT_LOAD_NEXT_NODE, "RynCommon::RyDocument::loadNextNode"},
        {LOCATION_DOCUMENT_DO_SAVE, "RynCommon::RyDocument::doSave"},
        {LOCATION_ATTRMAP_SET_NAMED_ITEM, "RynCommon::AttrNodeMap::setNamedItem"},
        {LOCATION_ATTRMAP_SET_NAMED_ITEM_NS, "RynCommon::AttrNodeMap::setNamedItemNS"},
        {LOCATION_ELEMENT_REMOVE_ATTRIBUTE_NODE, "RynCommon::RyElement::removeAttributeNode"},
        {LOCATION_NODE_SET_NODE_VALUE, "RynCommon::RyNode::setNodeValue"},
        {LOCATION_NODE_INSERT_BEFORE, "RynCommon::RyNode::insertBefore"},
        {LOCATION_NODE_REPLACE_CHILD, "RynCommon::RyNode::replaceChild"},
        {LOCATION_NODE_REMOVE_CHILD, "RynCommon::RyNode::removeChild"},
        {LOCATION_NODE_APPEND_CHILD, "RynCommon::RyNode::appendChild"},
        {LOCATION_PARSER_CHECK_STREAM, "RynCommon::XmlParserImpl::checkStream"},
        {LOCATION_PARSER_PUSH_STREAM, "RynCommon::XmlParserImpl::pushStream"},
        {LOCATION_PARSER_SET_INPUT, "RynCommon::XmlParserImpl::setInput"},
        {LOCATION_PARSER_IS_WHITESPACE, "RynCommon::XmlParserImpl::isWhitespace"},
        {LOCATION_PARSER_IS_EMPTY_ELEMENT_TAG, "RynCommon::XmlParserImpl::isEmptyElementTag"},
        {LOCATION_PARSER_GET_ATTRIBUTE_NAMESPACE,
         "RynCommon::XmlParserImpl::getAttributeNamespace"},
        {LOCATION_PARSER_GET_ATTRIBUTE_NAME, "RynCommon::XmlParserImpl::getAttributeName"},
        {LOCATION_PARSER_GET_ATTRIBUTE_PREFIX, "RynCommon::XmlParserImpl::getAttributePrefix"},
        {LOCATION_PARSER_GET_ATTRIBUTE_VALUE, "RynCommon::XmlParserImpl::getAttributeValue"},
        {LOCATION_SERIALIZER_SET_OUTPUT, "RynCommon::XmlSerializerImpl::setOutput"},
        {LOCATION_SERIALIZER_START_DOCUMENT, "RynCommon::XmlSerializerImpl::startDocumen"},
        {LOCATION_SERIALIZER_ATTRIBUTE, "RynCommon::XmlSerializerImpl::attributeSub"},
        {LOCATION_SERIALIZER_END_TAG, "RynCommon::XmlSerializerImpl::endTagt"},
        {LOCATION_SERIALIZER_DOCDECL, ""},
        {LOCATION_SERIALIZER_CHECK_STREAM, "RynCommon::XmlSerializerImpl::checkStream"},
        {LOCATION_PLATFORM_PARSER, ""},
        {LOCATION_MEM_STREAM, "RynCommon::RyMemStream"},
        {LOCATION_TEMP_FILE, "RynCommon::RyTempFile"},
    };
    int index = 0;
    for (const auto& [location, name] : rows) {
        EXPECT_EQ(location, index++);
        EXPECT_EQ(s(getErrorLocationName(location)), name);
    }
    for (const int outside : {-1, 28, 1000000, -2147483647})
        EXPECT_TRUE(getErrorLocationName(outside).isEmpty()) << outside;
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
