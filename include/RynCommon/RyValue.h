// The variant in which every property and attribute value travels.
#pragma once

#include <concepts>
#include <type_traits>

#include <RynCommon/Forward.h>
#include <RynCommon/RyLength.h>
#include <RynCommon/RyName.h>
#include <RynCommon/RyObject.h>
#include <RynCommon/RyValueUnit.h>

namespace RynCommon {

/// A property value: null, an integer or real with a unit, a name, a string, a colour, a counted
/// object or a compound (a map of named values). Two machine words, copied by value: a string is
/// copied with it, objects and maps are shared. Nothing here throws for a kind that does not fit;
/// such conversions give NaN, 0, the empty text or the null value. Not synchronised, but values
/// that share an object may be copied and destroyed from several threads.
class RYNCOMMON_API RyValue {
public:
    /// The null value.
    constexpr RyValue() = default;
    /// A plain number; integers wider than 32 bits keep their low 32 bits.
    template <std::integral T>
    requires(!std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, char16_t> &&
             !std::same_as<T, char32_t> && !std::same_as<T, wchar_t>) RyValue(T number)
        : RyValue(RYVALUE_INTEGER, RYUNIT_NUMBER) {
        integer_ = static_cast<std::int32_t>(number);
    }
    RyValue(float number, RyValueUnitType unit = RYUNIT_NUMBER) : RyValue(RYVALUE_REAL, unit) {
        real_ = number;
    }
    RyValue(double number, RyValueUnitType unit = RYUNIT_NUMBER)
        : RyValue(static_cast<float>(number), unit) {}
    /// With a unit of its own an integer is a real, too.
    template <std::integral T>
    requires(!std::same_as<T, bool>) RyValue(T number, RyValueUnitType unit)
        : RyValue(static_cast<float>(number), unit) {}
    /// A real in points; "auto" is NaN.
    RyValue(const RyLength& length);
    RyValue(RyName name) : RyValue(RYVALUE_NAME, RYUNIT_NAME) { integer_ = RyNameEnum(name); }
    RyValue(RyNameEnum name) : RyValue(RyName(name)) {}
    /// The name "true" or "false".
    template <std::same_as<bool> Bool>
    RyValue(Bool truth) : RyValue(truth ? RN_true : RN_false) {}
    /// A string: of unknown sort (unit 0), a literal (21) or a URI (22).
    RyValue(const UnicodeString& text, RyValueUnitType unit = RYUNIT_NONE);
    RyValue(const char16_t* text, RyValueUnitType unit = RYUNIT_NONE);
    /// The same from UTF-8.
    RyValue(const char* text, RyValueUnitType unit = RYUNIT_NONE);
    /// A plain colour is an integer of the colour unit, any other a compound of that unit.
    RyValue(const RyColor& color);
    /// An object, counted. A null pointer is allowed.
    RyValue(RyRCObject* object);
    /// A compound over a map, counted. With a null pointer the value is not compound.
    RyValue(RyNamedValueMap* map);
    RyValue(const void*) = delete;
    /// What these convert to, spelt as a construction.
    template <class T>
    requires(std::same_as<T, RySide> || std::same_as<T, RyWritingMode> ||
             std::same_as<T, RyOrientation>) explicit RyValue(const T& item)
        : RyValue(item.operator RyValue()) {}

    RyValue(const RyValue& other) : tag_(other.tag_ & TAG_MASK) {
        if (other.isOwning())
            copyPayload(other);
        else
            word_ = other.word_;
    }
    RyValue(RyValue&& other) noexcept : tag_(other.tag_ & TAG_MASK), word_(other.word_) {
        other.tag_ &= ~TAG_MASK;
        other.word_ = 0;
    }
    RyValue& operator=(const RyValue& other);
    RyValue& operator=(RyValue&& other) noexcept;
    ~RyValue() {
        if (isOwning()) releasePayload();
    }

    /// The null value; usable from any static initialiser.
    static const RyValue NULL_VALUE;

