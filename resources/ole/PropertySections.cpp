// The sections of a property set stream: which properties there are, and where.
//
// Everything in the stream is found by offsets, so a small stream could claim a large set: many
// sections at one place, each with a table and a dictionary as long as the stream. In a sound
// stream no two of these share a byte. A budget of as many bytes as the stream has is therefore
// charged for every table and dictionary entry that is read, and what overdraws it is malformed.
#include "resources/ole/PropertySections.h"

#include <algorithm>
#include <limits>

#include "resources/ole/CodePages.h"

namespace RynCommon::ole {

namespace {

constexpr std::uint16_t READER_ORDER = 0xFFFE;
constexpr std::uint16_t OTHER_ORDER = 0xFEFF;

/// Bytes of an item of the section list; of the table's head and its items; of a dictionary entry
/// without its name.
constexpr std::uint32_t SECTION_ITEM_SIZE = 20;
constexpr std::uint32_t TABLE_HEAD_SIZE = 8;
constexpr std::uint32_t TABLE_ITEM_SIZE = 8;
constexpr std::uint32_t ENTRY_HEAD_SIZE = 8;

class SectionLoader {
public:
    SectionLoader(PropertyReader& reader, std::uint32_t mostItems)
        : reader_(reader), budget_(reader.getSize()), itemsLeft_(mostItems) {}

    bool readList(std::uint32_t count, std::vector<PropertySection>& sections) {
        if (count > reader_.getLeft() / SECTION_ITEM_SIZE || !countItems(count)) return false;
        sections.resize(count);
        return std::all_of(sections.begin(), sections.end(), [this](PropertySection& section) {
            return reader_.readClassId(section.format) && reader_.readDword(section.offset);
        });
    }

    bool readSection(PropertySection& section) {
        return readTable(section) && readTypes(section) &&
               (!section.hasDictionary || readDictionary(section));
    }

private:
    bool charge(std::uint64_t bytes) {
        if (bytes > budget_) return false;
        budget_ -= bytes;
        return true;
    }

    bool countItems(std::uint32_t count) {
        if (count > itemsLeft_) return false;
        itemsLeft_ -= count;
        return true;
    }

    bool readTable(PropertySection& section) {
        std::uint32_t count = 0;
        if (!reader_.seek(section.offset) || !reader_.readDword(section.size) ||
            !reader_.readDword(count) || count > reader_.getLeft() / TABLE_ITEM_SIZE ||
            !charge(TABLE_HEAD_SIZE + std::uint64_t{count} * TABLE_ITEM_SIZE) ||
            !countItems(count)) {
            return false;
        }
        section.properties.resize(count);
        return std::all_of(
            section.properties.begin(), section.properties.end(), [this](Property& property) {
                return reader_.readDword(property.id) && reader_.readDword(property.offset);
            });
    }

    bool readTypes(PropertySection& section) {
        for (Property& property : section.properties) {
            if (!reader_.seek(std::uint64_t{section.offset} + property.offset)) return false;
            if (property.id == ID_DICTIONARY) {
                section.hasDictionary = true;
            } else if (!reader_.readDword(property.type)) {
                return false;
            }
            property.position = reader_.getPosition();
        }
        return true;
    }

    /// Whether names are UTF-16, padded to four bytes and counted in units.
    bool hasWideNames(const PropertySection& section) {
        const Property* const property = section.find(ID_CODE_PAGE);
        std::uint16_t codePage = 0;
        return property != nullptr && property->type == TYPE_INT16 &&
               reader_.seek(property->position) && reader_.readWord(codePage) &&
               codePage == CODE_PAGE_UTF16;
    }

    /// Where the dictionary ends: at the next property, or with the stream.
    std::uint32_t findEnd(const PropertySection& section, const Property& dictionary) const {
        std::uint32_t end = reader_.getSize();
        for (const Property& property : section.properties) {
            if (property.offset > dictionary.offset) {
                end = std::min(end, section.offset + property.offset);
            }
        }
        return end;
    }

    bool readDictionary(PropertySection& section) {
        const Property& dictionary = *section.find(ID_DICTIONARY);
        const bool wide = hasWideNames(section);
        const std::uint32_t end = findEnd(section, dictionary);
        std::uint32_t count = 0;
        if (!reader_.seek(dictionary.position) || !reader_.readDword(count) ||
            count > reader_.getLeft() / ENTRY_HEAD_SIZE) {
            return false;
        }
        while (count-- > 0 && reader_.getPosition() < end) {
            DictionaryEntry entry;
            std::uint32_t length = 0;
            if (!reader_.readDword(entry.id) || !reader_.readDword(length)) return false;
            const std::uint64_t size = wide ? (std::uint64_t{length} * 2 + 3) / 4 * 4 : length;
            if (reader_.getPosition() + size > end) break;
            if (!charge(ENTRY_HEAD_SIZE + size) || !countItems(1) ||
                !readName(entry.name, length, wide)) {
                return false;
            }
            section.dictionary.push_back(std::move(entry));
        }
        return true;
    }

    bool readName(std::string& name, std::uint32_t length, bool wide) {
        if (!wide) return reader_.readNarrow(name, length);
        UnicodeString text;
        if (!reader_.readWide(text, length)) return false;
        text.toUTF8String(name);
        return length % 2 == 0 || reader_.seek(std::uint64_t{reader_.getPosition()} + 2);
    }

    PropertyReader& reader_;
    std::uint64_t budget_;
    std::uint32_t itemsLeft_;
};

}  // namespace

const Property* PropertySection::find(std::uint32_t id) const {
    const auto found = std::find_if(properties.begin(), properties.end(),
                                    [id](const Property& property) { return property.id == id; });
    return found == properties.end() ? nullptr : &*found;
}

const std::uint32_t* PropertySection::findName(std::string_view name) const {
    for (const DictionaryEntry& entry : dictionary) {
        const std::string_view stored = entry.name;
        if (stored.substr(0, stored.find('\0')) == name) return &entry.id;
    }
    return nullptr;
}

bool readByteOrder(PropertyReader& reader) {
    std::uint16_t mark = 0;
    reader.setSwapped(false);
    if (!reader.readWord(mark)) return false;
    reader.setSwapped(mark == OTHER_ORDER);
    return mark == READER_ORDER || mark == OTHER_ORDER;
}

bool readHeader(PropertyReader& reader, PropertySetHeader& header) {
    return readByteOrder(reader) && reader.readWord(header.version) &&
           reader.readDword(header.system) && reader.readClassId(header.classId) &&
           reader.readDword(header.sectionCount);
}

bool readSections(PropertyReader& reader, PropertySetHeader& header, std::uint32_t most,
                  std::vector<PropertySection>& sections) {
    SectionLoader loader(reader, most);
    return reader.seek(0) && readHeader(reader, header) &&
           loader.readList(header.sectionCount, sections) &&
           std::all_of(sections.begin(), sections.end(),
                       [&](PropertySection& section) { return loader.readSection(section); });
}

}  // namespace RynCommon::ole
