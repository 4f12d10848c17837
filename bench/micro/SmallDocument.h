// A document of some 4 KB of formatting objects, and a parser's whole life around it.
#pragma once

#include <RynCommon/RyXmlUtil.h>

#include <istream>
#include <streambuf>
#include <string>

namespace RynCommon {

/// The body of 4 KB comes `bodies` times between the same few bytes.
inline std::string makeDocument(int bodies) {
    static const char* const PROPERTIES[] = {
        "font-size=\"10pt\"",          "space-before=\"6pt\"",  "keep-with-next=\"always\"",
        "text-align=\"justify\"",      "start-indent=\"12mm\"", "color=\"#203040\"",
        "font-family=\"Helvetica\"",   "line-height=\"1.3\"",   "border=\"0.5pt solid black\"",
        "background-color=\"silver\"", "id=\"place\"",
    };
    std::string body;
    for (unsigned i = 0; body.size() < 4000; ++i) {
        body += "<fo:block ";
        body += PROPERTIES[i % 11];
        body += ' ';
        body += PROPERTIES[(i * 3 + 1) % 11 == i % 11 ? (i + 1) % 11 : (i * 3 + 1) % 11];
        body +=
            ">The quick brown fox <fo:inline font-weight=\"bold\">jumps</fo:inline> over the "
            "lazy dog.</fo:block>\n";
    }
    std::string document = "<fo:root xmlns:fo=\"http://www.w3.org/1999/XSL/Format\">";
    for (int i = 0; i < bodies; ++i) document += body;
    return document + "</fo:root>";
}

/// Reads a document from memory to its end, with a parser of its own.
inline void parse(const std::string& document) {
    class Bytes : public std::streambuf {
    public:
        explicit Bytes(const std::string& text) {
            char* const begin = const_cast<char*>(text.data());
            setg(begin, begin, begin + text.size());
        }
    };
    Bytes bytes(document);
    std::istream in(&bytes);
    const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    parser->setInput(in, UnicodeString(), UnicodeString());
    while (parser->next() != RyXmlParser::END_DOCUMENT) {
    }
}

}  // namespace RynCommon
