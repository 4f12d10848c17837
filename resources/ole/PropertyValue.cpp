// Values of properties.
#include "resources/ole/PropertyValue.h"

#include <bit>
#include <cstdio>
#include <limits>

namespace RynCommon::ole {

namespace {

/// A moment as "2024-05-01T12:30:00Z", from counts of 100 ns since 1601-01-01 UTC; fractions of a
/// second are dropped. Years go up to 60056, which no calendar of the C++ library reaches; the day
/// is found in eras of 400 years that begin on a first of March.
UnicodeString toIsoTime(std::uint64_t fileTime) {
    constexpr std::uint64_t SECOND = 10'000'000;
    constexpr std::uint64_t DAY = 86'400;
    constexpr std::uint64_t ERA_DAYS = 146'097;
    /// From 0000-03-01 to 1601-01-01.
    constexpr std::uint64_t DAYS_BEFORE = 584'694;

    const std::uint64_t seconds = fileTime / SECOND;
    const std::uint64_t days = seconds / DAY + DAYS_BEFORE;
    const auto time = static_cast<unsigned>(seconds % DAY);
    const std::uint64_t dayOfEra = days % ERA_DAYS;
    const std::uint64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::uint64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::uint64_t shifted = (5 * dayOfYear + 2) / 153;
    const auto day = static_cast<unsigned>(dayOfYear - (153 * shifted + 2) / 5 + 1);
    const auto month = static_cast<unsigned>(shifted < 10 ? shifted + 3 : shifted - 9);
    const auto year =
        static_cast<unsigned>(days / ERA_DAYS * 400 + yearOfEra + (month <= 2 ? 1 : 0));
    char text[40];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02uZ", year, month, day,
                  time / 3600, time / 60 % 60, time % 60);
    return UnicodeString(text, -1, US_INV);
}

/// An integer where it fits, else the real next to it.
template <class Integer>
RyValue toNumber(Integer number) {
    if (number >= std::numeric_limits<std::int32_t>::min() &&
        number <= std::numeric_limits<std::int32_t>::max()) {
        return RyValue(static_cast<std::int32_t>(number));
    }
    return RyValue(static_cast<double>(number));
}

UnicodeString untilNul(UnicodeString text) {
    const std::int32_t nul = text.indexOf(u'\0');
    if (nul >= 0) text.truncate(nul);
    return text;
}

class ValueReader {
public:
    ValueReader(PropertyReader& reader, CodePageDecoder& decoder, RyValue& value)
        : reader_(reader), decoder_(decoder), value_(value) {}

    /// Results as of readValue().
    int readBasic(std::uint32_t type) {
        switch (type) {
            case TYPE_INT16:
                return read<std::uint16_t>([](auto bits) {
                    return RyValue(std::int32_t{static_cast<std::int16_t>(bits)});
                });
            case TYPE_INT32:
                return read<std::uint32_t>(
                    [](auto bits) { return RyValue(static_cast<std::int32_t>(bits)); });
            case TYPE_NARROW:
                return readNarrow();
            default:
                return 0;
        }
    }

    int readAny(std::uint32_t type) {
        switch (type) {
            case TYPE_REAL32:
                return read<std::uint32_t>(
                    [](auto bits) { return RyValue(std::bit_cast<float>(bits)); });
            case TYPE_REAL64:
                return read<std::uint64_t>(
                    [](auto bits) { return RyValue(std::bit_cast<double>(bits)); });
            case TYPE_BOOLEAN:
                return read<std::uint16_t>([](auto bits) { return RyValue(bits != 0); });
            case TYPE_UINT32:
                return read<std::uint32_t>([](auto bits) { return toNumber(std::int64_t{bits}); });
            case TYPE_INT64:
                return read<std::uint64_t>(
                    [](auto bits) { return toNumber(static_cast<std::int64_t>(bits)); });
            case TYPE_UINT64:
                return read<std::uint64_t>([](auto bits) {
                    return bits >> 63 != 0 ? RyValue(static_cast<double>(bits))
                                           : toNumber(static_cast<std::int64_t>(bits));
                });
            case TYPE_FILE_TIME:
                return read<std::uint64_t>([](auto bits) { return RyValue(toIsoTime(bits)); });
            case TYPE_WIDE:
                return readWide();
            default:
                return readBasic(type);
        }
    }

private:
    template <class Bits, class Convert>
    int read(Convert convert) {
        Bits bits = 0;
        if (!readBits(bits)) return -1;
        value_ = convert(bits);
        return 1;
    }