    RyValueType getValueType() const { return static_cast<RyValueType>(tag_ & 7); }
    /// Relabels among null, integer, real and name; to or from a kind that owns something, the
    /// payload is released first and the new one is null.
    void setValueType(RyValueType type);
    RyValueUnitType getUnitType() const { return static_cast<RyValueUnitType>(tag_ >> 3 & 31); }
    void setUnitType(RyValueUnitType unit) {
        tag_ = (tag_ & ~std::uint64_t{0xF8}) | (std::uint64_t{unit} & 31) << 3;
    }

    /// An integer as it is; a real as floor(x + 0.5), saturating, NaN giving 0; of anything else 0.
    int getIntegerValue() const;
    /// The number in `unit` (0: in its own), or NaN where there is no such conversion. One factor
    /// is deliberately kept from old practice: degrees to grads multiply by 0.017453292.
    float getRealValue(RyValueUnitType unit = RYUNIT_NONE) const;
    /// Number of a name value, else 0.
    RyNameEnum getNameValue() const {
        return isName() ? static_cast<RyNameEnum>(integer_) : RN_EMPTY;
    }
    /// A name value's name; of any other value its text form, interned.
    RyName toRyName() const;
    /// A string's or name's text, else the empty text.
    const UnicodeString& getStringValue() const;
    operator UnicodeString() const { return toString(); }
    /// An absolute length in points; of a compound that of its "length" entry or, when there is
    /// none, of its unnamed entry; else "auto".
    RyLength getLengthValue() const;
    /// The colour of a colour value; a name value's keyword colour; of anything else the invalid
    /// colour.
    RyColor getColorValue() const;
    /// The object of kinds 5 and 7, else null. Not owned.
    RyRCObject* getRCObject() const;
    /// The map of a compound, else null. Not owned.
    RyNamedValueMap* getNamedValueMap() const;

    /// Makes the value a compound with a new, empty map.
    void makeCompound();
    /// Entry of a compound; the null value when there is none.
    RyValue getNamedItem(RyName name) const;
    void setNamedItem(RyName name, const RyValue& value);
    void setNamedItem(const RyNamedValue& item);
    void removeNamedItem(RyName name);

    bool isNull() const { return getValueType() == RYVALUE_NULL; }
    /// Null, a string of length 0 or the empty name.
    bool isEmpty() const;
    bool isInteger() const { return getValueType() == RYVALUE_INTEGER; }
    bool isReal() const { return getValueType() == RYVALUE_REAL; }
    bool isName() const { return getValueType() == RYVALUE_NAME; }
    bool isString() const { return getValueType() == RYVALUE_STRING; }
    bool isNumeric() const { return isInteger() || isReal(); }
    bool isNumber() const { return isNumeric() && getUnitType() == RYUNIT_NUMBER; }
    bool isPercentage() const { return isNumeric() && getUnitType() == RYUNIT_PERCENTAGE; }
    /// em, ex or px.
    bool isRelativeLength() const;
    /// cm, mm, in, pt, pc, jpt, q or twip.
    bool isAbsoluteLength() const;
    bool isAngle() const;
    bool isCharacter() const { return isInteger() && getUnitType() == RYUNIT_CHARACTER; }
    /// Numeric and not a character.
    bool isNumericalValue() const { return isNumeric() && getUnitType() != RYUNIT_CHARACTER; }
    bool isUnknownString() const { return isString() && getUnitType() == RYUNIT_NONE; }
    bool isLiteralString() const { return isString() && getUnitType() == RYUNIT_LITERAL; }
    bool isUriString() const { return isString() && getUnitType() == RYUNIT_URI; }
    bool isColor() const;
    bool isRCObject() const;
    bool isCompound() const { return getValueType() == RYVALUE_COMPOUND && object_ != nullptr; }
    /// The name "true" or "yes".
    bool isTrue() const;
    /// The name "false" or "no".
    bool isFalse() const;

