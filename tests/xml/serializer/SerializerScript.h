// Scripts of serializer calls, and what comes of them.
#pragma once

#include <gtest/gtest.h>

#include <RynCommon/RyError.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

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

/// Calls as words: "<p:a@1" starts a tag of prefix p in the namespace urn:1, "<*p:a@1" one whose
/// prefix may be generated, "/a@1" ends one; "@a@1=v" sets an attribute without a word on its
/// prefix, "@p:a@1=v" one with it (":a@1" the empty one); "+p@1" is setPrefix, any other word text.
inline Script calls(const std::string& words) {
    return [words](RyXmlSerializer& serializer) {
        const auto part = [](const std::string& text) {
            return RyName(UnicodeString::fromUTF8(text));
        };
        std::istringstream in(words);
        for (std::string word; in >> word;) {
            const std::size_t equals = std::min(word.find('='), word.size());
            const UnicodeString value =
                UnicodeString::fromUTF8(word.substr(std::min(equals + 1, word.size())));
            std::string qname = word.substr(1, equals - 1);
            const std::size_t at = std::min(qname.find('@'), qname.size());
            const RyName ns = at < qname.size() ? part("urn:" + qname.substr(at + 1)) : RyName();
            const bool generate = qname[0] == '*';
            qname = qname.substr(generate, at - generate);
            const std::size_t colon = qname.find(':');
            const RyName local = part(colon == qname.npos ? qname : qname.substr(colon + 1));
            const RyName prefix = colon == qname.npos ? RyName() : part(qname.substr(0, colon));
            if (word[0] == '<')
                serializer.startTag(ns, prefix, local, generate);
            else if (word[0] == '/')
                serializer.endTag(ns, local);
            else if (word[0] == '+')
                serializer.setPrefix(local, ns);
            else if (word[0] != '@')
                serializer.text(UnicodeString::fromUTF8(word));
            else if (colon == qname.npos)
                serializer.attribute(ns, local, value);
            else
                serializer.attribute(ns, prefix, local, value);
        }
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
        Failure failure{error.getErrorCode(), {}, error.getSource()};
        error.getRawMessage().toUTF8String(failure.message);
        return failure;
    }
    return {};
}

}  // namespace RynCommon