    bool readBits(std::uint16_t& bits) { return reader_.readWord(bits); }
    bool readBits(std::uint32_t& bits) { return reader_.readDword(bits); }
    bool readBits(std::uint64_t& bits) { return reader_.readQword(bits); }

    int readNarrow() {
        std::uint32_t length = 0;
        std::string bytes;
        if (!reader_.readDword(length) || !reader_.readNarrow(bytes, length)) return -1;
        value_ = RyValue(decoder_.decode(bytes));
        return 1;
    }

    int readWide() {
        std::uint32_t units = 0;
        UnicodeString text;
        if (!reader_.readDword(units) || !reader_.readWide(text, units)) return -1;
        value_ = RyValue(untilNul(std::move(text)));
        return 1;
    }

    PropertyReader& reader_;
    CodePageDecoder& decoder_;
    RyValue& value_;
};

/// The elements of a blob of hyperlinks, up to `end`: type and value each.
class HyperLinkReader {
public:
    HyperLinkReader(PropertyReader& reader, std::uint32_t size)
        : reader_(reader), end_(reader.getPosition() + size) {}

    bool read(std::vector<UnicodeString>& links) {
        /// Type and value of an integer, or of an empty text.
        constexpr std::uint32_t LEAST_ELEMENT = 8;
        std::uint32_t count = 0;
        if (getLeft() < sizeof count || !reader_.readDword(count)) return false;
        if (count > getLeft() / LEAST_ELEMENT) return false;
        for (std::uint32_t i = 0; i < count; ++i) {
            if (!readElement(links)) return false;
        }
        return true;
    }

private:
    std::uint32_t getLeft() const { return end_ - reader_.getPosition(); }

    bool readElement(std::vector<UnicodeString>& links) {
        std::uint32_t type = 0;
        std::uint32_t number = 0;
        if (getLeft() < sizeof type + sizeof number || !reader_.readDword(type) ||
            !reader_.readDword(number)) {
            return false;
        }
        if (type == TYPE_INT32) return true;
        return type == TYPE_WIDE && readText(number, links);
    }

    bool readText(std::uint32_t units, std::vector<UnicodeString>& links) {
        UnicodeString text;
        if (units > getLeft() / 2 || !reader_.readWide(text, units)) return false;
        links.push_back(untilNul(std::move(text)));
        const std::uint32_t padding = units % 2 * 2;
        return reader_.seek(reader_.getPosition() + std::min(padding, getLeft()));
    }

    PropertyReader& reader_;
    std::uint32_t end_;
};

}  // namespace

int readValue(PropertyReader& reader, const Property& property, TypeRange range,
              CodePageDecoder& decoder, RyValue& value) {
    if (!reader.seek(property.position)) return -1;
    if ((property.type & VECTOR_FLAG) != 0) {
        std::uint32_t count = 0;
        if (!reader.readDword(count)) return -1;
        if (count == 0) return 0;
    }
    ValueReader values(reader, decoder, value);
    const std::uint32_t type = property.type & ~std::uint32_t{VECTOR_FLAG};
    return range == TypeRange::ALL ? values.readAny(type) : values.readBasic(type);
}

bool readUnsigned(PropertyReader& reader, const Property& property, std::int32_t& value) {
    if (!reader.seek(property.position)) return false;
    std::uint16_t word = 0;
    std::uint32_t dword = 0;
    if (property.type == TYPE_INT16 && reader.readWord(word)) {
        value = word;
        return true;
    }
    if (property.type != TYPE_INT32 || !reader.readDword(dword)) return false;
    value = static_cast<std::int32_t>(dword);
    return true;
}

int readHyperLinks(PropertyReader& reader, const Property& property,
                   std::vector<UnicodeString>& links) {
    std::uint32_t size = 0;
    if (property.type != TYPE_BLOB || !reader.seek(property.position) || !reader.readDword(size) ||
        size > reader.getLeft()) {
        return -1;
    }
    std::vector<UnicodeString> found;
    if (!HyperLinkReader(reader, size).read(found)) return -1;
    links.insert(links.end(), found.begin(), found.end());
    return static_cast<int>(found.size());
}

}  // namespace RynCommon::ole
