// Fuzz target of the XML parser. Every input has to end; how its bytes arrive must not matter; and
// next() must be what nextToken() gives, merged.
//
// The first byte of the input chooses features and the encoding told by the caller, the rest is the
// document. External entities and DTDs come from a resolver that never opens anything.
#include <RynCommon/RyError.h>
#include <RynCommon/RyName.h>
#include <RynCommon/RyUri.h>
#include <RynCommon/RyXmlParser.h>
#include <RynCommon/RyXmlUtil.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <sstream>
#include <streambuf>
#include <string>

using namespace RynCommon;

namespace {

/// Hands out `step` bytes each time it is asked; nothing more is ready.
class ChunkBuf : public std::streambuf {
public:
    ChunkBuf(const std::string& bytes, std::size_t step) : bytes_(bytes), step_(step) {}

protected:
    int_type underflow() override {
        if (position_ >= bytes_.size()) return traits_type::eof();
        const std::size_t count = std::min(step_, bytes_.size() - position_);
        char* start = bytes_.data() + position_;
        setg(start, start, start + count);
        position_ += count;
        return traits_type::to_int_type(*start);
    }

private:
    std::string bytes_;
    std::size_t step_;
    std::size_t position_ = 0;
};

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

struct Setting {
    unsigned features;
    const char* encoding;
};

bool isSetting(std::uint8_t byte) {
    return byte >= 0x80 && byte < 0xC0;
}

Setting settingOf(std::uint8_t byte) {
    static const char* const encodings[] = {"",       "UTF-8",  "ISO-8859-1", "UTF-16LE",
                                            "UTF-16", "UTF-32", "cp932",      "UTF-16BE"};
    constexpr unsigned noDtd = 1u << RyXmlParser::NO_EXTERNAL_DTD;
    constexpr unsigned tolerant = 1u << RyXmlParser::TOLERANT_PREFIXES;
    constexpr unsigned raw = 1u << RyXmlParser::RAW_UNKNOWN_ENCODING;
    constexpr unsigned builtin = 1u << RyXmlParser::BUILTIN_ENCODINGS_ONLY;
    static const unsigned features[] = {0,       noDtd,         tolerant,         raw,
                                        builtin, raw | builtin, noDtd | tolerant, 0x3F};
    if (!isSetting(byte)) return {0, ""};
    return {features[(byte >> 3) & 7], encodings[byte & 7]};
}

void append(std::string& out, const UnicodeString& text) {
    out += std::to_string(text.length()) + ":";
    text.toUTF8String(out);
}

void appendTag(std::string& out, RyXmlParser& parser) {
    append(out, parser.getNamespace().toString());
    append(out, parser.getPrefix().toString());
    append(out, parser.getName().toString());
    for (int i = 0; i < parser.getAttributeCount(); ++i) {
        append(out, parser.getAttributeNamespace(i).toString());
        append(out, parser.getAttributePrefix(i).toString());
        append(out, parser.getAttributeName(i).toString());
        append(out, parser.getAttributeValue(i));
    }
}

bool isCharacterData(RyXmlParser::EventType event) {
    return event == RyXmlParser::TEXT || event == RyXmlParser::CDSECT ||
           event == RyXmlParser::IGNORABLE_WHITESPACE;
}

std::string eventText(RyXmlParser& parser) {
    const RyXmlParser::EventType event = parser.getEventType();
    std::string out = "#" + std::to_string(event) + " ";
    if (event == RyXmlParser::START_TAG || event == RyXmlParser::END_TAG) {
        appendTag(out, parser);
    } else if (event == RyXmlParser::ENTITY_REF) {
        append(out, parser.getName().toString());
        if (parser.getName().isEmpty()) append(out, parser.getText());
    } else if (event != RyXmlParser::END_DOCUMENT && event != RyXmlParser::DOCDECL) {
        append(out, parser.getText());
    }
    return out + "\n";
}

/// What reading a document came to.
struct Record {
    std::string events;
    std::string pending;  ///< character data that an error kept back; next() gives it first if the
                          ///< error is of a tag
    std::string error;    ///< code and message of the error thrown
    std::string told;     ///< the same of errors that were reported
    bool ended = false;
    bool merged = true;  ///< whether all of it can be compared with what next() gives
};

std::string errorText(const RyError& error) {
    std::string text = std::to_string(error.getErrorCode()) + " ";
    error.getMessage().toUTF8String(text);
    return text + "\n";
}

/// An error's text up to its position, whose event is a different one for tokens.
std::string withoutPosition(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

void tell(const RyError& error, void* user) {
    static_cast<Record*>(user)->told += errorText(error);
}

[[noreturn]] void fail(const char* what, const Record& a, const Record& b) {
    std::fprintf(stderr, "%s\n--- one\n%s%s%s--- other\n%s%s%s", what, a.events.c_str(),
                 a.told.c_str(), a.error.c_str(), b.events.c_str(), b.told.c_str(),
                 b.error.c_str());
    std::abort();
}

/// The text of one predefined entity, empty for any other.
UnicodeString predefined(const UnicodeString& name) {
    if (name == u"lt") return u"<";
    if (name == u"gt") return u">";
    if (name == u"amp") return u"&";
    if (name == u"apos") return u"'";
    return name == u"quot" ? u"\"" : u"";
}

/// Collects tokens into what next() gives of them.
class Merger {
public:
    explicit Merger(Record& record) : record_(record) {}
    ~Merger() { record_.pending = textEvent(); }
    Merger(const Merger&) = delete;
    Merger& operator=(const Merger&) = delete;

    void take(RyXmlParser& parser) {
        const RyXmlParser::EventType event = parser.getEventType();
        if (event == RyXmlParser::TEXT || event == RyXmlParser::CDSECT) {
            text_ += parser.getText();
        } else if (event == RyXmlParser::ENTITY_REF) {
            takeReference(parser);
        } else if (event <= RyXmlParser::END_TAG) {
            flush();
            record_.events += eventText(parser);
        }
    }

private:
    void takeReference(RyXmlParser& parser) {
        const UnicodeString text =
            parser.getName().isEmpty() ? parser.getText() : predefined(parser.getName().toString());
        if (text.isEmpty()) record_.merged = false;
        text_ += text;
    }

    std::string textEvent() const {
        if (text_.isEmpty()) return {};
        std::string event = "#4 ";
        append(event, text_);
        return event + "\n";
    }

    void flush() {
        record_.events += textEvent();
        text_.remove();
    }

    Record& record_;
    UnicodeString text_;
};

enum class Mode { NEXT, TOKENS, MERGED_TOKENS };

void pull(RyXmlParser& parser, Mode mode, std::size_t most, Record& record) {
    Merger merger(record);
    for (std::size_t count = 0; count < most; ++count) {
        const RyXmlParser::EventType event =
            mode == Mode::NEXT ? parser.next() : parser.nextToken();
        if (mode == Mode::MERGED_TOKENS) {
            merger.take(parser);
        } else {
            record.events += eventText(parser);
            if (isCharacterData(event)) parser.isWhitespace();
        }
        if (event == RyXmlParser::END_DOCUMENT) {
            record.ended = true;
            return;
        }
    }
}

Record read(const std::string& bytes, Setting setting, Mode mode, std::size_t chunk, bool told) {
    Record record;
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    for (int i = 0; i < 6; ++i) {
        parser->setFeature(static_cast<RyXmlParser::Feature>(i),
                           ((setting.features >> i) & 1) != 0);
    }
    RyXmlLimits limits;
    limits.expansionThreshold = 20'000;
    limits.expansionFactor = 10;
    limits.nestedInputs = 16;
    parser->setLimits(limits);
    if (told) parser->setCallbackError(&tell, &record);
    ChunkBuf buffer(bytes, chunk);
    std::istream in(&buffer);
    try {
        parser->setInput(in, UnicodeString(setting.encoding), UnicodeString(u"http://f.example/"));
        pull(*parser, mode, 100'000 + 100 * bytes.size(), record);
    } catch (const RyError& error) {
        record.error = errorText(error);
        record.ended = true;
    }
    return record;
}

void requireSame(const char* what, const Record& a, const Record& b) {
    if (a.events != b.events || a.error != b.error || a.told != b.told) fail(what, a, b);
}

void check(const std::string& bytes, Setting setting) {
    for (const Mode mode : {Mode::NEXT, Mode::TOKENS}) {
        for (const bool told : {false, true}) {
            const Record whole = read(bytes, setting, mode, bytes.size() + 1, told);
            if (!whole.ended) fail("does not end", whole, whole);
            if (whole.events.empty() && whole.error.empty()) fail("says nothing", whole, whole);
            if (told != (mode == Mode::TOKENS)) continue;  // one of both is enough for each mode
            for (std::size_t chunk = 1; chunk <= 7; ++chunk) {
                requireSame("chunks differ", whole, read(bytes, setting, mode, chunk, told));
            }
        }
    }
    for (const bool told : {false, true}) {
        Record next = read(bytes, setting, Mode::NEXT, bytes.size() + 1, told);
        Record merged = read(bytes, setting, Mode::MERGED_TOKENS, bytes.size() + 1, told);
        if (!merged.merged) continue;
        next.error = withoutPosition(next.error);
        merged.error = withoutPosition(merged.error);
        if (next.events == merged.events + merged.pending) merged.events = next.events;
        requireSame("tokens differ from next", next, merged);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FixedResources resources;
    if (size == 0) return 0;
    RyUriReferenceResolver* const previous = RyUri::setUriReferenceResolver(&resources);
    const std::size_t start = isSetting(data[0]) ? 1 : 0;
    check(std::string(reinterpret_cast<const char*>(data) + start, size - start),
          settingOf(data[0]));
    RyUri::setUriReferenceResolver(previous);
    return 0;
}
