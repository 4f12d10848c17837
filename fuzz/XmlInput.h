// Documents as fuzz targets read them: with resources that never open anything, within narrow
// limits.
#pragma once

#include <RynCommon/RyError.h>
#include <RynCommon/RyUri.h>
#include <RynCommon/RyXmlParser.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace RynCommon {

/// A document, and how it is to be read. A first byte of 0x80 to 0xBF, which begins no document,
/// chooses features and the encoding told by the caller.
struct XmlInput {
    XmlInput(const std::uint8_t* data, std::size_t size);
    explicit XmlInput(std::string document) : bytes(std::move(document)) {}

    unsigned features = 0;
    UnicodeString encoding;
    std::string bytes;
};

/// Sets features, and limits low enough for the time of one run. Entities and external DTDs come
/// from a few fixed texts from then on.
void prepareParser(RyXmlParser& parser, unsigned features);

/// The base of the documents; relative references resolve against it.
constexpr char16_t FUZZ_BASE[] = u"http://f.example/";

/// Code and message, and a line feed.
std::string errorText(const RyError& error);

/// The text in UTF-8 behind its length.
void appendText(std::string& out, const UnicodeString& text);

}  // namespace RynCommon
