// Resolution of references against a base.
//
// The result is always "base up to some slash" + "/" + "rest of the reference": the reference loses
// its leading dot segments and becomes a number of levels to go up, the base loses that many
// segments from its end, and neither is cut below the base's root. Dot segments inside of either
// stay, as do queries and fragments of references. Both texts are only walked by index, so "../"
// and "jar:" may be repeated without end.
#include <algorithm>
#include <cstdint>

#include "resources/uri/UriText.h"

namespace RynCommon::uri {

namespace {

/// More levels than any base has: back to the root.
constexpr std::size_t TO_ROOT = SIZE_MAX / 2;

/// A relative reference without its leading dot segments.
struct Climb {
    std::u16string_view rest;
    std::size_t levels = 0;
};

Climb takeDotSegments(std::u16string_view reference) {
    if (reference == u".") return {{}, 0};
    if (reference == u"..") return {{}, 1};
    if (reference.starts_with(u'/')) return {reference.substr(1), TO_ROOT};
    Climb climb{reference, 0};
    for (;;) {
        if (climb.rest.starts_with(u"./")) {
            climb.rest.remove_prefix(2);
        } else if (climb.rest.starts_with(u"../")) {
            climb.rest.remove_prefix(3);
            ++climb.levels;
        } else {
            return climb;
        }
    }
}

/// A base in the form that segments are cut from. No cut goes below `root`, the lowest index that a
/// cut may leave.
struct Base {
    std::u16string text;
    std::size_t root = 0;
};

/// The root of "//..." is its authority, or the drive of a local file; that of a `jar:` URI is the
/// slash of its last
/// "!/", so that members of the archive's top level have siblings there.
std::size_t findRoot(std::u16string_view base, std::size_t schemeEnd) {
    if (base.substr(schemeEnd + 1, 2) == u"//") {
        const bool hasDrive = base.starts_with(u"file:///") && hasDriveAt(base, 8);
        return hasDrive ? 10 : schemeEnd + 3;
    }
    const std::size_t member = base.starts_with(u"jar:") ? base.rfind(u"!/") : NONE;
    return member == NONE ? 0 : member + 1;
}

Base prepareBase(std::u16string_view text) {
    Base base{std::u16string(text)};
    const std::size_t schemeEnd = findSchemeEnd(base.text);
    if (schemeEnd == NONE) return base;
    std::transform(base.text.begin(), base.text.begin() + static_cast<std::ptrdiff_t>(schemeEnd),
                   base.text.begin(), toLower);
    if (base.text.starts_with(u"http://") || base.text.starts_with(u"https://")) {
        base.text.resize(std::min(base.text.find(u'?'), base.text.size()));
    } else if (hasPrefix(base.text, u"file://localhost/")) {
        base.text.replace(0, 17, u"file:///");
    }
    base.root = findRoot(base.text, schemeEnd);
    return base;
}

/// Takes the dot segments off the end of the base and returns the levels that they climb.
std::size_t foldTrailingDots(std::u16string& base) {
    std::u16string_view rest = base;
    std::size_t levels = 0;
    for (;;) {
        if (rest.ends_with(u"/.")) {
            rest.remove_suffix(1);
        } else if (rest.ends_with(u"/..")) {
            rest.remove_suffix(2);
            ++levels;
        } else if (rest.ends_with(u"/./")) {
            rest.remove_suffix(2);
        } else if (rest.ends_with(u"/../")) {
            rest.remove_suffix(3);
            ++levels;
        } else {
            base.resize(rest.size());
            return levels;
        }
    }
}

/// Cuts the text from the last slash on, `count` times or down to the root.
void cutSegments(Base& base, std::size_t count) {
    std::size_t end = base.text.size();
    for (; count > 0 && end > 0; --count) {
        const std::size_t slash = base.text.rfind(u'/', end - 1);
        if (slash == NONE || slash < base.root) break;
        end = slash;
    }
    base.text.resize(end);
}

std::u16string resolveRelative(std::u16string_view baseText, std::u16string_view reference) {
    if (baseText == u"./" || baseText.find(u'/') == NONE) return std::u16string(reference);
    const Climb climb = takeDotSegments(reference);
    Base base = prepareBase(baseText);
    const std::size_t levels = climb.levels + foldTrailingDots(base.text);
    cutSegments(base, levels + 1);
    base.text += u'/';
    base.text += climb.rest;
    return std::move(base.text);
}

std::u16string concat(std::u16string_view head, std::u16string_view tail) {
    std::u16string result(head);
    result += tail;
    return result;
}

/// A reference "file:/...": one slash and a misplaced drive letter are mended.
std::u16string mendFileReference(std::u16string_view reference) {
    if (reference.size() < 7 || reference[6] != u'/') {
        return concat(u"file:///", reference.substr(6));
    }
    const bool driveAsHost = hasDriveAt(reference, 7);
    return driveAsHost ? concat(u"file:///", reference.substr(7)) : std::u16string(reference);
}

std::u16string resolveInner(std::u16string_view base, std::u16string_view reference) {
    if (reference.empty()) return {};
    if (hasDriveAt(reference, 0)) return concat(u"file:///", reference);
    if (reference.starts_with(u"//")) return mendFileReference(concat(u"file:", reference));
    if (hasPrefix(reference, u"file:")) {
        const std::u16string_view rest = reference.substr(5);
        return rest.starts_with(u'/') ? mendFileReference(reference) : resolveRelative(base, rest);
    }
    if (findSchemeEnd(reference) != NONE) return std::u16string(reference);
    return resolveRelative(base, reference);
}

}  // namespace

std::u16string resolve(std::u16string_view base, std::u16string_view reference) {
    const std::u16string normal = normalise(reference);
    std::u16string_view rest = normal;
    std::u16string result;
    while (hasPrefix(rest, u"jar:")) {
        rest = trim(rest.substr(4));
        result += u"jar:";
    }
    result += resolveInner(base, rest);
    return result;
}

}  // namespace RynCommon::uri
