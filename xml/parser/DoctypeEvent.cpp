// The DOCTYPE as an event: what it makes known, and the external subset that it names.
#include <RynCommon/RyUri.h>

#include "xml/parser/Doctype.h"
#include "xml/parser/DtdCache.h"
#include "xml/parser/XmlParserImpl.h"

namespace RynCommon {

namespace {

constexpr char16_t SVG_PUBLIC_ID[] = u"-//W3C//DTD SVG";
constexpr char16_t MATHML_SYSTEM_ID[] = u"http://www.w3.org/Math/DTD/mathml2/";

bool startsWith(const UnicodeString& text, const char16_t* prefix) {
    return text.startsWith(UnicodeString(prefix));
}

}  // namespace

void XmlParserImpl::readDoctype() {
    const bool late = rootSeen_;
    if (late)
        core_.error(PARSE_LATE_DOCTYPE);
    else if (doctypeSeen_)
        core_.error(PARSE_SECOND_DOCTYPE);
    doctypeSeen_ = true;
    DoctypeReader reader(core_, &defaults_);
    const Doctype doctype = reader.readDoctype();
    if (late) return;
    if (startsWith(doctype.publicId, SVG_PUBLIC_ID))
        bindVocabulary(RyName(UnicodeString(u"http://www.w3.org/2000/svg")));
    if (doctype.hasSystemId && !core_.feature(NO_EXTERNAL_DTD))
        readExternalSubset(doctype.systemId);
}

/// Enters the entities of the external subset whose names are new. What a document's own parameter
/// entities may have changed is not shared with other documents.
void XmlParserImpl::readExternalSubset(const UnicodeString& systemId) {
    const UnicodeString uri = core_.resolve(systemId);
    if (startsWith(uri, MATHML_SYSTEM_ID)) {
        core_.mathMLEntities = true;
        return;
    }
    if (core_.parameterEntities.isEmpty()) {
        const DtdCache::Entities entities =
            DtdCache::instance().get(uri, [&] { return readSubsetOf(uri); });
        core_.generalEntities.merge(*entities);
    } else {
        core_.generalEntities.merge(readSubsetOf(uri));
    }
}

/// Reads a subset with a parser of its own, which has no callback: its errors are thrown.
EntityTable XmlParserImpl::readSubsetOf(const UnicodeString& uri) {
    XmlParserImpl reader;
    reader.core_.features = core_.features;
    reader.core_.setLimits(core_.limits);
    reader.setInput(uri, UnicodeString(), core_.baseUri);
    reader.core_.parameterEntities.merge(core_.parameterEntities);
    if (!reader.scanner().base().hasByte()) return EntityTable();  // an empty subset is one
    reader.started_ = true;
    reader.core_.event = DOCDECL;
    if (!reader.scanner().base().start()) reader.core_.error(PARSE_INVALID_CHARACTER);
    reader.core_.readTextDeclaration();
    DoctypeReader(reader.core_, nullptr).readExternalSubset();
    return std::move(reader.core_.generalEntities);
}

}  // namespace RynCommon
