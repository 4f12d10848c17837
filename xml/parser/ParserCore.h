// What the parser's rooms share: the reading point, names, entities, errors and limits.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include <RynCommon/RyXmlParser.h>

#include "xml/parser/Entities.h"
#include "xml/parser/NameCachePool.h"
#include "xml/parser/ParseErrors.h"
#include "xml/parser/Scanner.h"

namespace RynCommon {

/// The common ground of event reading and DOCTYPE reading. All reading functions raise errors
/// through error(), which returns when a callback took the error; each then goes on so that input
/// is consumed or state changes.
class ParserCore final : private ScannerOwner {
public:
    /// What the window's change concerns besides.
    class WindowUser {
    public:
        virtual void windowLeaves() = 0;

    protected:
        ~WindowUser() = default;
    };

    explicit ParserCore(WindowUser& user);
    ParserCore(const ParserCore&) = delete;
    ParserCore& operator=(const ParserCore&) = delete;

    /// Forgets the document; features, callback, limits and known names stay.
    void reset();

    // Errors.
    /// Reports to the callback, or throws with the position.
    void error(unsigned short code, const UnicodeString& arg0 = UnicodeString(),
               const UnicodeString& arg1 = UnicodeString());
    /// Error 6156 about the character at the reading point, which is not read.
    void unexpectedCharacter() { error(PARSE_UNEXPECTED_CHARACTER, scanner.peekCharacter()); }
    UnicodeString positionDescription();
    bool feature(RyXmlParser::Feature feature) const {
        return features[static_cast<std::size_t>(feature)];
    }

    void setLimits(const RyXmlLimits& all) {
        limits = all;
        scanner.setLongestName(all.nameLength);
    }

    // Names.
    const CachedName& find(const Scanner::Name& name) {
        return names->find(name.text, name.length, name.colon);
    }
    /// As NameCache::findBefore().
    template <class... Delimiters>
    const CachedName* findBefore(const char16_t* text, const char16_t* end,
                                 Delimiters... delimiters) const {
        const CachedName* const name = names->findBefore(text, end, delimiters...);
        return name != nullptr && allows(*name) ? name : nullptr;
    }
    bool allows(const CachedName& name) const { return name.length <= limits.nameLength; }
    /// The number of a name that is compared only, and never interned.
    static RyNameEnum keyword(const Scanner::Name& name);

    // References; the "&" or "&#" has been read.
    /// Reads a character reference; false after an error.
    bool readCharacterReference(std::uint32_t& codePoint);
    /// Reads one of the entities that XML itself declares, where it stands whole in the window and
    /// nothing else can be meant.
    bool readPredefined(char16_t& character);
    /// Reads the name of an entity and its ";"; false after an error. `sign` is "&" or "%".
    bool readEntityName(char16_t sign, RyName& name);
    /// Where a reference to a general entity leads.
    enum class Expansion { TEXT, INPUT, NOTHING };
    /// Resolves a general entity: gives its characters where they need no reading (predefined and
    /// MathML entities), or pushes its replacement on the inputs. External entities only where they
    /// are allowed; all that cannot be resolved is error 7710.
    Expansion expandGeneral(RyName name, std::u16string_view& characters, bool externalAllowed);
    /// Resolves a parameter entity, its replacement padded with blanks where it stands between
    /// tokens.
    void expandParameter(RyName name, bool padded);
    /// Adds to what entities have given so far and raises the limit's error.
    void countExpansion(std::int32_t units);
    /// Raises the error of all limits, which no callback takes.
    [[noreturn]] void exceedLimit();

    // Literals; the reading point is before the quote. False when there is none.
    /// An attribute value: references resolved, white space characters as blanks. A value that
    /// stands in the window as it is becomes `plain`, until windowLeaves(), and leaves `value`
    /// alone.
    bool readAttributeValue(UnicodeString& value, std::u16string_view& plain);
    /// An entity value: character references and parameter entities resolved.
    bool readEntityValue(UnicodeString& value);
    /// Characters as they are.
    bool readPlainLiteral(UnicodeString& value);

    // Markup that stands anywhere; what opens it has been read. `sink` may be null.
    void readCommentRest(TextBuffer* sink);
    void readInstructionRest(TextBuffer* sink);
    /// Reads up to `unit`, which is not read; false at the end of input.
    bool readUpTo(char16_t unit, TextBuffer* sink);
    /// Reads a run of `unit` and returns its length.
    std::int32_t readRunOf(char16_t unit);

    // Inputs.
    /// The URI of a system identifier, resolved against the base.
    UnicodeString resolve(const UnicodeString& systemId) const;
    /// Pushes an external entity and reads its text declaration. Raises 4099 when a file does not
    /// open; other schemes are passed over.
    void pushExternal(EntityDeclaration& entity);
    /// Reads the rest of an XML or text declaration behind "<?xml".
    void readXmlDeclaration(bool isTextDeclaration);
    /// Reads a text declaration where one stands at the start of the topmost stream.
    void readTextDeclaration();
    /// Applies an encoding told from outside to `input`.
    void applyGivenEncoding(TextInput& input, const UnicodeString& name);

    Scanner scanner;
    NameCachePtr names = takeNameCache();  // null between releaseBuffers() and the next input
    EntityTable generalEntities;
    EntityTable parameterEntities;
    bool mathMLEntities = false;
    RyXmlParser::EventType event = RyXmlParser::START_DOCUMENT;  // whose reading has begun
    std::array<bool, 6> features{};
    RyXmlLimits limits;
    RyXmlParser::ErrorCallback callback = nullptr;
    void* callbackUser = nullptr;
    UnicodeString inputUri;
    UnicodeString baseUri;

private:
    void invalidCharacterRead() override;
    void windowLeaves() override { user_.windowLeaves(); }
    [[noreturn]] void nameTooLong() override { exceedLimit(); }
    [[noreturn]] void raise(unsigned short code, const UnicodeString& message);
    void checkDeclared(TextInput::Declared result, const UnicodeString& name);
    bool readPseudoAttribute(const UnicodeString& name, const UnicodeString& whereEquals,
                             UnicodeString& value);
    void endXmlDeclaration();
    bool readPlainCharacterReference(std::uint32_t& codePoint);
    bool openQuote(char16_t& quote);
    void readAttributeReference(UnicodeString& value);
    void checkNesting();

    WindowUser& user_;
    std::uint64_t expanded_ = 0;
    char16_t predefined_ = 0;  // what expandGeneral() gave last
};

}  // namespace RynCommon
