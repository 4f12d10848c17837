// XML that expands, nests, repeats or never ends.
#include <RynCommon/RyDocument.h>
#include <RynCommon/RyError.h>
#include <RynCommon/RyUri.h>
#include <RynCommon/RyXmlUtil.h>

#include <sstream>

#include "tests/hostile/Proof.h"

namespace hostile {

namespace {

using namespace RynCommon;

std::string numbered(std::string_view before, std::string_view after, std::size_t times) {
    std::string result;
    for (std::size_t i = 0; i < times; ++i) {
        result += before;
        result += std::to_string(i);
        result += after;
    }
    return result;
}

std::size_t readEvents(const std::string& bytes) {
    std::istringstream in(bytes);
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    try {
        parser->setInput(in, UnicodeString(), u"file:///nowhere/");
        while (parser->next() != RyXmlParser::END_DOCUMENT) {
        }
    } catch (const RyError&) {
    }
    return 0;
}

void ignoreError(const RyError&, void*) {}

/// Goes on behind every error.
std::size_t readTolerantly(const std::string& bytes) {
    std::istringstream in(bytes);
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    parser->setCallbackError(ignoreError, nullptr);
    try {
        parser->setInput(in, UnicodeString(), u"file:///nowhere/");
        while (parser->nextToken() != RyXmlParser::END_DOCUMENT) {
        }
    } catch (const RyError&) {
    }
    return 0;
}

std::size_t readTree(const std::string& bytes) {
    std::istringstream in(bytes);
    const RyPtr<RyDocument> document = new RyDocument;
    try {
        document->load(in);
    } catch (const RyError&) {
    }
    return 0;
}

/// Hands every URI the same bytes: a resource that names itself finds itself.
class Mirror : public RyUriReferenceResolver {
public:
    explicit Mirror(const std::string& bytes) : bytes_(bytes) {}
    std::istream* getStream(const UnicodeString&, UnicodeString*) override {
        return new std::istringstream(bytes_);
    }

private:
    const std::string& bytes_;
};

std::size_t readMirrored(const std::string& bytes) {
    Mirror mirror(bytes);
    RyUri::setUriReferenceResolver(&mirror);
    readEvents(bytes);
    RyUri::setUriReferenceResolver(nullptr);
    return 0;
}

std::string laughs(std::string_view kind, int levels, int fan) {
    const std::string mark = kind == "%" ? "%" : "&";
    const std::string space = kind == "%" ? " % " : " ";
    std::string result = "<!DOCTYPE a [<!ENTITY" + space + "e0 'ha'>";
    for (int level = 1; level < levels; ++level) {
        const std::string inner = mark + "e" + std::to_string(level - 1) + ";";
        result += "<!ENTITY" + space + "e" + std::to_string(level) + " '" +
                  repeat(inner, static_cast<std::size_t>(fan)) + "'>";
    }
    const std::string last = mark + "e" + std::to_string(levels - 1) + ";";
    return result + (kind == "%" ? last + "]><a/>" : "]><a b='" + last + "'>" + last + "</a>");
}

std::string text(std::string_view content) {
    return std::string(content);
}

using Make = std::function<std::string()>;

struct Document {
    const char* name;
    Make make;
    Bound bound = Bound::ALL;
};

const std::vector<Document>& documents() {
    static const std::vector<Document> list = {
        {"exponential entities", [] { return laughs("&", 30, 10); }},
        {"exponential parameter entities", [] { return laughs("%", 30, 10); }},
        {"quadratic entities",
         [] {
             return "<!DOCTYPE a [<!ENTITY e '" + std::string(MEGA, 'x') + "'>]><a>" +
                    repeat("&e;", MEGA / 3) + "</a>";
         },
         Bound::EXPANSION},
        {"quadratic entities in an attribute",
         [] {
             return "<!DOCTYPE a [<!ENTITY e '" + std::string(MEGA, 'x') + "'>]><a b='" +
                    repeat("&e;", MEGA / 3) + "'/>";
         },
         Bound::EXPANSION},
        {"a recursive entity",
         [] { return text("<!DOCTYPE a [<!ENTITY e 'x&e;x'>]><a b='&e;'>&e;</a>"); }},
        {"mutually recursive entities",
         [] {
             return text(
                 "<!DOCTYPE a [<!ENTITY e '&f;&f;'><!ENTITY f '&g;&g;'><!ENTITY g "
                 "'&e;&e;'>]><a>&e;</a>");
         }},
        {"recursive parameter entities",
         [] {
             return text(
                 "<!DOCTYPE a [<!ENTITY % p '&#37;q;&#37;q;'><!ENTITY % q "
                 "'&#37;p;&#37;p;'>%p;]><a/>");
         }},
        {"a million nested elements", [] { return repeat("<a>", MEGA) + repeat("</a>", MEGA); }},
        {"a million open elements", [] { return repeat("<a>", MEGA); }},
        {"60,000 attributes", [] { return "<a " + numbered("n", "='v' ", 60'000) + "/>"; }},
        {"60,000 attributes of one name", [] { return "<a " + repeat("n='v' ", 60'000) + "/>"; }},
        {"an attribute of 100 MB", [] { return "<a b='" + std::string(100 * MEGA, 'x') + "'/>"; }},
        {"an attribute of 100 MB of references",
         [] { return "<a b='" + repeat("&amp;", 20 * MEGA) + "'/>"; }},
        {"a name of 10 MB", [] { return "<" + std::string(10 * MEGA, 'n') + "/>"; }},
        {"a prefix of 10 MB", [] { return "<a " + std::string(10 * MEGA, 'p') + ":b='1'/>"; }},
        {"a million namespace declarations in one tag",
         [] { return "<a " + numbered("xmlns:p", "='u' ", MEGA) + "/>"; }},
        {"100,000 nested namespace declarations",
         [] { return numbered("<a xmlns:p", "='u'>", 100'000) + repeat("</a>", 100'000); }},
        {"100,000 declared attributes",
         [] {
             return "<!DOCTYPE a [<!ATTLIST a " + numbered("n", " CDATA 'v' ", 100'000) + ">]>" +
                    "<r>" + repeat("<a/>", 10'000) + "</r>";
         }},
        {"100,000 declared entities",
         [] {
             return "<!DOCTYPE a [" + numbered("<!ENTITY e", " 'v'>", 100'000) + "]><a>" +
                    numbered("&e", ";", 100'000) + "</a>";
         }},
        {"100,000 undeclared entities",
         [] { return "<a>" + numbered("&u", ";", 100'000) + "</a>"; }},
        {"a million distinct names", [] { return "<a>" + numbered("<n", "/>", MEGA) + "</a>"; }},
        {"end tags that match nothing",
         [] { return repeat("<a>", 100'000) + repeat("</b>", 100'000); }},
        {"a text of 10 million less-than signs", [] { return std::string(10 * MEGA, '<'); }},
        {"a text of 10 million ampersands", [] { return "<a>" + std::string(10 * MEGA, '&'); }},
        {"20 MB of NUL bytes", [] { return std::string(20 * MEGA, '\0'); }},
        {"10 million conditional sections",
         [] { return "<!DOCTYPE a [" + repeat("<![", 3 * MEGA) + "]>"; }},
    };
    return list;
}

struct Start {
    const char *name, *text;
};

/// Each is followed by eight megabytes that do not end it.
constexpr Start UNTERMINATED[] = {
    {"comment", "<a><!-- "},
    {"processing instruction", "<a><?pi "},
    {"CDATA section", "<a><![CDATA["},
    {"attribute value", "<a b='"},
    {"start tag", "<a "},
    {"end tag", "<a></a "},
    {"DOCTYPE", "<!DOCTYPE a "},
    {"internal subset", "<!DOCTYPE a [ "},
    {"comment in a subset", "<!DOCTYPE a [<!-- "},
    {"declaration in a subset", "<!DOCTYPE a [<!ELEMENT a "},
    {"entity literal", "<!DOCTYPE a [<!ENTITY e '"},
    {"ignored section", "<!DOCTYPE a [<![IGNORE[ "},
    {"entity reference", "<a>&x"},
    {"character reference", "<a>&#"},
    {"XML declaration", "<?xml version='1.0' "},
};

constexpr const char* FILLERS[] = {"x", " ", "]", "-", "<", "1"};

}  // namespace

std::vector<Case> xmlCases() {
    std::vector<Case> cases;
    for (const Document& document : documents()) {
        const std::string name = document.name;
        cases.push_back({"events: " + name, document.bound, document.make, readEvents});
        cases.push_back({"tokens: " + name, document.bound, document.make, readTolerantly});
        cases.push_back({"tree: " + name, Bound::TIME, document.make, readTree});
    }
    for (const Start& start : UNTERMINATED) {
        for (const char* const filler : FILLERS) {
            const Make make = [&start, filler] { return start.text + repeat(filler, 8 * MEGA); };
            cases.push_back({"endless " + std::string(start.name) + " of " + filler, Bound::ALL,
                             make, readTolerantly});
        }
    }
    cases.push_back({"an external entity that names itself", Bound::ALL,
                     [] { return text("<!DOCTYPE a [<!ENTITY e SYSTEM 'm'>]><a>&e;&e;</a>"); },
                     readMirrored});
    cases.push_back(
        {"an external subset that names itself", Bound::ALL,
         [] { return text("<!ENTITY % e SYSTEM 'm'>%e;%e;<!DOCTYPE a SYSTEM 'm'><a/>"); },
         readMirrored});
    cases.push_back(
        {"a DOCTYPE that names its own document", Bound::ALL,
         [] { return text("<!DOCTYPE a SYSTEM 'm' [<!ENTITY % e SYSTEM 'm'>%e;%e;]><a/>"); },
         readMirrored});
    return cases;
}

}  // namespace hostile