    /// Arithmetic. Both operands must be numeric, else the result is null; integers wrap; sums of
    /// unlike units are computed in the canonical unit of the class (pt, deg, ms, Hz) or are null.
    RyValue& operator+=(const RyValue& other);
    RyValue& operator-=(const RyValue& other);
    /// The result is a real; pt times pt is in square points, percentages count as their hundredth.
    RyValue& operator*=(const RyValue& other);
    RyValue& operator/=(const RyValue& other);
    /// Reals: sign of the dividend. Integers: the truncating remainder, from which the divisor is
    /// taken off when its sign differs from the dividend's (so -4 % 2 is -2, deliberately); null
    /// for a divisor of 0.
    RyValue& operator%=(const RyValue& other);
    friend RyValue operator+(RyValue a, const RyValue& b) { return a += b; }
    friend RyValue operator-(RyValue a, const RyValue& b) { return a -= b; }
    friend RyValue operator*(RyValue a, const RyValue& b) { return a *= b; }
    friend RyValue operator/(RyValue a, const RyValue& b) { return a /= b; }
    friend RyValue operator%(RyValue a, const RyValue& b) { return a %= b; }
    RyValue operator-() const;
    RyValue abs() const;
    /// On plain numbers only, else null.
    RyValue floor() const;
    RyValue ceiling() const;
    RyValue round() const;

    bool operator==(const RyValue& other) const;
    bool operator!=(const RyValue& other) const { return !(*this == other); }
    /// Numbers by size in their canonical unit; texts by code unit; else by kind, then by unit. A
    /// name and a string compare by text, but two names by number, so a set that mixes both has no
    /// one order. NaN compares false.
    bool operator<(const RyValue& other) const;
    bool operator<=(const RyValue& other) const { return *this < other || *this == other; }
    bool operator>(const RyValue& other) const { return other < *this; }
    bool operator>=(const RyValue& other) const { return other <= *this; }

    /// Brings a number to the canonical unit of its class, as a real; dpi is only relabelled.
    void normalizeUnit();

    /// The text form. Reals print as "%g" with "." in every locale; a compound as "{a: 1; b: 2pt}",
    /// nested ones down to 256 levels; objects and null print nothing.
    UnicodeString toString() const;
    /// The text that parsing reads back as an equal value: reals with all their digits and without
    /// an exponent, literals in quotes, URIs as url("...") (for RyTokenizer::nextTokenValueFunc), a
    /// string of unknown sort as it is unless parse would take it for something else. Inside of
    /// compounds all strings are quoted.
    UnicodeString toValueText() const;

    /// Values from property texts. None throws (but for lack of memory), none takes more than
    /// linear time. A text that is not of the form becomes a string of unknown sort that holds the
    /// whole text unchanged.
    ///
    /// One token, white space around it allowed: a hexadecimal colour, a quoted string, a name or a
    /// number with an optional sign ("12pt", "-3", "50%"). A name alone is interned; of any other
    /// text nothing is.
    static RyValue parse(const UnicodeString& text);
    /// The same for a quoted string or a name only.
    static RyValue parseNonNumeric(const UnicodeString& text);
    /// A colour: "#rgb", "#rrggbb", "rgb(r,g,b)" (0 to 255 or percentages) or "rgb-icc(...)"; a
    /// name or a number alone comes back as it is. With `full` also "icc-color(...)", alone or
    /// after a keyword, a hexadecimal colour or "rgb(...)". Both take, after the fallback r, g, b
    /// of "rgb-icc" (which is left out when "#" comes first):
    ///   #CMYK, c, m, y, k
    ///   #GRAYSCALE, gray
    ///   #RGB, r, g, b: a plain colour
    ///   #REGISTRATION [, tint [, c, m, y, k]]: the separation "All"
    ///   [#SEPARATION or #SPOTCOLOR,] name [, tint [[, #CMYK], c, m, y, k]]: a separation
    ///   name, 2 to 4 or 6 values: a colour of the ICC profile of that name
    /// where a name is a word or a quoted string, and a component a number or a percentage, clamped
    /// to 0 to 1; white space may stand for the commas from the name on. Without a fallback the
    /// sRGB value is computed from the components (of an ICC colour: of three as RGB, of four as
    /// CMYK, else of the first as gray).
    static RyValue parseColor(const UnicodeString& text, bool full);

