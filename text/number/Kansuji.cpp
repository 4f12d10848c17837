// Numbers in Chinese numerals as Japanese writes them.
//
// One pass over the text. A run of digits, with the commas that part it evenly, is a number. With
// place names its significant digits are gathered, fewer than 53, and written in groups of four,
// each group with its places and then with its own name; a longer number is written as it stands.
// All other characters are mapped one by one. Looking ahead for an even grouping stops within five
// digits of each comma, so that the time stays linear in the text.
#include <RynCommon/RyUtil.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "core/MemoryCheck.h"
#include "text/number/CjkNumerals.h"
#include "text/number/TextViews.h"

namespace RynCommon {

namespace {

constexpr std::u16string_view FORMAL_DIGITS = u"零壱弐参四五六七八九";
constexpr std::u16string_view FULLWIDTH_DIGITS = u"０１２３４５６７８９";
/// Names of the places 10, 100 and 1000.
constexpr std::u16string_view PLAIN_PLACES = u"十百千";
constexpr std::u16string_view FORMAL_PLACES = u"拾百千";
/// Names of the powers of 10000.
constexpr std::u16string_view GROUPS = u"万億兆京垓秭穣溝澗正載極";

constexpr std::size_t GROUP_LENGTH = 4;
constexpr std::size_t DIGITS_MAX = GROUP_LENGTH * (GROUPS.size() + 1);

/// From a character to its full-width form.
constexpr int FULLWIDTH_OFFSET = 0xFF01 - 0x21;

constexpr bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

std::u16string_view digitsOf(RyKansujiStyle style) {
    switch (style) {
        case RYKANSUJI_FORMAL:
            return FORMAL_DIGITS;
        case RYKANSUJI_FULLWIDTH:
            return FULLWIDTH_DIGITS;
        default:
            return KANJI_DIGITS;
    }
}

/// Digits from `begin` on, counted no further than `most`.
std::size_t countDigits(std::u16string_view text, std::size_t begin, std::size_t most) {
    const std::size_t end = most < text.size() - begin ? begin + most : text.size();
    std::size_t at = begin;
    while (at < end && isDigit(text[at])) ++at;
    return at - begin;
}

/// End of the number at `begin`, where a digit stands: its commas part it by threes or by fours
/// from the right.
std::size_t findNumberEnd(std::u16string_view text, std::size_t begin) {
    std::size_t end = begin + countDigits(text, begin, text.size());
    const std::size_t leading = end - begin;
    std::size_t period = 0;
    while (end + 1 < text.size() && text[end] == u',') {
        const std::size_t count = countDigits(text, end + 1, GROUP_LENGTH + 1);
        if (period == 0) period = count;
        if (count != period || count < 3 || count > GROUP_LENGTH || leading > period) break;
        end += 1 + count;
    }
    return end;
}

bool hasPlaceNames(RyKansujiStyle style) {
    return style == RYKANSUJI_PLAIN || style == RYKANSUJI_FORMAL;
}

class KansujiWriter {
public:
    KansujiWriter(RyKansujiStyle style, std::u16string_view grouping, std::u16string_view decimal)
        : digits_(digitsOf(style)),
          hasPlaces_(hasPlaceNames(style)),
          isFormal_(style == RYKANSUJI_FORMAL),
          grouping_(grouping),
          decimal_(decimal) {}

    void write(std::u16string_view text) {
        for (std::size_t at = 0; at < text.size();) {
            if (!hasPlaces_ || !isDigit(text[at]))
                writeUnit(text[at++]);
            else
                at = writeNumber(text, at);
        }
    }

    /// Digit by digit in groups of three.
    void writeGrouped(std::u16string_view number) {
        for (std::size_t i = 0; i < number.size(); ++i) {
            writeUnit(number[i]);
            const std::size_t rest = number.size() - i - 1;
            if (isDigit(number[i]) && rest > 0 && rest % 3 == 0) appendView(text_, grouping_);
        }
    }

