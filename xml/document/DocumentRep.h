// What a document holds besides its node.
#pragma once

#include <RynCommon/RyDocument.h>

#include "xml/document/Loader.h"

namespace RynCommon {

struct RyDocument::Rep {
    explicit Rep(RyDocument& document) : loader(document) {}

    /// The node that `parent` means as the target of a load from `uri`, which is noted where the
    /// document itself is loaded.
    RyNode& targetOf(RyNode* parent, RyDocument& document, const UnicodeString& uri) {
        if (parent != nullptr && parent != &document) return *parent;
        documentUri = uri;
        return document;
    }

    RyPtr<RyXmlParser> parser;
    RyPtr<RyXmlSerializer> serializer;
    UnicodeString documentUri;
    UnicodeString baseUri;
    bool pullMode = false;
    Loader loader;
};

/// How a document is saved; texts are empty where they are left out.
struct RyDocument::SaveOptions {
    UnicodeString encoding = {};
    UnicodeString docdecl = {};
    UnicodeString declaredEncoding = {};
    UnicodeString standalone = {};
};

}  // namespace RynCommon
