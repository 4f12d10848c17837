// The pull interface through which every XML document is read.
#pragma once

#include <cstdint>
#include <istream>
#include <limits>

#include <RynCommon/RyError.h>
#include <RynCommon/RyName.h>
#include <RynCommon/RyObject.h>

namespace RynCommon {

/// What a document may make the parser do. The defaults leave sane documents alone, and do not
/// bound what costs no more than the input's own size. What exceeds a limit ends reading with error
/// 6208.
struct RyXmlLimits {
    static constexpr std::uint32_t UNLIMITED = std::numeric_limits<std::uint32_t>::max();

    /// Entity expansion, in characters, may exceed `expansionThreshold` only up to
    /// `expansionFactor` times the characters read from the input. An attribute that comes from
    /// its declaration counts 64 besides its value.
    std::uint64_t expansionThreshold = 8'000'000;
    std::uint32_t expansionFactor = 100;
    /// Entities and external inputs open within one another.
    std::uint32_t nestedInputs = 64;
    /// Attributes of a start tag, namespace declarations and declared defaults among them.
    std::uint32_t attributes = UNLIMITED;
    /// Length of a name as it is spelt, its prefix among it, in UTF-16 units; the keywords of
    /// declarations are names, too.
    std::uint32_t nameLength = UNLIMITED;
    /// Elements open in one another. Nothing recurses over them.
    std::uint32_t depth = UNLIMITED;
};

/// A reader of one XML document (XML 1.0 with namespaces) that hands out one event after the other.
/// Not validating: a DOCTYPE is read for its entities and attribute defaults (of at most 1,024
/// attributes an element). Used by one thread at
/// a time. What accessors return by reference is valid until the next call of next() or
/// nextToken().
class RYNCOMMON_API RyXmlParser : public RyRCObject {
public:
    enum EventType : std::int32_t {
        START_DOCUMENT = 0,
        END_DOCUMENT = 1,
        START_TAG = 2,
        END_TAG = 3,
        TEXT = 4,
        CDSECT = 5,      ///< from nextToken() only
        ENTITY_REF = 6,  ///< from nextToken() only
        IGNORABLE_WHITESPACE = 7,
        PROCESSING_INSTRUCTION = 8,
        COMMENT = 9,
        DOCDECL = 10
    };

    /// Switches, all off at first and kept from input to input. An unknown number is ignored and
    /// reads as false.
    enum Feature : std::int32_t {
        NO_EXTERNAL_DTD = 0,  ///< the external subset that a DOCTYPE names is not read
        FEATURE_1 = 1,        ///< stored for other readers of the setting
        TOLERANT_PREFIXES =
            2,  ///< an undeclared attribute prefix is its own namespace instead of error 6151
        FEATURE_3 = 3,  ///< stored for other readers of the setting
        RAW_UNKNOWN_ENCODING =
            4,  ///< an unknown encoding reads bytes as they are instead of error 6197
        BUILTIN_ENCODINGS_ONLY = 5  ///< encodings that need a converter are error 6197
    };

    using ErrorCallback = void (*)(const RyError&, void*);

    static unsigned int getStaticTypeID() { return 0x3C8E51D7u; }
    bool isA(unsigned int id) const override;

