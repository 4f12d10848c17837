// RyXmlUtil: factories, qualified names, a document's root.
#include <RynCommon/RyXmlUtil.h>

#include "core/MemoryCheck.h"
#include "xml/parser/XmlParserImpl.h"
#include "xml/serializer/XmlSerializerImpl.h"

namespace RynCommon {

namespace {

RyPtr<RyXmlParser> createRootParser() {
    RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
    parser->setFeature(RyXmlParser::NO_EXTERNAL_DTD, true);
    parser->setFeature(RyXmlParser::FEATURE_1, true);
    parser->setFeature(RyXmlParser::TOLERANT_PREFIXES, true);
    parser->setFeature(RyXmlParser::RAW_UNKNOWN_ENCODING, true);
    return parser;
}

RyPtr<RyXmlParser> advanceToRoot(RyPtr<RyXmlParser> parser) {
    for (;;) {
        switch (parser->next()) {
            case RyXmlParser::START_TAG:
                return parser;
            case RyXmlParser::END_DOCUMENT:
                return nullptr;
            default:
                break;
        }
    }
}

RyName rootNameOf(const RyXmlParser* parser, RyName& local) {
    local = parser != nullptr ? parser->getName() : RyName();
    return parser != nullptr ? parser->getNamespace() : RyName();
}

bool hasXsltVersion(const RyXmlParser& parser) {
    for (int i = parser.getAttributeCount() - 1; i >= 0; --i) {
        if (parser.getAttributeName(i) == RN_version &&
            parser.getAttributeNamespace(i) == RN_NS_xslt)
            return true;
    }
    return false;
}

RyName stylesheetNamespaceOf(const RyXmlParser* parser, RyName& local) {
    const RyName ns = rootNameOf(parser, local);
    const bool isFoRoot = ns == RN_NS_fo && local == RN_root;
    return isFoRoot && hasXsltVersion(*parser) ? RyName(RN_NS_xslt) : ns;
}

// Length of the prefix of a qualified name.
std::int32_t prefixLength(const UnicodeString& qname) {
    const std::int32_t colon = qname.indexOf(u':');
    return colon > 0 ? colon : 0;
}

}  // namespace

RyPtr<RyXmlParser> RyXmlUtil::createXmlParser() {
    return new XmlParserImpl;
}

RyPtr<RyXmlSerializer> RyXmlUtil::createXmlSerializer() {
    return new XmlSerializerImpl;
}

RyName RyXmlUtil::makeQName(RyName prefix, RyName local) {
    return prefix.isEmpty() ? local : RyName(makeQNameStr(prefix.toString(), local.toString()));
}

UnicodeString RyXmlUtil::makeQNameStr(const UnicodeString& prefix, const UnicodeString& local) {
    return prefix.isEmpty() ? local : takeWhole(UnicodeString(prefix).append(u':').append(local));
}

RyName RyXmlUtil::getPrefixFromQName(RyName qname) {
    return getPrefixFromQNameStr(qname.toString());
}

UnicodeString RyXmlUtil::getPrefixFromQNameStr(const UnicodeString& qname) {
    return takeWhole(UnicodeString(qname, 0, prefixLength(qname)));
}

RyName RyXmlUtil::getLocalPartFromQName(RyName qname) {
    return prefixLength(qname.toString()) == 0 ? qname
                                               : RyName(getLocalPartFromQNameStr(qname.toString()));
}

UnicodeString RyXmlUtil::getLocalPartFromQNameStr(const UnicodeString& qname) {
    const std::int32_t length = prefixLength(qname);
    return length == 0 ? qname : takeWhole(UnicodeString(qname, length + 1));
}

UnicodeString RyXmlUtil::makeNSQNameStr(const UnicodeString& ns, const UnicodeString& local) {
    if (ns.isEmpty()) return local;
    if (ns == RyName(RN_NS_xml).toString()) return takeWhole(u"xml:" + local);
    if (ns == RyName(RN_NS_xmlns).toString())
        return local == u"xmlns" ? local : takeWhole(u"xmlns:" + local);
    return takeWhole(UnicodeString(u'{').append(ns).append(u"}:", 2).append(local));
}

RyPtr<RyXmlParser> RyXmlUtil::getRootParser(std::istream& in, const UnicodeString& type,
                                            const UnicodeString& charset) {
    RyPtr<RyXmlParser> parser = createRootParser();
    parser->setStreamType(type, charset);
    parser->setInput(in, UnicodeString(), UnicodeString());
    return advanceToRoot(parser);
}

RyPtr<RyXmlParser> RyXmlUtil::getRootParser(const UnicodeString& uri) {
    RyPtr<RyXmlParser> parser = createRootParser();
    parser->setInput(uri, UnicodeString(), UnicodeString());
    return advanceToRoot(parser);
}

RyName RyXmlUtil::getRootName(RyName& local, std::istream& in, const UnicodeString& type,
                              const UnicodeString& charset) {
    return rootNameOf(getRootParser(in, type, charset), local);
}

RyName RyXmlUtil::getRootName(RyName& local, const UnicodeString& uri) {
    return rootNameOf(getRootParser(uri), local);
}

RyName RyXmlUtil::getXSLStylesheetNamespace(RyName& local, std::istream& in,
                                            const UnicodeString& type,
                                            const UnicodeString& charset) {
    return stylesheetNamespaceOf(getRootParser(in, type, charset), local);
}

RyName RyXmlUtil::getXSLStylesheetNamespace(RyName& local, const UnicodeString& uri) {
    return stylesheetNamespaceOf(getRootParser(uri), local);
}

}  // namespace RynCommon
