// Content of the plainest form, read without stopping for each event.
//
// Most of most documents is tags of known names with plain values, and text between them, whole in
// the window. Who builds a tree needs no event there: this goes from construct to construct with
// the place in a register and tells a builder at once what stands there. It touches nothing that it
// does not understand to the end: at a reference, a comment, a new name, a declaration, an error,
// the window's end it stops before the construct, with the parser as it is when next() has just
// left the event before behind, and next() takes it from there. So everything is decided in one
// place still, and this one only recognises what needs no decision. Trees of tiny elements load in
// two thirds of the time that an event for each part takes, formatting objects in four fifths.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "core/ShortScan.h"
#include "xml/parser/XmlParserImpl.h"

namespace RynCommon {

/// An attribute whose value stands in the window.
struct PlainAttribute {
    const CachedName* name;
    RyName ns;
    std::u16string_view value;
};

/// A start tag without declarations whose names are all known and different.
struct PlainTag {
    const CachedName& name;
    RyName ns;
    std::span<const PlainAttribute> attributes;
    const char16_t* limit;  ///< of the window
    Scanner::Position position;
};

/// `Builder` has startElement(const PlainTag&), text(units, limit of the window), endElement(),
/// and mayEndElement(), which tells whether it wants the end of the open element from here.
template <class Builder>
class PlainContent {
public:
    PlainContent(XmlParserImpl& parser, Builder& builder) : parser_(parser), builder_(builder) {}

    void read() {
        if (!parser_.enterPlainContent()) return;
        place_ = parser_.scanner().cursor();
        end_ = parser_.scanner().limit();
        while (readConstruct()) {
        }
    }

private:
    using Token = XmlParserImpl::Token;
    using Place = const char16_t*;

    static constexpr std::size_t MOST_ATTRIBUTES = 16;

    /// Leaves the parser's own reading point behind each construct.
    bool readConstruct() {
        if (parser_.token_ == Token::NONE) {
            if (end_ - place_ < 2) return false;
            if (*place_ != u'<') return readText();
        }
        switch (parser_.peekToken()) {
            case Token::START_TAG:
                return readStartTag();
            case Token::END_TAG:
                return readEndTag();
            default:
                return false;
        }
    }

    /// The construct that was begun has been read up to `place`.
    bool finish(RyXmlParser::EventType event, Place place) {
        parser_.core_.event = event;
        parser_.token_ = Token::NONE;
        parser_.scanner().moveTo(place);
        place_ = place;
        return true;
    }

    bool readText() {
        const Place stop = scanTextStop(place_, end_);
        if (end_ - stop < 2 || *stop != u'<' || stop[1] == u'!' || stop[1] == u'?' ||
            stop == place_)
            return false;
        builder_.text({place_, static_cast<std::size_t>(stop - place_)}, end_);
        return finish(RyXmlParser::TEXT, stop);
    }

    bool readEndTag() {
        NamespaceManager& namespaces = parser_.namespaces_;
        if (namespaces.depth() < 2 || !builder_.mayEndElement()) return false;
        const CachedName& name = *namespaces.top().name;
        const Place place = parser_.scanner().cursor();
        if (end_ - place <= static_cast<std::ptrdiff_t>(name.length)) return false;
        const Place behind = place + name.length;
        if (*behind != u'>' || name.length == 0 || !equalUnits(place, name.text, name.length))
            return false;
        builder_.endElement();
        namespaces.pop();
        return finish(RyXmlParser::END_TAG, behind + 1);
    }

    bool readStartTag() {
        NamespaceManager& namespaces = parser_.namespaces_;
        const CachedName* const name = readElementName();
        if (name == nullptr || isTooDeep()) return false;
        const RyName ns = namespaces.lookup(name->prefix);
        if (ns.isEmpty() && !name->prefix.isEmpty()) return false;
        Place behind = parser_.scanner().cursor() + name->length;
        count_ = 0;
        bool isEmpty = false;
        if (*behind == u'>')
            ++behind;
        else if ((behind = readAttributes(*name, behind, isEmpty)) == nullptr)
            return false;
        parser_.lastName_ = name;
        finish(RyXmlParser::START_TAG, behind);
        namespaces.push(*name);
        namespaces.top().ns = ns;
        builder_.startElement(
            {*name, ns, {attributes_.data(), count_}, end_, parser_.scanner().position()});
        if (!isEmpty) return true;
        builder_.endElement();
        namespaces.pop();
        parser_.core_.event = RyXmlParser::END_TAG;
        return true;
    }

