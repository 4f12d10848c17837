// Reads document type declarations and the declarations in their subsets.
#pragma once

#include <cstdint>

#include "xml/parser/AttributeDefaults.h"
#include "xml/parser/ParserCore.h"

namespace RynCommon {

/// What a DOCTYPE says beside its declarations.
struct Doctype {
    UnicodeString publicId;
    UnicodeString systemId;
    bool hasSystemId = false;
};

/// Reads markup declarations (XML 1.0, 2.8, 3.3, 3.4 and 4.2) into the entity tables of the core.
/// Entities are declared; attribute declarations of the internal subset are kept; element and
/// notation declarations are passed over.
class DoctypeReader {
public:
    DoctypeReader(ParserCore& core, AttributeDefaults* defaults)
        : core_(core), scanner_(core.scanner), defaults_(defaults) {}

    /// The rest of a declaration behind "<!DOCTYPE", with its internal subset.
    Doctype readDoctype();
    /// The whole input as an external subset.
    void readExternalSubset();

private:
    void readSubset();
    void readSubsetToken(int c);
    void readParameterReference();
    void readMarkup();
    void readConditional();
    void skipIgnored();
    void readEntity();
    void readEntityDefinition(const UnicodeString& where, bool parameter, EntityDeclaration& entity,
                              bool& valid);
    void readAttributeList();
    bool readAttributeDefinition(AttributeDeclaration& attribute);
    bool readAttributeType(AttributeDeclaration& attribute);
    void readDefault(AttributeDeclaration& attribute);
    bool readExternalId(const UnicodeString& where, UnicodeString& publicId,
                        UnicodeString& systemId);
    bool readIdentifier(unsigned short missing, const UnicodeString& after, UnicodeString& value);
    bool skipDeclarationSpace();
    void endDeclaration(const UnicodeString& what);
    void skipDeclaration();
    bool inParameterEntity() const { return external_ || scanner_.depth() > subsetDepth_; }

    ParserCore& core_;
    Scanner& scanner_;
    AttributeDefaults* defaults_;
    bool external_ = false;
    std::size_t subsetDepth_ = 1;
    std::int32_t openIncludes_ = 0;
    bool subsetEnded_ = false;
};

}  // namespace RynCommon
