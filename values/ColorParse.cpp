// Colours from property texts: hexadecimal ones, rgb(...), rgb-icc(...) and icc-color(...).
//
// The arguments of a profile are read into a list first and given a meaning by their number and by
// the marker they begin with, since a separation and an ICC colour differ by the number of values
// only.
#include "values/ColorParse.h"

#include <algorithm>
#include <array>
#include <optional>

#include <RynCommon/RyColor.h>

#include "core/MemoryCheck.h"
#include "core/NameTable.h"
#include "text/Quoting.h"
#include "values/ColorKeywords.h"
#include "values/ColorParts.h"
#include "values/ColorValue.h"
#include "values/TokenScanner.h"

namespace RynCommon {

namespace {

/// The sRGB value in front of a profile, if there is one.
using Fallback = std::optional<std::uint32_t>;

/// The arguments of a profile.
struct Arguments {
    static constexpr std::size_t MAX_VALUES = 6;

    RyNameEnum marker = RN_EMPTY;
    bool hasName = false;
    UnicodeString name;
    std::size_t count = 0;
    std::array<float, MAX_VALUES> values{};
    /// Number of the values in front of a second #CMYK; -1 when there is none.
    int markedAt = -1;
};

constexpr std::size_t LONGEST_MARKER = 16;

/// A built-in marker in any case of letters.
RyNameEnum findMarker(std::u16string_view text) {
    if (text.size() > LONGEST_MARKER) return RN_EMPTY;
    std::array<char16_t, LONGEST_MARKER> upper;
    for (std::size_t i = 0; i < text.size(); ++i)
        upper[i] =
            text[i] >= u'a' && text[i] <= u'z' ? static_cast<char16_t>(text[i] - 0x20) : text[i];
    const RyNameEnum name = findBuiltinName(upper.data(), static_cast<std::int32_t>(text.size()));
    return name >= RN_hash_CMYK && name <= RN_hash_SPOTCOLOR ? name : RN_EMPTY;
}

UnicodeString toText(std::u16string_view view) {
    return takeWhole(UnicodeString(view.data(), static_cast<std::int32_t>(view.size())));
}

/// A colour from the arguments of a profile. Empty when their number fits no kind.
class ProfileBuilder {
public:
    ProfileBuilder(const Arguments& arguments, const Fallback& fallback)
        : arguments_(arguments), fallback_(fallback) {
        // What is computed must be the same when it is computed from the text form.
        if (!fallback_)
            for (float& value : arguments_.values) value = roundComponent(value);
    }

    std::optional<RyColor> build() {
        switch (arguments_.marker) {
            case RN_hash_CMYK:
                return arguments_.hasName ? std::nullopt : buildCMYK();
            case RN_hash_GRAYSCALE:
                return arguments_.hasName ? std::nullopt : buildGrayscale();
            case RN_hash_RGB:
                return arguments_.hasName ? std::nullopt : buildRGB();
            case RN_hash_REGISTRATION:
                return arguments_.hasName ? std::nullopt : buildSeparation();
            case RN_hash_SEPARATION:
            case RN_hash_SPOTCOLOR:
                return arguments_.hasName ? buildSeparation() : std::nullopt;
            default:
                return buildNamed();
        }
    }

private:
    bool has(std::size_t count) const {
        return arguments_.count == count && arguments_.markedAt < 0;
    }
    float value(std::size_t index) const { return arguments_.values[index]; }
    RyColor base(std::uint32_t computed) const { return RyColor(fallback_.value_or(computed)); }
    /// Marks the sRGB value as computed; `slot` holds the flags.
    RyColor finish(const RyColor& color, std::size_t slot) const {
        if (fallback_) return color;
        ColorParts parts(color);
        parts.slots[slot] = 0;
        return parts.toColor();
    }

    std::optional<RyColor> buildCMYK() const {
        if (!has(4)) return std::nullopt;
        const std::uint32_t rgb = RyColor::cmyk2rgb(value(0), value(1), value(2), value(3));
        return finish(RyColor(base(rgb), value(0), value(1), value(2), value(3)), 4);
    }
    std::optional<RyColor> buildGrayscale() const {
        if (!has(1)) return std::nullopt;
        return finish(RyColor(base(grayToRgb(value(0))), value(0)), 1);
    }
    std::optional<RyColor> buildRGB() const {
        if (!has(3)) return std::nullopt;
        return RyColor(packRGB());
    }
    std::uint32_t packRGB() const {
        return RyColor::cmyk2rgb(1 - clampComponent(value(0)), 1 - clampComponent(value(1)),
                                 1 - clampComponent(value(2)), 0);
    }

