// What the tests of the XML parser share: streams that hold back, resources in memory, and one-line
// dumps of events.
#pragma once

#include <RynCommon/RyError.h>
#include <RynCommon/RyName.h>
#include <RynCommon/RyUri.h>
#include <RynCommon/RyXmlParser.h>
#include <RynCommon/RyXmlUtil.h>
#include <gtest/gtest.h>

#include <functional>
#include <istream>
#include <map>
#include <mutex>
#include <optional>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "tests/Text.h"

namespace xmltest {

using RynCommon::RyError;
using RynCommon::RyName;
using RynCommon::RyPtr;
using RynCommon::RyUri;
using RynCommon::RyXmlLimits;
using RynCommon::RyXmlParser;
using RynCommon::RyXmlUtil;
using RynCommon::UnicodeString;
using namespace std::string_literals;

inline UnicodeString fromUtf8(const std::string& text) {
    return RynCommon::u(text);
}
inline std::string toUtf8(const UnicodeString& text) {
    return RynCommon::s(text);
}
/// Text in printable ASCII: "\n", "\t", "\r", and "\u{85}" for every other character.
std::string shown(const UnicodeString& text);
/// Bytes of code points (surrogates and values above U+10FFFF are written as they are) in "UTF-8",
/// "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE" or "ISO-8859-1".
std::string encode(std::string_view encoding, std::u32string_view text);
std::string repeat(std::string_view piece, std::size_t times);

/// Bytes that become ready `step` at a time, each time only after somebody waited for them.
class ChunkBuf : public std::streambuf {
public:
    ChunkBuf(std::string bytes, std::size_t step) : bytes_(std::move(bytes)), step_(step) {}
    /// Bytes that were waited for so far.
    std::size_t delivered() const { return delivered_; }

protected:
    int_type underflow() override;
    std::streamsize showmanyc() override { return delivered_ < bytes_.size() ? 0 : -1; }

private:
    std::string bytes_;
    std::size_t step_;
    std::size_t delivered_ = 0;
};

/// Bytes outside of the buffer, of which `ready` are known to be ready at a time; records how far
/// and in how many calls they were demanded, by looking or by taking.
class DripBuf : public std::streambuf {
public:
    explicit DripBuf(std::string bytes, std::size_t ready = 0)
        : bytes_(std::move(bytes)), ready_(ready) {}
    std::size_t demanded() const { return demanded_; }
    std::size_t calls() const { return calls_; }
    bool askedForMoreThanReady() const { return greedy_; }

protected:
    int_type underflow() override;
    int_type uflow() override;
    std::streamsize xsgetn(char* to, std::streamsize count) override;
    std::streamsize showmanyc() override;

private:
    std::string bytes_;
    std::size_t ready_;
    std::size_t position_ = 0;
    std::size_t demanded_ = 0;
    std::size_t calls_ = 0;
    bool greedy_ = false;
};

/// A parser at the start of what a buffer has.
template <class Buffer>
struct Opened {
    template <class... Args>
    explicit Opened(Args&&... args) : buffer(std::forward<Args>(args)...) {
        parser->setInput(in, UnicodeString(), UnicodeString());
    }
    RyXmlParser* operator->() { return parser.get(); }
    RyXmlParser& operator*() { return *parser; }

    Buffer buffer;
    std::istream in{&buffer};
    RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
};

/// Resources by URI, installed as the process's resolver while it lives.
class Resources : public RynCommon::RyUriReferenceResolver {
public:
    Resources() : previous_(RyUri::setUriReferenceResolver(this)) {}
    ~Resources() override { RyUri::setUriReferenceResolver(previous_); }
    std::istream* getStream(const UnicodeString& uri, UnicodeString* contentType) override;

    std::map<std::string, std::string> files;
    std::map<std::string, int> fetched;
    /// What every URI without a file gives; null leaves it to the library.
    const char* others = nullptr;

private:
    std::mutex mutex_;
    RynCommon::RyUriReferenceResolver* previous_;
};

/// How a document is read.
struct Reading {
    std::string encoding = {};  ///< what the caller tells
    std::string base = {};
    std::string uri = {};     ///< read instead of the bytes when not empty
    unsigned features = 0;    ///< bit n is feature n
    std::size_t chunk = 0;    ///< bytes ready at a time; 0 for all
    bool tokens = false;      ///< nextToken() instead of next()
    bool callback = false;    ///< errors are reported, not thrown
    bool namespaces = false;  ///< names are shown with their namespaces
    std::optional<RyXmlLimits> limits = {};
    std::size_t maxEvents = 3'000'000;
    std::function<void(RyXmlParser&)> prepare = {};  ///< called after the input is set
};

/// What came of it.
struct Outcome {
    std::string events;                 ///< "S(a x=1) T(hello) E(a) ."
    std::vector<std::string> reported;  ///< raw messages that the callback got
    std::string codes;                  ///< their codes, separated by blanks
    int code = 0;                       ///< of the error thrown; 0 for none
    std::string message;                ///< its raw message
    std::string source;
    std::string encoding;
    int line = -2;  ///< where reading ended
    int column = -2;

    /// "S(a) !6145", or "6145 | S(a) ." of errors that were reported.
    std::string summary() const;
};

/// The parser's present event: S tag, E end tag, T text, C CDATA section, R reference (R(#x) for
/// the character x), W ignorable white space, P processing instruction, K comment, D document type,
/// "." for the end.
std::string dumpEvent(RyXmlParser& parser, bool namespaces = false);
Outcome run(const std::string& bytes, const Reading& how = {});
/// Runs whole and in chunks of 1 to 7 bytes and expects the same summary each time.
void expectInAllChunks(const std::string& what, const std::string& bytes, const Reading& how,
                       const std::string& expected);
/// The error that `action` throws; code 0 when it throws none.
RyError errorOf(const std::function<void()>& action);

/// An input and the summary expected of it.
struct Row {
    std::string input;
    std::string expected;
};
void expectRows(const std::vector<Row>& rows, const Reading& how = {});

}  // namespace xmltest
