// Bodies of what the tests of the XML parser share.
#include "ParserFixture.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace xmltest {

std::string shown(const UnicodeString& text) {
    std::string result;
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const auto c = static_cast<unsigned>(text.char32At(i));
        char escape[16];
        if (c >= 0x20 && c < 0x7F) {
            result += static_cast<char>(c);
        } else if (c == '\n' || c == '\t' || c == '\r') {
            result += c == '\n' ? "\\n" : c == '\t' ? "\\t" : "\\r";
        } else {
            std::snprintf(escape, sizeof escape, "\\u{%X}", c);
            result += escape;
        }
    }
    return result;
}

namespace {

void appendUnits(std::string& out, std::uint32_t value, int bytes, bool little) {
    for (int i = 0; i < bytes; ++i) {
        const int shift = 8 * (little ? i : bytes - 1 - i);
        out += static_cast<char>((value >> shift) & 0xFF);
    }
}

void appendUtf8(std::string& out, std::uint32_t c) {
    const int more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    static const unsigned leads[] = {0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(leads[more] | (c >> (6 * more)));
    for (int i = more - 1; i >= 0; --i) out += static_cast<char>(0x80 | ((c >> (6 * i)) & 0x3F));
}

void appendUtf16(std::string& out, std::uint32_t c, bool little) {
    if (c < 0x10000) return appendUnits(out, c, 2, little);
    appendUnits(out, 0xD800 + ((c - 0x10000) >> 10), 2, little);
    appendUnits(out, 0xDC00 + ((c - 0x10000) & 0x3FF), 2, little);
}

}  // namespace

std::string encode(std::string_view encoding, std::u32string_view text) {
    std::string out;
    const bool little = encoding.ends_with("LE");
    for (const char32_t c : text) {
        if (encoding == "UTF-8") {
            appendUtf8(out, c);
        } else if (encoding.starts_with("UTF-16")) {
            appendUtf16(out, c, little);
        } else if (encoding.starts_with("UTF-32")) {
            appendUnits(out, c, 4, little);
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

std::string repeat(std::string_view piece, std::size_t times) {
    std::string result;
    result.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i) result += piece;
    return result;
}

ChunkBuf::int_type ChunkBuf::underflow() {
    if (delivered_ >= bytes_.size()) return traits_type::eof();
    const std::size_t count = std::min(step_, bytes_.size() - delivered_);
    char* start = bytes_.data() + delivered_;
    setg(start, start, start + count);
    delivered_ += count;
    return traits_type::to_int_type(*start);
}

DripBuf::int_type DripBuf::underflow() {
    ++calls_;
    demanded_ = std::max(demanded_, position_ + 1);
    return position_ < bytes_.size() ? traits_type::to_int_type(bytes_[position_])
                                     : traits_type::eof();
}

DripBuf::int_type DripBuf::uflow() {
    const int_type c = underflow();
    if (!traits_type::eq_int_type(c, traits_type::eof())) ++position_;
    return c;
}

std::streamsize DripBuf::xsgetn(char* to, std::streamsize count) {
    ++calls_;
    const std::size_t left = bytes_.size() - position_;
    const std::size_t wanted = static_cast<std::size_t>(count);
    greedy_ = greedy_ || (wanted > 1 && wanted > std::min(ready_, left));
    const std::size_t given = std::min(wanted, left);
    std::copy_n(bytes_.data() + position_, given, to);
    position_ += given;
    demanded_ = std::max(demanded_, position_);
    return static_cast<std::streamsize>(given);
}

std::streamsize DripBuf::showmanyc() {
    const std::size_t left = bytes_.size() - position_;
    return ready_ != 0 && left == 0 ? -1 : static_cast<std::streamsize>(std::min(ready_, left));
}

std::istream* Resources::getStream(const UnicodeString& uri, UnicodeString*) {
    const std::string name = toUtf8(uri);
    const std::lock_guard<std::mutex> guard(mutex_);
    ++fetched[name];
    const auto file = files.find(name);
    if (file != files.end()) return new std::istringstream(file->second);
    return others == nullptr ? nullptr : new std::istringstream(others);
}

std::string Outcome::summary() const {
    std::string result = codes.empty() ? events : codes + " | " + events;
    if (code != 0) result += (result.empty() ? "!" : " !") + std::to_string(code);
    return result;
}

namespace {

std::string shownNamespace(RyName ns) {
    static const std::map<std::string, std::string> shorter = {
        {"http://www.w3.org/2000/xmlns/", "XMLNS"},
        {"http://www.w3.org/XML/1998/namespace", "XML"},
        {"http://www.w3.org/2000/svg", "SVG"},
        {"http://www.w3.org/1999/xlink", "XLINK"}};
    if (ns.isEmpty()) return {};
    const std::string text = shown(ns.toString());
    const auto found = shorter.find(text);
    return "{" + (found == shorter.end() ? text : found->second) + "}";
}

std::string shownName(RyName ns, RyName prefix, RyName local, bool namespaces) {
    std::string result = namespaces ? shownNamespace(ns) : std::string();
    if (!prefix.isEmpty()) result += shown(prefix.toString()) + ":";
    return result + shown(local.toString());
}

std::string dumpTag(RyXmlParser& parser, bool namespaces) {
    std::string result =
        shownName(parser.getNamespace(), parser.getPrefix(), parser.getName(), namespaces);
    for (int i = 0; i < parser.getAttributeCount(); ++i)
        result += " " +
                  shownName(parser.getAttributeNamespace(i), parser.getAttributePrefix(i),
                            parser.getAttributeName(i), namespaces) +
                  "=" + shown(parser.getAttributeValue(i));
    return result;
}

}  // namespace

std::string dumpEvent(RyXmlParser& parser, bool namespaces) {
    switch (parser.getEventType()) {
        case RyXmlParser::START_DOCUMENT:
            return "^";
        case RyXmlParser::END_DOCUMENT:
            return ".";
        case RyXmlParser::START_TAG:
            return "S(" + dumpTag(parser, namespaces) + ")";
        case RyXmlParser::END_TAG:
            return "E(" + dumpTag(parser, namespaces) + ")";
        case RyXmlParser::TEXT:
            return "T(" + shown(parser.getText()) + ")";
        case RyXmlParser::CDSECT:
            return "C(" + shown(parser.getText()) + ")";
        case RyXmlParser::ENTITY_REF:
            return parser.getName().isEmpty() ? "R(#" + shown(parser.getText()) + ")"
                                              : "R(" + shown(parser.getName().toString()) + ")";
        case RyXmlParser::IGNORABLE_WHITESPACE:
            return "W(" + shown(parser.getText()) + ")";
        case RyXmlParser::PROCESSING_INSTRUCTION:
            return "P(" + shown(parser.getText()) + ")";
        case RyXmlParser::COMMENT:
            return "K(" + shown(parser.getText()) + ")";
        case RyXmlParser::DOCDECL:
            return "D";
    }
    return "?";
}

namespace {

void recordError(const RyError& error, void* user) {
    auto& outcome = *static_cast<Outcome*>(user);
    outcome.codes += (outcome.codes.empty() ? "" : " ") + std::to_string(error.getErrorCode());
    outcome.reported.push_back(toUtf8(error.getRawMessage()));
}

void pullAll(RyXmlParser& parser, const Reading& how, Outcome& outcome) {
    for (std::size_t count = 0;; ++count) {
        if (count == how.maxEvents) {
            outcome.events += " endless";
            return;
        }
        if (how.tokens) {
            parser.nextToken();
        } else {
            parser.next();
        }
        if (!outcome.events.empty()) outcome.events += " ";
        outcome.events += dumpEvent(parser, how.namespaces);
        if (parser.getEventType() == RyXmlParser::END_DOCUMENT) return;
    }
}

void runParser(RyXmlParser& parser, std::istream& in, const Reading& how, Outcome& outcome) {
    for (int i = 0; i < 6; ++i)
        parser.setFeature(static_cast<RyXmlParser::Feature>(i), ((how.features >> i) & 1) != 0);
    if (how.limits) parser.setLimits(*how.limits);
    if (how.callback) parser.setCallbackError(&recordError, &outcome);
    try {
        const UnicodeString encoding = fromUtf8(how.encoding);
        if (how.uri.empty()) {
            parser.setInput(in, encoding, fromUtf8(how.base));
        } else {
            parser.setInput(fromUtf8(how.uri), encoding, fromUtf8(how.base));
        }
        if (how.prepare) how.prepare(parser);
        pullAll(parser, how, outcome);
    } catch (const RyError& error) {
        outcome.code = error.getErrorCode();
        outcome.message = toUtf8(error.getRawMessage());
        outcome.source = toUtf8(error.getSource());
    }
    outcome.encoding = toUtf8(parser.getInputEncoding());
    outcome.line = parser.getLineNumber();
    outcome.column = parser.getColumnNumber();
}

}  // namespace

Outcome run(const std::string& bytes, const Reading& how) {
    Outcome outcome;
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    ChunkBuf buffer(bytes, how.chunk == 0 ? bytes.size() + 1 : how.chunk);
    std::istream in(&buffer);
    runParser(*parser, in, how, outcome);
    return outcome;
}

void expectInAllChunks(const std::string& what, const std::string& bytes, const Reading& how,
                       const std::string& expected) {
    for (std::size_t chunk = 0; chunk <= 7; ++chunk) {
        Reading chunked = how;
        chunked.chunk = chunk;
        EXPECT_EQ(run(bytes, chunked).summary(), expected)
            << what << ", " << chunk << " bytes at a time";
    }
}

RyError errorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const RyError& error) {
        return error;
    }
    return RyError();
}

void expectRows(const std::vector<Row>& rows, const Reading& how) {
    for (const Row& row : rows) expectInAllChunks(row.input, row.input, how, row.expected);
}

}  // namespace xmltest
