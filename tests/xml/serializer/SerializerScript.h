// Scripts of serializer calls, and what comes of them.
#pragma once

#include <gtest/gtest.h>

#include <RynCommon/RyError.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/Text.h"
#include "xml/serializer/XmlSerializerImpl.h"

namespace RynCommon {

using Script = std::function<void(RyXmlSerializer&)>;

struct Case {
    const char* what;
    Script script;
    std::string expected;
};

inline RyName name(const char16_t* text) {
    return RyName(UnicodeString(text));
}

inline RyPtr<RyXmlSerializer> makeSerializer(bool conformant = false) {
    RyPtr<RyXmlSerializer> serializer(new XmlSerializerImpl);
    serializer->setGenerator(UnicodeString());
    serializer->setConformant(conformant);
    return serializer;
}

inline const RyName NONE;
inline const RyName A = name(u"a");
inline const RyName B = name(u"b");
inline const RyName P = name(u"p");
inline const RyName Q = name(u"q");
inline const RyName NS1 = name(u"urn:1");
inline const RyName NS2 = name(u"urn:2");

inline RyName partOf(const std::string& text) {
    return RyName(u(text));
}

inline RyName namespaceOf(const std::string& key) {
    if (key == "xml") return RN_NS_xml;
    return key == "xmlns" ? RyName(RN_NS_xmlns) : partOf("urn:" + key);
}

/// Makes the call that a word asks for if it takes no name; false for the others.
inline bool callWithText(RyXmlSerializer& serializer, const std::string& word) {
    const UnicodeString rest = u(word.substr(1));
    switch (word[0]) {
        case '<':
        case '/':
        case '+':
        case '@':
            return false;
        case '?':
            serializer.processingInstruction(rest);
            return true;
        case '#':
            serializer.comment(rest);
            return true;
        case '&':
            serializer.entityRef(rest);
            return true;
        case '[':
            serializer.cdsect(rest);
            return true;
        default:
            serializer.text(u(word));
            return true;
    }
}

inline void callWithName(RyXmlSerializer& serializer, const std::string& word) {
    const std::size_t equals = std::min(word.find('='), word.size());
    const UnicodeString value = u(word.substr(std::min(equals + 1, word.size())));
    std::string qname = word.substr(1, equals - 1);
    const std::size_t at = std::min(qname.find('@'), qname.size());
    const RyName ns = at < qname.size() ? namespaceOf(qname.substr(at + 1)) : RyName();
    const bool generate = qname[0] == '*';
    qname = qname.substr(generate, at - generate);
    const std::size_t colon = qname.find(':');
    const RyName local = partOf(colon == qname.npos ? qname : qname.substr(colon + 1));
    const RyName prefix = colon == qname.npos ? RyName() : partOf(qname.substr(0, colon));
    if (word[0] == '<')
        serializer.startTag(ns, prefix, local, generate);
    else if (word[0] == '/')
        serializer.endTag(ns, local);
    else if (word[0] == '+')
        serializer.setPrefix(local, ns);
    else if (colon == qname.npos)
        serializer.attribute(ns, local, value);
    else
        serializer.attribute(ns, prefix, local, value);
}

/// Calls as words: "<p:a@1" starts a tag of prefix p in the namespace urn:1, "<*p:a@1" one whose
/// prefix may be generated, "/a@1" ends one; "@a@1=v" sets an attribute without a word on its
/// prefix, "@p:a@1=v" one with it (":a@1" the empty one); "+p@1" is setPrefix, "?t" a processing
/// instruction, "#c" a comment, "&e" a reference, "[x" a CDATA section, any other word text.
/// "@xml" and "@xmlns" stand for the namespaces of those prefixes.
inline Script calls(const std::string& words) {
    return [words](RyXmlSerializer& serializer) {
        std::istringstream in(words);
        for (std::string word; in >> word;)
            if (!callWithText(serializer, word)) callWithName(serializer, word);
    };
}

// The bytes that a script writes, up to its last call.
inline std::string written(const Script& script, const char16_t* encoding,
                           bool conformant = false) {
    std::ostringstream out;
    const RyPtr<RyXmlSerializer> serializer = makeSerializer(conformant);
    serializer->setOutput(&out, encoding);
    script(*serializer);
    serializer->flush();
    return out.str();
}

inline void expectAll(const std::vector<Case>& cases, const char16_t* encoding,
                      bool conformant = false) {
    for (const Case& row : cases)
        EXPECT_EQ(written(row.script, encoding, conformant), row.expected) << row.what;
}

// Error code of a call, 0 when it passes; a failing call writes nothing.
struct Failure {
    int code = 0;
    std::string message;
    UnicodeString source;
};

inline Failure failureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const RyError& error) {
        return {error.getErrorCode(), s(error.getRawMessage()), error.getSource()};
    }
    return {};
}

}  // namespace RynCommon
