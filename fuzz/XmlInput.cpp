// How the fuzz targets of XML read their inputs.
#include "fuzz/XmlInput.h"

#include <istream>
#include <sstream>

namespace RynCommon {

namespace {

/// A few resources by the last letter of their URI; the rest is empty.
class FixedResources : public RyUriReferenceResolver {
public:
    std::istream* getStream(const UnicodeString& uri, UnicodeString*) override {
        const char16_t last = uri.isEmpty() ? u'\0' : uri[uri.length() - 1];
        return new std::istringstream(last == u'd'   ? DTD
                                      : last == u'x' ? ENTITY
                                      : last == u'r' ? RECURSIVE
                                                     : "");
    }

private:
    static constexpr const char* DTD =
        "<?xml encoding='UTF-8'?><!ENTITY d 'dtd'><!ENTITY % p \"<!ENTITY q '&d;'>\">%p;"
        "<![IGNORE[<!]]><!ATTLIST a y NMTOKEN ' z '>";
    static constexpr const char* ENTITY = "<?xml encoding='ISO-8859-1'?>\xE9<x y='&amp;'/>&lt;";
    static constexpr const char* RECURSIVE = "[&r;]";
};

bool isSetting(std::uint8_t byte) {
    return byte >= 0x80 && byte < 0xC0;
}

const char* encodingOf(std::uint8_t setting) {
    static const char* const encodings[] = {"",       "UTF-8",  "ISO-8859-1", "UTF-16LE",
                                            "UTF-16", "UTF-32", "cp932",      "UTF-16BE"};
    return encodings[setting & 7];
}

unsigned featuresOf(std::uint8_t setting) {
    constexpr unsigned noDtd = 1u << RyXmlParser::NO_EXTERNAL_DTD;
    constexpr unsigned tolerant = 1u << RyXmlParser::TOLERANT_PREFIXES;
    constexpr unsigned raw = 1u << RyXmlParser::RAW_UNKNOWN_ENCODING;
    constexpr unsigned builtin = 1u << RyXmlParser::BUILTIN_ENCODINGS_ONLY;
    static const unsigned features[] = {0,       noDtd,         tolerant,         raw,
                                        builtin, raw | builtin, noDtd | tolerant, 0x3F};
    return features[(setting >> 3) & 7];
}

}  // namespace

XmlInput::XmlInput(const std::uint8_t* data, std::size_t size) {
    const bool hasSetting = size > 0 && isSetting(data[0]);
    if (hasSetting) {
        features = featuresOf(data[0]);
        encoding = UnicodeString(encodingOf(data[0]));
    }
    const std::size_t start = hasSetting ? 1 : 0;
    bytes.assign(reinterpret_cast<const char*>(data) + start, size - start);
}

void prepareParser(RyXmlParser& parser, unsigned features) {
    static FixedResources resources;
    RyUri::setUriReferenceResolver(&resources);
    for (int i = 0; i < 6; ++i)
        parser.setFeature(static_cast<RyXmlParser::Feature>(i), ((features >> i) & 1) != 0);
    RyXmlLimits limits = parser.getLimits();
    limits.expansionThreshold = 20'000;
    limits.expansionFactor = 10;
    limits.nestedInputs = 16;
    parser.setLimits(limits);
}

std::string errorText(const RyError& error) {
    std::string text = std::to_string(error.getErrorCode()) + " ";
    error.getMessage().toUTF8String(text);
    return text + "\n";
}

void appendText(std::string& out, const UnicodeString& text) {
    out += std::to_string(text.length()) + ":";
    text.toUTF8String(out);
}

}  // namespace RynCommon
