// Scripts of serializer calls, and what comes of them.
#pragma once

#include <gtest/gtest.h>

#include <RynCommon/RyError.h>

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

inline const RyName NONE;
inline const RyName A = name(u"a");
inline const RyName B = name(u"b");
inline const RyName P = name(u"p");
inline const RyName Q = name(u"q");
inline const RyName NS1 = name(u"urn:1");
inline const RyName NS2 = name(u"urn:2");

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