    bool isTooDeep() const {
        const auto depth = static_cast<std::uint32_t>(parser_.namespaces_.depth());
        return depth >= parser_.core_.limits.depth;
    }

    const CachedName* readElementName() const {
        const CachedName* const guess = parser_.guessElementName();
        if (guess != nullptr) return guess;
        const CachedName* const known =
            parser_.core_.findBefore(parser_.scanner().cursor(), end_, u'>', u' ', u'/');
        if (known != nullptr) parser_.lastName_->successor = known;
        return known;
    }

    /// The attributes at `place` up to and with the end of the tag. Null where one is not plain.
    Place readAttributes(const CachedName& element, Place place, bool& isEmpty) {
        const CachedName* last = &element;
        std::uint64_t seen = 0;
        for (;;) {
            if (end_ - place < 3) return nullptr;
            Place at = place;
            if (*at == u' ' && at[1] > u' ') [[likely]]
                ++at;
            else
                while (at != end_ && isXmlSpace(*at)) ++at;
            if (end_ - at < 2) return nullptr;
            if (*at == u'>') return at + 1;
            if (*at == u'/') {
                isEmpty = true;
                return at[1] == u'>' ? at + 2 : nullptr;
            }
            if (at == place || isFull()) return nullptr;
            const CachedName* const name = readAttributeName(*last, at);
            if (name == nullptr) return nullptr;
            last = name;
            at += name->length + 1;
            if (end_ - at < 2 || (*at != u'"' && *at != u'\'')) return nullptr;
            const Place stop = scanValueStop(at + 1, end_, *at);
            if (stop == end_ || *stop != *at) return nullptr;
            if (!addAttribute(*name, {at + 1, static_cast<std::size_t>(stop - at - 1)}, seen))
                return nullptr;
            place = stop + 1;
        }
    }

    bool isFull() const {
        return count_ == MOST_ATTRIBUTES || count_ >= parser_.core_.limits.attributes;
    }

    /// The name that came behind `last` before, or that is found by its units.
    const CachedName* readAttributeName(const CachedName& last, Place place) const {
        const CachedName* const guess = last.attribute;
        if (guess != nullptr && end_ - place > static_cast<std::ptrdiff_t>(guess->length) &&
            place[guess->length] == u'=' && equalUnits(place, guess->text, guess->length) &&
            parser_.core_.allows(*guess))
            return guess;
        const CachedName* const known = parser_.core_.findBefore(place, end_, u'=');
        if (known != nullptr) last.attribute = known;
        return known;
    }

    /// False for a namespace declaration, an unbound prefix and a name that was there.
    bool addAttribute(const CachedName& name, std::u16string_view value, std::uint64_t& seen) {
        RyName ns;
        if (!name.prefix.isEmpty()) {
            if (name.prefix == RN_xmlns) return false;
            ns = parser_.namespaces_.lookup(name.prefix);
            if (ns.isEmpty()) return false;
        } else if (name.local == RN_xmlns) {
            return false;
        }
        const auto number = static_cast<std::uint32_t>(RyNameEnum(name.local));
        const std::uint64_t bit = std::uint64_t{1} << number % 64;
        if ((seen & bit) != 0 && isThere(name.local, ns)) return false;
        seen |= bit;
        attributes_[count_++] = {&name, ns, value};
        return true;
    }

    bool isThere(RyName local, RyName ns) const {
        for (std::size_t i = 0; i < count_; ++i)
            if (attributes_[i].name->local == local && attributes_[i].ns == ns) return true;
        return false;
    }

    XmlParserImpl& parser_;
    Builder& builder_;
    Place place_ = nullptr;
    Place end_ = nullptr;
    std::array<PlainAttribute, MOST_ATTRIBUTES> attributes_;
    std::size_t count_ = 0;
};

}  // namespace RynCommon