    std::optional<RyColor> buildSeparation() const {
        const bool hasMark = arguments_.markedAt >= 0;
        const std::size_t tints = hasMark ? static_cast<std::size_t>(arguments_.markedAt)
                                          : std::min<std::size_t>(arguments_.count, 1);
        const std::size_t inks = arguments_.count - tints;
        if (tints > 1 || (inks != 4 && (hasMark || inks != 0))) return std::nullopt;
        ColorParts parts;
        parts.setComponent(0, tints == 1 ? clampComponent(value(0)) : 1);
        for (std::size_t i = 0; i < 4; ++i)
            parts.setComponent(i + 1, inks == 4 ? clampComponent(value(tints + i)) : 1);
        return makeSeparation(parts, tints == 1, inks == 4);
    }
    RyColor makeSeparation(const ColorParts& parts, bool hasTint, bool hasCMYK) const {
        const auto component = [&](std::size_t i) { return parts.getComponent(i); };
        const std::uint32_t computed =
            hasCMYK ? RyColor::cmyk2rgb(component(1), component(2), component(3), component(4))
                    : grayToRgb(1 - component(0));
        RyColor color(base(computed), arguments_.name, component(0), component(1), component(2),
                      component(3), component(4));
        // A bare name comes with an sRGB value in the text of every separation; a marker says that
        // the value was given.
        const bool isMarked = arguments_.marker != RN_EMPTY;
        const bool isGiven = fallback_ && (isMarked || !isComputedRgb(*fallback_, parts, hasCMYK));
        color.adjustSeparationFlags(isGiven, hasTint, hasCMYK);
        return color;
    }

    /// A name without a marker: a separation by 0, 1 or 5 values, else an ICC colour.
    std::optional<RyColor> buildNamed() const {
        const std::size_t count = arguments_.count;
        if (arguments_.markedAt >= 0 || count < 2 || count == 5) return buildSeparation();
        ColorParts parts(RyColor(base(computeICC()), arguments_.name, 0, 0, 0, 0));
        for (std::size_t i = 0; i < count; ++i) parts.setComponent(i, clampComponent(value(i)));
        return parts.toColor();
    }
    std::uint32_t computeICC() const {
        if (arguments_.count == 3) return packRGB();
        if (arguments_.count == 4) return RyColor::cmyk2rgb(value(0), value(1), value(2), value(3));
        return grayToRgb(value(0));
    }

    Arguments arguments_;
    Fallback fallback_;
};

class ColorReader {
public:
    ColorReader(std::u16string_view text, bool full) : scanner_(text, place_), full_(full) {}

    bool read(RyValue& value) {
        TokenScanner::Token token = scanner_.nextSigned();
        switch (token.kind) {
            case RYTOKEN_COLOR:
                return readAfterColor(static_cast<std::uint32_t>(token.number), value);
            case RYTOKEN_NUMBER:
                if (!scanner_.isAtEnd()) return false;
                value = scanner_.makeValue(token);
                return true;
            case RYTOKEN_NAME:
                return scanner_.isAt(u'(') ? readFunction(token, value)
                                           : readAfterName(token, value);
            default:
                return false;
        }
    }

private:
    bool readAfterName(TokenScanner::Token& token, RyValue& value) {
        if (scanner_.isAtEnd()) {
            value = scanner_.makeValue(token);
            return true;
        }
        const std::uint32_t rgb = full_ ? findKeywordRgb(scanner_.view(token)) : 0;
        const bool isKeyword = full_ && !RyColor(rgb).isInvalid();
        return isKeyword && readAfterColor(rgb, value);
    }

    /// The end of the text or, in the full syntax, a profile.
    bool readAfterColor(std::uint32_t rgb, RyValue& value) {
        if (scanner_.isAtEnd()) {
            value = makeColorValue(rgb);
            return true;
        }
        if (!full_ || !isFunction(scanner_.next(), RN_icc_color)) return false;
        scanner_.skipUnit();
        return readProfile(rgb, value);
    }

    bool isFunction(const TokenScanner::Token& token, RyNameEnum name) const {
        return token.kind == RYTOKEN_NAME && scanner_.isAt(u'(') && getName(token) == name;
    }
    RyNameEnum getName(const TokenScanner::Token& token) const {
        const std::u16string_view text = scanner_.view(token);
        return findBuiltinName(text.data(), static_cast<std::int32_t>(text.size()));
    }