    /// Significant digits with place names; at least one and at most DIGITS_MAX, the first not 0.
    void writePlaces(std::u16string_view number, bool isParted) {
        std::size_t group = (number.size() - 1) / GROUP_LENGTH;
        for (std::size_t begin = 0; begin < number.size(); --group) {
            const std::size_t length = number.size() - begin - group * GROUP_LENGTH;
            const bool isWritten = writeGroup(number.substr(begin, length));
            begin += length;
            if (!isWritten || group == 0) continue;
            text_.append(GROUPS[group - 1]);
            if (isParted && hasMore(number, begin)) appendView(text_, grouping_);
        }
    }

    UnicodeString take() { return takeWhole(std::move(text_)); }

private:
    void writeDigit(char16_t digit) {
        text_.append(digits_[static_cast<std::size_t>(digit - u'0')]);
    }

    void writeUnit(char16_t unit) {
        if (isDigit(unit))
            writeDigit(unit);
        else if (unit == u',')
            appendView(text_, grouping_);
        else if (unit == u'.')
            appendView(text_, decimal_);
        else if (unit == u' ')
            text_.append(u'\u3000');
        else if (unit > u' ' && unit < 0x7F)
            text_.append(static_cast<char16_t>(unit + FULLWIDTH_OFFSET));
        else
            text_.append(unit);
    }

    void writeUnits(std::u16string_view units) {
        for (const char16_t unit : units) writeUnit(unit);
    }

    /// The position behind the number.
    std::size_t writeNumber(std::u16string_view text, std::size_t begin) {
        const bool isFraction = begin >= 2 && text[begin - 1] == u'.' && isDigit(text[begin - 2]);
        const std::size_t end =
            isFraction ? begin + countDigits(text, begin, text.size()) : findNumberEnd(text, begin);
        const std::u16string_view number = text.substr(begin, end - begin);
        if (isFraction || !writeWithPlaces(number)) writeUnits(number);
        return end;
    }

    /// False, and nothing written, when the number is too long for the names.
    bool writeWithPlaces(std::u16string_view number) {
        std::array<char16_t, DIGITS_MAX> digits;
        std::size_t count = 0;
        for (const char16_t unit : number) {
            if (unit == u',' || (unit == u'0' && count == 0)) continue;
            if (count == digits.size()) return false;
            digits[count++] = unit;
        }
        if (count == 0)
            writeDigit(u'0');
        else
            writePlaces({digits.data(), count}, number.find(u',') != number.npos);
        return true;
    }

    /// Up to four digits; false when all are 0.
    bool writeGroup(std::u16string_view group) {
        const std::u16string_view places = isFormal_ ? FORMAL_PLACES : PLAIN_PLACES;
        bool isWritten = false;
        for (std::size_t i = 0; i < group.size(); ++i) {
            if (group[i] == u'0') continue;
            const std::size_t place = group.size() - 1 - i;
            if (place == 0 || isFormal_ || group[i] != u'1') writeDigit(group[i]);
            if (place > 0) text_.append(places[place - 1]);
            isWritten = true;
        }
        return isWritten;
    }

    static bool hasMore(std::u16string_view number, std::size_t begin) {
        return number.find_first_not_of(u'0', begin) != number.npos;
    }

    std::u16string_view digits_;
    bool hasPlaces_;
    bool isFormal_;
    std::u16string_view grouping_;
    std::u16string_view decimal_;
    UnicodeString text_;
};

}  // namespace

UnicodeString RyUtil::convertKansuji(int n, RyKansujiStyle style,
                                     const UnicodeString& groupingSeparator) {
    const UnicodeString digits = toString(n);
    const std::u16string_view number = viewOf(digits);
    KansujiWriter writer(style, viewOf(groupingSeparator), {});
    if (!hasPlaceNames(style)) {
        writer.writeGrouped(number);
    } else if (n == 0) {
        writer.write(number);
    } else {
        if (n < 0) writer.write(number.substr(0, 1));
        writer.writePlaces(number.substr(n < 0 ? 1 : 0), true);
    }
    return writer.take();
}

UnicodeString RyUtil::convertKansuji(const UnicodeString& text, RyKansujiStyle style,
                                     const UnicodeString& groupingSeparator,
                                     const UnicodeString& decimalSeparator) {
    KansujiWriter writer(style, viewOf(groupingSeparator), viewOf(decimalSeparator));
    writer.write(viewOf(text));
    return writer.take();
}

}  // namespace RynCommon