    /// References and parameters. Each gives a compound; what is malformed becomes an entry that is
    /// a string of unknown sort: under its own name where only an argument is wrong, else as a part
    /// of the unnamed entry, which holds the raw text of all such parts. Nothing is dropped; of
    /// parts that come twice the first counts.
    ///
    /// The view at a destination of PDF (ISO 32000-1, 12.3.2.2): a keyword in any case of letters
    /// and numbers in PDF's order, separated by white space or a comma:
    ///   fit, fitb; fith, fitbh: top; fitv, fitbv: left; fitr: left bottom right top; xyz: left top
    ///   zoom; xyz-left: left zoom; xyz-top: top zoom; xyz-left-top: left top zoom
    /// Arguments may be left out at the end, or be "null" or "auto". Entries: "type" (the keyword
    /// as a name) and one of each argument's name.
    static RyValue parseDestinationType(const UnicodeString& text);
    /// The parameters for opening PDF files that follow "#" in a URI: name=value, joined by "&" or
    /// "#". Entries:
    ///   page (integer), nameddest, search (literals), fdf (URI), pagemode (name: none, bookmarks,
    ///   thumbs, layers or attachments), scrollbar, toolbar, statusbar, messages, navpanes (true or
    ///   false, from 1 or 0); zoom {zoom, left, top}, view (as parseDestinationType gives it),
    ///   viewrect {left, top, width, height} and highlight {left, right, top, bottom}: compounds of
    ///   numbers
    /// Percent-escapes are decoded. Other parameters are malformed parts.
    static RyValue parsePDFOpenParameters(const UnicodeString& text);
    /// A place in a workbook: "sheet!B2", "'my sheet'!A1:B2", "A1", or the pairs sheet=, cell= and
    /// range= joined by "&"; a leading "#" is skipped. Ranges may be of whole columns ("A:C") or
    /// rows ("2:5"). Entries, all literals: "sheet" (without its quotes), "cell" or "range" (as
    /// written).
    static RyValue parseExcelOpenParameters(const UnicodeString& text);
    /// A destination in this document: "id", "#id", "url(#id)" or "#xpointer(id('x'))", then, after
    /// white space, an optional view as in parseDestinationType, whose entries are added; or "#"
    /// and PDF's open parameters, where `pageOffset` (the number of pages before this document's
    /// first) is added to "page". Entry of the id: "id", a literal.
    static RyValue parseInternalDestination(const UnicodeString& text, int pageOffset);
    /// A link: a URI, bare or as "url(...)". Entries: "uri" (a URI string without the fragment;
    /// none for "#x"), and of the fragment "id" (a literal) when it is a name or XPointer's
    /// xpointer(id('x')) of SVG 1.1, else "fragment" (a literal of the raw text).
    static RyValue parseXlinkHref(const UnicodeString& text);
    /// Pairs name=value joined by "&", a leading "#" skipped: an entry of each name, a literal.
    /// `decodes` says whether percent-escapes are decoded (as UTF-8). Parts without a "=" or a name
    /// are malformed, and so are all after the first 256, so that no text fills the table of names.
    static RyValue parseUriFragmentParameters(const UnicodeString& text, bool decodes);

    /// Text of a unit; empty for the units that have none.
    static const UnicodeString& getUnitString(RyValueUnitType unit);

protected:
    friend class RyNamedValue;

    static constexpr std::uint64_t TAG_MASK = 0xFF;
    static constexpr std::uint64_t bitfield(RyValueType type, RyValueUnitType unit,
                                            RyNameEnum name) {
        return (std::uint64_t{static_cast<std::uint32_t>(name)} << 5 | unit) << 3 | type;
    }
    constexpr RyValue(RyValueType type, RyValueUnitType unit)
        : tag_(bitfield(type, unit, RN_EMPTY)) {}
    bool isOwning() const { return (tag_ & 4) != 0; }
    void copyPayload(const RyValue& other);
    void releasePayload();

    /// Kind in bits 0-2, unit in bits 3-7, the name of a named value in the bits above.
    std::uint64_t tag_ = 0;
    union {
        std::uint64_t word_ = 0;
        std::int32_t integer_;
        float real_;
        UnicodeString* string_;
        const RyRCObject* object_;
    };
};

static_assert(sizeof(RyValue) == 16);

}  // namespace RynCommon
