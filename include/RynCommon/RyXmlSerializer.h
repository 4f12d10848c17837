// Writes XML through calls that mirror the events of the parser.
#pragma once

#include <ostream>

#include <RynCommon/RyError.h>
#include <RynCommon/RyName.h>
#include <RynCommon/RyObject.h>

namespace RynCommon {

/// A writer of one XML document after the other: setOutput, startDocument, then tags, attributes
/// and content, then endDocument. It writes what it is given, without indentation, and declares
/// namespaces itself.
///
/// Calls in the wrong order are system errors 2060 to 2064 and write nothing; a missing or failed
/// output is 4101 or 4103; a stream set to throw (badbit) has its std::bad_alloc pass. Output is
/// buffered: it reaches the stream when the buffer is full, in flush(), endDocument() and
/// setOutput(), and after each call that leaves no element open. A serializer that is deleted does
/// not touch the caller's stream any more. By default the output is, byte for byte, the established
/// one: an XML declaration whose encoding is one odd character, generated prefixes that begin with
/// a hyphen, control characters dropped. This library reads it back; setConformant() gives output
/// that any XML reader takes.
class RYNCOMMON_API RyXmlSerializer : public RyRCObject {
public:
    static unsigned int getStaticTypeID() { return 0xB2E73DE2u; }
    bool isA(unsigned int id) const override;

    /// Sets the text written as a comment after the XML declaration; none when empty. At first it
    /// names this library.
    void setGenerator(const UnicodeString& text) { generator_ = text; }
    const UnicodeString& getGenerator() const { return generator_; }

    /// Off at first. When on: the encoding is declared by its name, generated prefixes are "ns1",
    /// "ns2" and so on, TAB, LF, CR in attributes and CR, U+0085, U+2028 in text are written as
    /// references, and characters that XML forbids,
    /// "--" in a comment, "?>" in a processing instruction and the like raise an RyError (system
    /// category, 2065) instead of being dropped. So do names that are none, a prefix without a
    /// namespace and an attribute that comes twice. A CDATA section that cannot hold its text
    /// becomes plain text. Where elements and texts stand is left to the caller, who may write a
    /// fragment. Set it before startDocument().
    virtual void setConformant(bool on) = 0;
    virtual bool isConformant() const = 0;

    /// Writes to `out`, which stays the caller's. Drops the previous output and all open elements.
    /// `encoding`: "UTF-8" or "SHIFT_JIS"; anything else is written as UTF-8. Null takes the output
    /// away.
    virtual void setOutput(std::ostream* out, const UnicodeString& encoding) = 0;
    /// Opens the file that `uri` names, closes it when the output is dropped. Raises 4099 when it
    /// does not open.
    virtual void setOutput(const UnicodeString& uri, const UnicodeString& encoding) = 0;
    /// The XML declaration and the generator comment. `encoding` replaces that of setOutput() when
    /// not empty.
    virtual void startDocument(const UnicodeString& encoding, const UnicodeString& standalone) = 0;
    /// "<!DOCTYPE", `text`, ">"; only right after startDocument().
    virtual void docdecl(const UnicodeString& text) = 0;
    /// Declares a prefix on the next start tag; closes the current one. Nothing is written for a
    /// prefix that is bound to `ns` already.
    virtual void setPrefix(RyName prefix, RyName ns) = 0;
    /// A name keeps the prefix it is written with; whatever else claims that prefix in the same tag
    /// for another namespace gets a generated one.
    /// @param generatePrefix  take the prefix in force for `ns`, or a new one, instead of `prefix`
    virtual void startTag(RyName ns, RyName prefix, RyName localName, bool generatePrefix) = 0;
    /// An attribute with the prefix in force for `ns`, or a generated one. A default namespace
    /// serves no attribute.
    virtual void attribute(RyName ns, RyName localName, const UnicodeString& value) = 0;
    /// Namespace declarations (namespace, prefix or local name "xmlns") become declarations of the
    /// start tag.
    virtual void attribute(RyName ns, RyName prefix, RyName localName,
                           const UnicodeString& value) = 0;
    virtual void text(const UnicodeString& text) = 0;
    virtual void text(const char16_t* buffer, int start, int length) = 0;
    virtual void cdsect(const UnicodeString& text) = 0;
    virtual void entityRef(const UnicodeString& name) = 0;
    virtual void processingInstruction(const UnicodeString& text) = 0;
    virtual void comment(const UnicodeString& text) = 0;
    virtual void ignorableWhitespace(const UnicodeString& text) = 0;
    virtual void endTag(RyName ns, RyName localName) = 0;
    /// Ends all open elements, flushes and drops the output. Raises 4103 when the output did not
    /// take everything.
    virtual void endDocument() = 0;
    /// Closes a pending start tag and hands everything on to the stream, which is flushed.
    virtual void flush() = 0;

    /// Number of open elements.
    virtual int getDepth() const = 0;
    /// Of the innermost open element; the empty name when there is none.
    virtual RyName getNamespace() const = 0;
    virtual RyName getName() const = 0;
    /// The prefix in force for `ns`. Where there is none: the empty name, or with `generate` a new
    /// one, declared in the current start tag, or where that is closed, on the next one.
    virtual RyName getPrefix(RyName ns, bool generate) = 0;

protected:
    RyXmlSerializer();

    UnicodeString generator_;
};

}  // namespace RynCommon