    bool readFunction(const TokenScanner::Token& token, RyValue& value) {
        scanner_.skipUnit();
        std::uint32_t rgb = 0;
        switch (getName(token)) {
            case RN_rgb:
                return readTriple(rgb) && scanner_.skip(u')') && readAfterColor(rgb, value);
            case RN_rgb_icc:
                scanner_.skipSpace();
                if (scanner_.isAt(u'#')) return readProfile(std::nullopt, value);
                return readTriple(rgb) && scanner_.skip(u',') && readProfile(rgb, value);
            case RN_icc_color:
                return full_ && readProfile(std::nullopt, value);
            default:
                return false;
        }
    }

    /// "r, g, b".
    bool readTriple(std::uint32_t& rgb) {
        int channels[3];
        for (int& channel : channels) {
            if (&channel != channels && !scanner_.skip(u',')) return false;
            if (!readChannel(channel)) return false;
        }
        rgb = RyColor(channels[0], channels[1], channels[2]);
        return true;
    }

    bool readChannel(int& channel) {
        TokenScanner::Token token = scanner_.nextSigned();
        if (token.kind != RYTOKEN_NUMBER) return false;
        const RyValue value = scanner_.makeValue(token);
        if (value.isPercentage())
            channel = RyValue(value.getRealValue() * 255 / 100).getIntegerValue();
        else
            channel = value.getIntegerValue();
        return value.isNumber() || value.isPercentage();
    }

    bool readProfile(const Fallback& fallback, RyValue& value) {
        Arguments arguments;
        if (!readArguments(arguments) || !scanner_.isAtEnd()) return false;
        const std::optional<RyColor> color = ProfileBuilder(arguments, fallback).build();
        if (color) value = RyValue(*color);
        return color.has_value();
    }

    /// All up to the ")", which is consumed.
    bool readArguments(Arguments& arguments) {
        if (!readFirst(arguments)) return false;
        while (!scanner_.skip(u')')) {
            if (!skipComma() || !readArgument(arguments)) return false;
        }
        return true;
    }

    /// A comma with white space in front of it or, as SVG allows, white space alone.
    bool skipComma() { return scanner_.skip(u',') || scanner_.isBehindSpace(); }

    /// A marker or a name. An unknown marker is a name, too.
    bool readFirst(Arguments& arguments) {
        const std::u16string_view marker = scanner_.nextMarker();
        if (marker.empty()) return readName(arguments);
        arguments.marker = findMarker(marker);
        if (arguments.marker == RN_EMPTY) setName(arguments, toText(marker));
        if (arguments.marker != RN_hash_SEPARATION && arguments.marker != RN_hash_SPOTCOLOR)
            return true;
        return skipComma() && readName(arguments);
    }

    bool readName(Arguments& arguments) {
        const TokenScanner::Token token = scanner_.next();
        if (token.kind != RYTOKEN_NAME && token.kind != RYTOKEN_STRING) return false;
        UnicodeString name;
        if (token.kind == RYTOKEN_NAME)
            name = toText(scanner_.view(token));
        else
            appendUnescaped(name, scanner_.view(token));
        setName(arguments, name);
        return true;
    }
    static void setName(Arguments& arguments, const UnicodeString& name) {
        arguments.hasName = true;
        arguments.name = name;
    }

    bool readArgument(Arguments& arguments) {
        scanner_.skipSpace();
        if (scanner_.isAt(u'#')) {
            const bool isSecond = arguments.markedAt >= 0;
            arguments.markedAt = static_cast<int>(arguments.count);
            return !isSecond && findMarker(scanner_.nextMarker()) == RN_hash_CMYK;
        }
        TokenScanner::Token token = scanner_.nextExp();
        if (token.kind != RYTOKEN_NUMBER || arguments.count == Arguments::MAX_VALUES) return false;
        const RyValue value = scanner_.makeValue(token);
        arguments.values[arguments.count++] = value.getRealValue(RYUNIT_NUMBER);
        return value.isNumber() || value.isPercentage();
    }

    TokenScanner::Place place_;
    TokenScanner scanner_;
    bool full_;
};

}  // namespace

bool parseColorText(std::u16string_view text, bool full, RyValue& value) {
    return ColorReader(text, full).read(value);
}

RyValue RyValue::parseColor(const UnicodeString& text, bool full) {
    RyValue value;
    return parseColorText(viewText(text), full, value) ? value : RyValue(text);
}

}  // namespace RynCommon
