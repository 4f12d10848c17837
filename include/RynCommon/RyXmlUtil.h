// Factories of parser and serializer, qualified names, a document's root.
#pragma once

#include <istream>

#include <RynCommon/RyName.h>
#include <RynCommon/RyObject.h>
#include <RynCommon/RyXmlParser.h>
#include <RynCommon/RyXmlSerializer.h>

namespace RynCommon {

/// Static services around the XML parser.
class RYNCOMMON_API RyXmlUtil {
public:
    RyXmlUtil() = delete;

    static RyPtr<RyXmlParser> createXmlParser();
    static RyPtr<RyXmlSerializer> createXmlSerializer();

    /// "prefix:local", or the local name alone when the prefix is empty.
    static RyName makeQName(RyName prefix, RyName local);
    static UnicodeString makeQNameStr(const UnicodeString& prefix, const UnicodeString& local);
    /// What stands before the first colon, unless that is the first character; else empty.
    static RyName getPrefixFromQName(RyName qname);
    static UnicodeString getPrefixFromQNameStr(const UnicodeString& qname);
    /// The rest.
    static RyName getLocalPartFromQName(RyName qname);
    static UnicodeString getLocalPartFromQNameStr(const UnicodeString& qname);
    /// A key for a namespaced name: `local`, "xml:local", "xmlns", "xmlns:local" or "{ns}:local"
    /// (the colon belongs to it).
    static UnicodeString makeNSQNameStr(const UnicodeString& ns, const UnicodeString& local);

    /// A parser that stands at the root element's start tag (no external DTD, tolerant prefixes and
    /// encodings), or null when there is no element. `type` and `charset` go to setStreamType().
    /// Parse errors pass on.
    static RyPtr<RyXmlParser> getRootParser(std::istream& in, const UnicodeString& type,
                                            const UnicodeString& charset);
    static RyPtr<RyXmlParser> getRootParser(const UnicodeString& uri);
    /// Namespace of the root element and, in `local`, its name; both empty when there is none.
    static RyName getRootName(RyName& local, std::istream& in, const UnicodeString& type,
                              const UnicodeString& charset);
    static RyName getRootName(RyName& local, const UnicodeString& uri);
    /// The same, but a formatting-object root that carries an XSLT version attribute (a simplified
    /// stylesheet) gives the XSLT namespace. The stream is read once, up to the root's start tag,
    /// so that it need not be seekable.
    static RyName getXSLStylesheetNamespace(RyName& local, std::istream& in,
                                            const UnicodeString& type,
                                            const UnicodeString& charset);
    static RyName getXSLStylesheetNamespace(RyName& local, const UnicodeString& uri);
};

}  // namespace RynCommon
