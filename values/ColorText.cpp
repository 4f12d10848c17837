// The text form of colours.
//
// A colour with a profile is written in one of two shapes, "#RRGGBB icc-color(...)" or
// "rgb-icc(r,g,b,...)", the latter without r, g, b for CMYK and gray whose sRGB value was computed.
// Reserved values have no components and stand in front of "icc-color(" as their keyword.
//
// Reading has to find from the text whether the sRGB value was given or computed (the flag that
// equality compares). The sRGB value of a separation counts as computed when it is what would be
// computed; where it was given nevertheless, the marker #SEPARATION in front of the name says so.
#include "values/ColorText.h"

#include "core/MemoryCheck.h"
#include "text/NumberText.h"
#include "text/Quoting.h"
#include "values/ColorParts.h"
#include "values/ColorValue.h"
#include "values/NameChars.h"

namespace RynCommon {

namespace {

void appendHexRgb(UnicodeString& text, std::uint32_t rgb) {
    text.append(u'#');
    appendHex(text, rgb, 6);
}

/// "r,g,b".
void appendTriple(UnicodeString& text, std::uint32_t rgb) {
    appendInteger(text, RyColor::getR(rgb));
    text.append(u',');
    appendInteger(text, RyColor::getG(rgb));
    text.append(u',');
    appendInteger(text, RyColor::getB(rgb));
}

/// A plain word, or the name in quotes.
void appendName(UnicodeString& text, const UnicodeString& name) {
    const std::u16string_view view(name.getBuffer(), static_cast<std::size_t>(name.length()));
    if (isNCName(view))
        text.append(name);
    else
        appendQuoted(text, view, RYQUOTE_AUTO);
}

class ColorWriter {
public:
    ColorWriter(UnicodeString& text, const RyColor& color) : text_(text), color_(color) {}

    void writePlain(bool named) {
        const bool isReserved = color_.isTransparent() || color_.isCurrentColor();
        const RyName keyword = named || isReserved ? color_.getColorName() : RyName();
        if (!keyword.isEmpty())
            text_.append(keyword.toString());
        else if (!color_.isInvalid())
            appendHexRgb(text_, color_);
    }

    void writeProfiled(bool named) {
        openQualification(named);
        writeProfile();
        text_.append(u')');
    }

private:
    /// Whether reading would take the sRGB value of a separation for computed, which it is not.
    bool needsMarker() const {
        return color_.hasSeparationRGB() &&
               isComputedRgb(color_, ColorParts(color_), color_.hasSeparationCMYK());
    }
    bool isRgbComputed() const {
        return (color_.isCMYK() && !color_.hasCMYKRGB()) ||
               (color_.isGrayscale() && !color_.hasGrayscaleRGB());
    }

    /// All up to the profile.
    void openQualification(bool named) {
        const bool isReserved = unsigned{color_} > 0xFFFFFF;
        if (named || isReserved) {
            isReserved ? writePlain(true) : appendHexRgb(text_, color_);
            text_.append(u" icc-color(", 11);
            return;
        }
        text_.append(u"rgb-icc(", 8);
        if (isRgbComputed()) return;
        appendTriple(text_, color_);
        text_.append(u',');
    }

    void writeProfile() {
        if (color_.isSeparation()) {
            writeSeparation();
        } else if (color_.isICCColorProfile()) {
            appendName(text_, ColorParts(color_).name);
            writeComponents(0, 4);
        } else {
            text_.append(color_.getProfileType().toString());
            writeComponents(0, ColorParts::countComponents(color_.getProfileType()));
        }
    }

    void writeSeparation() {
        if (needsMarker()) text_.append(u"#SEPARATION,", 12);
        appendName(text_, color_.getSeparationColorName());
        if (color_.hasSeparationTint()) writeComponents(0, 1);
        if (!color_.hasSeparationCMYK()) return;
        // Without a tint, four numbers would be an ICC colour's.
        if (!color_.hasSeparationTint()) text_.append(u",#CMYK", 6);
        writeComponents(1, 5);
    }

    void writeComponents(std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < end; ++i) {
            text_.append(u',');
            appendReal(text_, static_cast<double>(color_.getICCValue(static_cast<int>(i))));
        }
    }

    UnicodeString& text_;
    const RyColor& color_;
};

}  // namespace

void appendColorText(UnicodeString& text, const RyColor& color, bool named) {
    ColorWriter writer(text, color);
    if (color.getProfileType().isEmpty())
        writer.writePlain(named);
    else
        writer.writeProfiled(named);
}

bool appendColorText(UnicodeString& text, const RyValue& color) {
    RyColor held;
    if (!readColorValue(color, held)) return false;
    appendColorText(text, held, false);
    return true;
}

UnicodeString RyColor::toString(bool named) const {
    UnicodeString text;
    appendColorText(text, *this, named);
    requireWhole(text);
    return text;
}

}  // namespace RynCommon
