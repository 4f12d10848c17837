// Fuzz target of the XML parser. Every input has to end; how its bytes arrive must not matter;
// next() must be what nextToken() gives, merged; and who has errors reported sees what who has them
// thrown sees, and then goes on.
#include <RynCommon/RyName.h>
#include <RynCommon/RyXmlUtil.h>

#include <optional>

#include "fuzz/Chunks.h"
#include "fuzz/Require.h"
#include "fuzz/XmlInput.h"

using namespace RynCommon;

namespace {

void appendTag(std::string& out, RyXmlParser& parser) {
    appendText(out, parser.getNamespace().toString());
    appendText(out, parser.getPrefix().toString());
    appendText(out, parser.getName().toString());
    for (int i = 0; i < parser.getAttributeCount(); ++i) {
        appendText(out, parser.getAttributeNamespace(i).toString());
        appendText(out, parser.getAttributePrefix(i).toString());
        appendText(out, parser.getAttributeName(i).toString());
        appendText(out, parser.getAttributeValue(i));
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
        appendText(out, parser.getName().toString());
        if (parser.getName().isEmpty()) appendText(out, parser.getText());
    } else if (event != RyXmlParser::END_DOCUMENT && event != RyXmlParser::DOCDECL) {
        appendText(out, parser.getText());
    }
    return out + "\n";
}

/// What reading a document came to.
struct Record {
    std::string events;
    std::string positions;  ///< where the parser stood after each event
    std::string pending;  ///< character data that an error kept back; next() gives it first if the
                          ///< error is of a tag
    std::string error;    ///< code and message of the error thrown
    std::string told;     ///< the same of errors that were reported
    std::optional<RyError> thrown;
    std::optional<RyError> firstTold;
    bool ended = false;
    bool merged = true;  ///< whether all of it can be compared with what next() gives
};

/// An error's text up to its position, whose event is a different one for tokens.
std::string withoutPosition(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

void tell(const RyError& error, void* user) {
    Record& record = *static_cast<Record*>(user);
    if (!record.firstTold) record.firstTold = error;
    record.told += errorText(error);
}

std::string textOf(const Record& record) {
    return record.events + record.positions + record.told + record.error;
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
        appendText(event, text_);
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
        record.positions += std::to_string(parser.getLineNumber()) + ":" +
                            std::to_string(parser.getColumnNumber()) + " ";
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

using Chunks = std::vector<std::size_t>;

Record read(const XmlInput& input, Mode mode, const Chunks& chunks, bool told) {
    Record record;
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    prepareParser(*parser, input.features);
    if (told) parser->setCallbackError(&tell, &record);
    ChunkSource buffer(input.bytes, chunks);
    std::istream in(&buffer);
    try {
        parser->setInput(in, input.encoding, UnicodeString(FUZZ_BASE));
        pull(*parser, mode, 100'000 + 100 * input.bytes.size(), record);
    } catch (const RyError& error) {
        record.thrown = error;
        record.error = errorText(error);
        record.ended = true;
    }
    return record;
}

void requireSame(const char* what, const Record& a, const Record& b) {
    requireEqual(what, textOf(a), textOf(b));
}

/// The error thrown is the first one reported, with its position and without the flags.
void checkFirstError(const Record& thrown, const Record& told) {
    constexpr unsigned flags = 0x0700;
    const RyError& first = *told.firstTold;
    require(thrown.thrown && (first.getErrorCode() & ~flags) == thrown.thrown->getErrorCode() &&
                thrown.thrown->getMessage().startsWith(first.getMessage() + u"\n"),
            "another error is thrown than reported", textOf(thrown), textOf(told));
    require(told.events.starts_with(thrown.events) && told.positions.starts_with(thrown.positions),
            "events before the first error differ", textOf(thrown), textOf(told));
}

void checkReporting(const Record& thrown, const Record& told) {
    if (told.firstTold)
        checkFirstError(thrown, told);
    else
        requireSame("reporting changes what is read", thrown, told);
}

void checkMode(const XmlInput& input, Mode mode, const Chunks& whole) {
    const Record thrown = read(input, mode, whole, false);
    const Record told = read(input, mode, whole, true);
    for (const Record& record : {thrown, told}) {
        require(record.ended, "does not end", textOf(record));
        require(!record.events.empty() || !record.error.empty(), "says nothing");
    }
    checkReporting(thrown, told);
    // One of both is enough for each mode.
    const bool isTold = mode == Mode::TOKENS;
    for (const Chunks& chunks : {Chunks{1}, Chunks{3}, chunkSizes(input.bytes)})
        requireSame("chunks differ", isTold ? told : thrown, read(input, mode, chunks, isTold));
}

void checkMerging(const XmlInput& input, bool told, const Chunks& whole) {
    Record next = read(input, Mode::NEXT, whole, told);
    Record merged = read(input, Mode::MERGED_TOKENS, whole, told);
    if (!merged.merged) return;
    if (next.events == merged.events + merged.pending) merged.events = next.events;
    requireEqual("tokens differ from next", next.events, merged.events);
    requireEqual("tokens report otherwise", next.told, merged.told);
    requireEqual("tokens fail otherwise", withoutPosition(next.error),
                 withoutPosition(merged.error));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const XmlInput input(data, size);
    const Chunks whole{input.bytes.size() + 1};
    for (const Mode mode : {Mode::NEXT, Mode::TOKENS}) checkMode(input, mode, whole);
    for (const bool told : {false, true}) checkMerging(input, told, whole);
    return 0;
}
