// Property texts, colours, numbers and URIs that are long, deep or crooked.
#include <RynCommon/RyColor.h>
#include <RynCommon/RyTokenizer.h>
#include <RynCommon/RyUri.h>
#include <RynCommon/RyUtil.h>
#include <RynCommon/RyValue.h>

#include "tests/hostile/Proof.h"

namespace hostile {

namespace {

using namespace RynCommon;

UnicodeString asText(const std::string& bytes) {
    return UnicodeString::fromUTF8(bytes);
}

std::size_t parseValue(const std::string& bytes) {
    RyValue::parse(asText(bytes)).toString();
    return 0;
}

std::size_t parseColor(const std::string& bytes) {
    RyValue::parseColor(asText(bytes), true).toString();
    return 0;
}

std::size_t useUri(const std::string& bytes) {
    const UnicodeString text = asText(bytes);
    const RyUri uri(text);
    const RyUri resolved(RyUri(u"http://host/a/b/c"), text);
    const RyUri against(uri, u"../x/y.xml");
    UnicodeString error;
    delete uri.getStream(&error);
    uri.getLocalPath();
    uri.getFileName();
    uri.getBaseString();
    resolved.getRelativeUri(against.toString());
    const RyDataUri data(text);
    return 0;
}

std::size_t decodeText(const std::string& bytes) {
    const UnicodeString text = asText(bytes);
    RyUri::unescape(text);
    RyUtil::unquoteUri(text);
    return 0;
}

struct Text {
    const char* name;
    std::function<std::string()> make;
};

const std::vector<Text>& propertyTexts() {
    static const std::vector<Text> list = {
        {"100,000 opening parentheses", [] { return repeat("f(", 100'000); }},
        {"100,000 nested functions", [] { return repeat("f(", 100'000) + repeat(")", 100'000); }},
        {"a million opening parentheses", [] { return std::string(MEGA, '('); }},
        {"a number of 5 million digits", [] { return std::string(5 * MEGA, '9'); }},
        {"a fraction of 5 million digits", [] { return "0." + std::string(5 * MEGA, '1') + "pt"; }},
        {"an exponent of a million digits", [] { return "1e" + std::string(MEGA, '9'); }},
        {"a name of 5 million letters", [] { return std::string(5 * MEGA, 'n'); }},
        {"a million names", [] { return repeat("solid ", MEGA); }},
        {"a million commas", [] { return std::string(MEGA, ','); }},
        {"a quoted string without end", [] { return "'" + std::string(5 * MEGA, 'q'); }},
        {"five million backslashes", [] { return "'" + std::string(5 * MEGA, '\\'); }},
        {"a url() without end", [] { return "url(" + std::string(5 * MEGA, 'u'); }},
        {"a colour of a million digits", [] { return "#" + std::string(MEGA, 'a'); }},
        {"an rgb() of a million arguments", [] { return "rgb(" + repeat("1,", MEGA); }},
        {"a million rgb-icc()", [] { return repeat("rgb-icc(", MEGA); }},
        {"five million signs", [] { return repeat("+-", 5 * MEGA / 2); }},
    };
    return list;
}

const std::vector<Text>& uriTexts() {
    static const std::vector<Text> list = {
        {"ten thousand jar: prefixes", [] { return repeat("jar:", 10'000) + "file:///a!/b"; }},
        {"ten thousand archives in one another",
         [] { return repeat("jar:", 10'000) + "file:///a" + repeat("!/b", 10'000); }},
        {"a million times ../", [] { return repeat("../", MEGA); }},
        {"a path of a million directories",
         [] { return "file:///" + repeat("a/", MEGA) + repeat("../", MEGA) + "x"; }},
        {"a million percent signs", [] { return "file:///" + std::string(MEGA, '%'); }},
        {"ten megabytes of data:", [] { return "data:;base64," + std::string(10 * MEGA, 'A'); }},
        {"a data: URI of ten million escapes", [] { return "data:," + repeat("%41", 3 * MEGA); }},
        {"a data: URI of a million parameters",
         [] { return "data:text/plain" + repeat(";a=b", MEGA) + ",x"; }},
        {"a million url( tokens", [] { return repeat("url(", MEGA); }},
        {"a scheme of a million letters", [] { return std::string(MEGA, 's') + ":x"; }},
        {"a million backslashes", [] { return std::string(MEGA, '\\'); }},
        {"a million colons", [] { return std::string(MEGA, ':'); }},
    };
    return list;
}

}  // namespace

std::vector<Case> textCases() {
    std::vector<Case> cases;
    for (const Text& text : propertyTexts()) {
        const std::string name = text.name;
        cases.push_back({"value: " + name, Bound::ALL, text.make, parseValue});
        cases.push_back({"colour: " + name, Bound::ALL, text.make, parseColor});
    }
    for (const Text& text : uriTexts()) {
        const std::string name = text.name;
        cases.push_back({"URI: " + name, Bound::ALL, text.make, useUri});
        cases.push_back({"unescape: " + name, Bound::ALL, text.make, decodeText});
    }
    return cases;
}

}  // namespace hostile