    virtual void setFeature(Feature feature, bool on) = 0;
    virtual bool getFeature(Feature feature) const = 0;
    /// Media type and charset known from elsewhere; kept lower-cased.
    virtual void setStreamType(const UnicodeString& type, const UnicodeString& charset) = 0;
    /// Hands errors to `callback` with `user` instead of throwing them; parsing goes on when it
    /// returns, and it may throw to stop. The limits of RyXmlLimits are thrown in any case. Null
    /// takes it away.
    virtual void setCallbackError(ErrorCallback callback, void* user) = 0;
    /// Opens `uri`. `encoding` (may be empty) is used where the document does not tell its own;
    /// relative references resolve against `baseUri`, or against the URI itself when that is empty.
    /// Raises 4099 when it does not open. An external DTD that cannot be opened raises 4099 as
    /// well, whatever its scheme: NO_EXTERNAL_DTD and the resolver hook of RyUri are the ways
    /// around it.
    virtual void setInput(const UnicodeString& uri, const UnicodeString& encoding,
                          const UnicodeString& baseUri) = 0;
    /// Reads from `in`, which stays the caller's and must outlive the reading. No more is taken
    /// than is ready, and waited for only as long as the current token needs it.
    virtual void setInput(std::istream& in, const UnicodeString& encoding,
                          const UnicodeString& baseUri) = 0;
    /// Lets go of the input; an owned stream is deleted.
    virtual void closeStream() = 0;
    /// The encoding in force, from the byte-order mark, the declaration or the caller.
    virtual const UnicodeString& getInputEncoding() const = 0;
    /// Enters or replaces a general entity.
    virtual void defineEntityReplacementText(RyName name, const UnicodeString& text) = 0;
    /// Number of namespace declarations in force at `depth`: those of elements 1 to `depth`.
    virtual int getNamespaceCount(int depth) const = 0;
    /// Prefix (empty for a default) of a declaration, outermost first; the empty name outside the
    /// range.
    virtual RyName getNamespacePrefix(int index) const = 0;
    virtual RyName getNamespaceUri(int index) const = 0;
    /// Namespace of the current element.
    virtual RyName getNamespace() const = 0;
    /// Namespace bound to `prefix` here; the empty name when it is unbound.
    virtual RyName getNamespace(RyName prefix) const = 0;
    /// Number of open elements: 1 within the root's tags.
    virtual int getDepth() const = 0;
    /// Event name, 'URI', line and column: "START_TAG, 'file:///a.xml', Line 3, Col 17."
    virtual UnicodeString getPositionDescription() const = 0;
    /// From 1; -1 before the input starts.
    virtual int getLineNumber() const = 0;
    /// Characters read of the line, 0 at its start; -1 before the input starts.
    virtual int getColumnNumber() const = 0;
    /// Whether the text is all white space. For TEXT, CDSECT and IGNORABLE_WHITESPACE, else error
    /// 2059.
    virtual bool isWhitespace() const = 0;
    /// Text of the event, as far as it has one.
    virtual const UnicodeString& getText() const = 0;
    /// Local name of the element; name of the entity (empty for a character reference).
    virtual RyName getName() const = 0;
    virtual RyName getPrefix() const = 0;
    /// Whether the start tag ended in "/>". For START_TAG, else error 2059.
    virtual bool isEmptyElementTag() const = 0;
    /// Number of attributes of the start tag, namespace declarations among them; 0 for other
    /// events.
    virtual int getAttributeCount() const = 0;
    /// An index outside of 0 to count - 1 is error 2052 here and in the three below.
    virtual RyName getAttributeNamespace(int index) const = 0;
    virtual RyName getAttributeName(int index) const = 0;
    virtual RyName getAttributePrefix(int index) const = 0;
    /// Value by namespace and local name; the empty text when there is no such attribute.
    virtual const UnicodeString& getAttributeValue(RyName ns, RyName name) const = 0;
    virtual const UnicodeString& getAttributeValue(int index) const = 0;
    virtual EventType getEventType() const = 0;
    /// The next START_TAG, END_TAG, TEXT or END_DOCUMENT: references are resolved, CDATA sections
    /// and adjacent pieces are one TEXT, all else is passed over.
    virtual EventType next() = 0;
    /// The next event of any type.
    virtual EventType nextToken() = 0;
    virtual const UnicodeString& getBaseUri() const = 0;
    /// Enters the character entities of MathML 2; names already present are kept.
    virtual void addMathMLEntityMap() = 0;

    /// For what is read from now on; kept from input to input.
    virtual void setLimits(const RyXmlLimits& limits) = 0;
    virtual const RyXmlLimits& getLimits() const = 0;

    /// Gives back the memory that reading has grown, after a document has ended or failed; does
    /// nothing while one is being read. Position and encoding can still be asked for. For parsers
    /// that are kept, but not for reading.
    virtual void releaseBuffers() {}

    /// Replacement text of a character entity of MathML 2; the empty text for an unknown name.
    static const UnicodeString& getMathMLEntity(const UnicodeString& name);
};

}  // namespace RynCommon
