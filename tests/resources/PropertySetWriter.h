// Writes property set streams for tests.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tests/resources/OleWriter.h"

namespace RynCommon::test {

/// Properties are added to the section begun last. Values are built by the functions below, in the
/// byte order of the set.
class PropertySetWriter {
public:
    explicit PropertySetWriter(bool bigEndian = false) : bigEndian_(bigEndian) {}

    PropertySetWriter& section() {
        sections_.emplace_back();
        return *this;
    }
    /// The bytes after the type are `value`; a dictionary (id 0) has no type.
    PropertySetWriter& add(std::size_t id, std::size_t type, const std::string& value) {
        const std::string head = id == 0 ? std::string() : number(type, 4);
        sections_.back().emplace_back(id, head + value);
        return *this;
    }

    std::string number(std::size_t value, std::size_t size) const {
        ByteSink sink(bigEndian_);
        sink.put(value, size);
        return sink.bytes;
    }
    /// A length, and so many bytes.
    std::string narrow(const std::string& text) const { return number(text.size(), 4) + text; }
    std::string wide(const std::u16string& text) const {
        ByteSink sink(bigEndian_);
        sink.put32(text.size());
        for (const char16_t unit : text) sink.put16(unit);
        return sink.bytes;
    }
    std::string dictionary(const std::vector<std::pair<std::size_t, std::string>>& names) const {
        std::string bytes = number(names.size(), 4);
        for (const auto& [id, name] : names) bytes += number(id, 4) + narrow(name);
        return bytes;
    }
    /// A blob of hyperlinks: an integer before each text.
    std::string hyperLinks(const std::vector<std::u16string>& texts) const {
        ByteSink sink(bigEndian_);
        sink.put32(2 * texts.size());
        for (const std::u16string& text : texts) {
            sink.bytes += number(3, 4) + number(7, 4) + number(31, 4) + wide(text);
            sink.pad(4);
        }
        return number(sink.bytes.size(), 4) + sink.bytes;
    }

    std::string write() const {
        ByteSink sink(bigEndian_);
        sink.put16(0xFFFE);
        sink.put16(0);
        sink.put32(0x00020006);
        sink.bytes.resize(24);
        sink.put32(sections_.size());
        std::size_t offset = 28 + 20 * sections_.size();
        std::string body;
        for (const Section& properties : sections_) {
            sink.put32(0xF29F85E0);
            sink.bytes.resize(sink.bytes.size() + 12);
            sink.put32(offset + body.size());
            body += writeSection(properties);
        }
        return sink.bytes + body;
    }

private:
    using Section = std::vector<std::pair<std::size_t, std::string>>;

    std::string writeSection(const Section& properties) const {
        ByteSink head(bigEndian_);
        ByteSink values(bigEndian_);
        head.put32(0);
        head.put32(properties.size());
        for (const auto& [id, bytes] : properties) {
            head.put32(id);
            head.put32(8 + 8 * properties.size() + values.bytes.size());
            values.bytes += bytes;
            values.pad(4);
        }
        head.set(0, head.bytes.size() + values.bytes.size(), 4);
        return head.bytes + values.bytes;
    }

    bool bigEndian_;
    std::vector<Section> sections_;
};

}  // namespace RynCommon::test
