// Fuzz target of colours: a colour's text, its value and the colour itself say the same, whether it
// comes from a text or from components.
//
// Behind a byte FF the input is components of a colour, else it is a text in UTF-8.
#include <RynCommon/RyColor.h>
#include <RynCommon/RyValue.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace RynCommon;

namespace {

[[noreturn]] void fail(const char* what, const UnicodeString& text, const UnicodeString& found) {
    std::string a;
    std::string b;
    std::fprintf(stderr, "%s\n--- text\n%s\n--- found\n%s\n", what, text.toUTF8String(a).c_str(),
                 found.toUTF8String(b).c_str());
    std::abort();
}

/// The named text shows an sRGB value also where none was given.
RyColor withShownRgb(const RyColor& color) {
    const RyColor base(color.getRGB());
    if (color.isCMYK())
        return RyColor(base, color.getC(), color.getM(), color.getY(), color.getK());
    return color.isGrayscale() ? RyColor(base, color.getGrayscale()) : color;
}

void checkText(const RyColor& color, bool named) {
    const UnicodeString text = color.toString(named);
    const RyColor read = RyValue::parseColor(text, true).getColorValue();
    if (read != (named ? withShownRgb(color) : color))
        fail("not read back", text, read.toString(named));
    if (read.toString(named) != text) fail("written differently", text, read.toString(named));
}

void checkColor(const RyColor& color) {
    checkText(color, false);
    checkText(color, true);
    const RyValue value(color);
    if (!value.isColor() || value.getColorValue() != color || value != RyValue(color))
        fail("not kept by a value", color.toString(false), value.toString());
    if (value.toString() != color.toString(false))
        fail("text of value", color.toString(false), u"");
    const unsigned gray = static_cast<unsigned>(color.getR()) * 0x10101;
    if (RyColor::rgb2cmyk(gray).getRGB() != gray) fail("gray changed", color.toString(false), u"");
    if (color.getSeparationRGB() > 0xFFFFFF && color.isSeparation())
        fail("no display colour", color.toString(false), u"");
}

void checkParse(const UnicodeString& text) {
    const RyValue full = RyValue::parseColor(text, true);
    const RyValue plain = RyValue::parseColor(text, false);
    if (!plain.isUnknownString() && plain != full) fail("full differs", text, plain.toString());
    if (full.isUnknownString()) {
        if (full.getStringValue() != text) fail("text lost", text, full.getStringValue());
    } else if (full.isColor()) {
        checkColor(full.getColorValue());
    } else if (full != RyValue::parse(text) || !(full.isName() || full.isNumericalValue())) {
        fail("no colour, name or number", text, full.toString());
    }
}

/// Takes values off the input; 0 when it is used up.
class Source {
public:
    Source(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    template <class T>
    T take() {
        T value{};
        const std::size_t count = std::min(size_, sizeof value);
        std::memcpy(&value, data_, count);
        data_ += count;
        size_ -= count;
        return value;
    }
    UnicodeString rest() const {
        return UnicodeString::fromUTF8(
            {reinterpret_cast<const char*>(data_), static_cast<std::int32_t>(size_)});
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

RyColor makeColor(Source source) {
    const auto kind = source.take<std::uint8_t>();
    const RyColor base(source.take<std::uint32_t>());
    std::array<float, 5> c;
    for (float& component : c) component = source.take<float>();
    const UnicodeString name = source.rest();
    switch (kind % 10) {
        case 0:
            return RyColor(c[0]);
        case 1:
            return RyColor(base, c[0]);
        case 2:
            return RyColor(c[0], c[1], c[2], c[3]);
        case 3:
            return RyColor(base, c[0], c[1], c[2], c[3]);
        case 4:
            return RyColor(name, c[0]);
        case 5:
            return RyColor(base, name, c[0]);
        case 6:
            return RyColor(name, c[0], c[1], c[2], c[3], c[4]);
        case 7:
            return RyColor(base, name, c[0], c[1], c[2], c[3], c[4]);
        case 8:
            return RyColor(base, name, c[0], c[1], c[2], c[3]);
        default:
            return base;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Source source(data, size);
    if (size == 0 || data[0] != 0xFF)
        checkParse(source.rest());
    else if (const RyColor color = makeColor(Source(data + 1, size - 1)); !color.isInvalid())
        checkColor(color);
    return 0;
}
