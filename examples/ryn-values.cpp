// Reads property texts, one a line, and prints kind, unit, value and text form of each.
//
//   ryn-values [--color] [FILE...]
//
// Without files it reads standard input. Texts of one token are read as RyValue::parse does, with
// --color as RyValue::parseColor does; a text of several tokens is followed by a line for each of
// them.
#include <RynCommon/RynCommon.h>

#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

using namespace RynCommon;

namespace {

std::string narrow(const UnicodeString& text) {
    std::string result;
    return text.toUTF8String(result);
}

std::string kindOf(const RyValue& value) {
    if (value.isNull()) return "null";
    if (value.isColor()) return value.isCompound() ? "profiled color" : "color";
    if (value.isCharacter()) return "character";
    if (value.isUnknownString()) return "unknown string";
    if (value.isLiteralString()) return "literal";
    if (value.isUriString()) return "URI";
    if (value.isName()) return "name";
    if (value.isCompound()) return "compound";
    return value.isInteger() ? "integer" : "real";
}

std::string unitOf(const RyValue& value) {
    if (!value.isNumericalValue() || value.isColor()) return "-";
    return value.isNumber() ? "number" : narrow(RyValue::getUnitString(value.getUnitType()));
}

/// What the value is worth to a program: a number in its unit and in the canonical one, a name's
/// number, a colour's sRGB value, a text's length.
std::string worthOf(const RyValue& value) {
    if (value.isColor()) {
        const RyColor color = value.getColorValue();
        return color.isTransparent() || color.isCurrentColor()
                   ? "reserved"
                   : narrow(RyColor(color.getRGB()).toString(false));
    }
    if (value.isNumericalValue()) {
        RyValue canonical = value;
        canonical.normalizeUnit();
        RyValue number = value;
        number.setUnitType(RYUNIT_NUMBER);
        const std::string own = narrow(number.toValueText());
        const bool isSame = canonical.getUnitType() == value.getUnitType();
        return isSame ? own : own + " = " + narrow(canonical.toString());
    }
    if (value.isCharacter()) return std::to_string(value.getIntegerValue());
    if (value.isName()) return "#" + std::to_string(value.getNameValue());
    if (value.isString()) return std::to_string(value.getStringValue().length()) + " units";
    return "-";
}

void print(const std::string& text, const RyValue& value, const std::string& indent) {
    std::cout << std::left << std::setw(32) << indent + text << "  " << std::setw(14)
              << kindOf(value) << "  " << std::setw(8) << unitOf(value) << "  " << std::setw(20)
              << worthOf(value) << "  " << narrow(value.toValueText()) << '\n';
}

/// The tokens of a text that is not one value.
void printTokens(const UnicodeString& text) {
    RyTokenizer tokenizer(text);
    for (RyValue value = tokenizer.nextTokenValueFunc(); !value.isNull();
         value = tokenizer.nextTokenValueFunc())
        print(narrow(value.toString()), value, "  ");
}

void printValues(std::istream& in, bool readsColors) {
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const UnicodeString text = UnicodeString::fromUTF8(line);
        const RyValue value = readsColors ? RyValue::parseColor(text, true) : RyValue::parse(text);
        print(line, value, "");
        if (value.isUnknownString() && !value.isEmpty()) printTokens(text);
    }
}

int printFile(const std::string& name, bool readsColors) {
    std::ifstream file(name, std::ios::binary);
    if (!file) {
        std::cerr << "cannot open " << name << '\n';
        return 1;
    }
    printValues(file, readsColors);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    const bool readsColors = !arguments.empty() && arguments.front() == "--color";
    if (readsColors) arguments.erase(arguments.begin());
    if (arguments.empty()) printValues(std::cin, readsColors);
    int status = 0;
    for (const std::string& name : arguments) status |= printFile(name, readsColors);
    return status;
}
