// What all parsers share: type identity and the character entities of MathML.
#include <RynCommon/RyXmlParser.h>

#include "xml/names/MathMLEntities.h"

namespace RynCommon {

bool RyXmlParser::isA(unsigned int id) const {
    return id == getStaticTypeID() || RyRCObject::isA(id);
}

const UnicodeString& RyXmlParser::getMathMLEntity(const UnicodeString& name) {
    return MathMLEntities::getText(name);
}

}  // namespace RynCommon
