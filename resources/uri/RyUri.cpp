// URIs: construction, questions, and derivations that stay URIs.
#include <RynCommon/RyUri.h>

#include <algorithm>

#include "core/MemoryCheck.h"
#include "resources/uri/UriText.h"

namespace RynCommon {

namespace {

bool isCss(RyUri::URISTRTYPE type) {
    return type == RyUri::CSS_URI_OR_PATH || type == RyUri::CSS_PATH;
}

std::u16string_view read(const UnicodeString& text, RyUri::URISTRTYPE type) {
    return isCss(type) ? uri::unwrapCss(uri::viewOf(text)) : uri::viewOf(text);
}

std::int32_t toIndex(std::size_t index) {
    return static_cast<std::int32_t>(index);
}

/// Index of the dot of the file name; pathEnd when there is none.
std::size_t findExtension(std::u16string_view text, const uri::Parts& parts) {
    const std::u16string_view name = text.substr(0, parts.pathEnd).substr(parts.nameStart);
    const std::size_t dot = name.rfind(u'.');
    return dot == uri::NONE ? parts.pathEnd : parts.nameStart + dot;
}

/// Where the part of a base string ends that two URIs must share to be related at all.
std::size_t findRelativeRoot(std::u16string_view base) {
    const uri::Parts parts = uri::split(base);
    const bool hasDrive = parts.hasAuthority && uri::hasDriveAt(base, parts.pathStart + 1);
    return parts.pathStart + (hasDrive ? 4 : 1);
}

/// Index behind the last slash of what both texts begin with.
std::size_t findCommonDirectory(std::u16string_view a, std::u16string_view b) {
    const auto [difference, ignored] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    const auto length = static_cast<std::size_t>(difference - a.begin());
    const std::size_t slash = a.substr(0, length).rfind(u'/');
    return slash == uri::NONE ? 0 : slash + 1;
}

/// A reference from the directory `base` to `target`, which begin with the same `common` units.
/// "./" protects what would read as empty, as a scheme or as a path from the root.
std::u16string makeReference(std::u16string_view base, std::u16string_view target,
                             std::size_t common) {
    const std::u16string_view rest = target.substr(common);
    std::u16string result;
    for (auto levels = std::count(base.begin() + toIndex(common), base.end(), u'/'); levels > 0;
         --levels) {
        result += u"../";
    }
    const bool needsDot =
        rest.empty() || rest.front() == u'/' || uri::findSchemeEnd(rest) != uri::NONE;
    if (result.empty() && needsDot) result = u"./";
    result += rest;
    return result;
}

}  // namespace

RyUri::RyUri() = default;

RyUri::RyUri(const UnicodeString& text, URISTRTYPE type)
    : text_(uri::toText(uri::toCanonical(read(text, type)))) {}

RyUri::RyUri(const RyUri& base, const UnicodeString& reference, URISTRTYPE type)
    : text_(uri::toText(uri::resolve(uri::viewOf(base.text_), read(reference, type)))) {}

RyUri::RyUri(const RyUri& other) = default;
RyUri& RyUri::operator=(const RyUri& other) = default;
RyUri::~RyUri() = default;

bool RyUri::isAbsolute() const {
    return uri::findSchemeEnd(uri::viewOf(text_)) != uri::NONE;
}

UnicodeString RyUri::getScheme() const {
    const std::u16string_view text = uri::viewOf(text_);
    const std::size_t end = uri::findSchemeEnd(text);
    if (end == uri::NONE) return {};
    std::u16string scheme(text.substr(0, end));
    std::transform(scheme.begin(), scheme.end(), scheme.begin(), uri::toLower);
    return uri::toText(scheme);
}

bool RyUri::isDataScheme() const {
    return uri::hasPrefix(uri::viewOf(text_), u"data:");
}

bool RyUri::isJarScheme() const {
    return uri::hasPrefix(uri::viewOf(text_), u"jar:");
}

bool RyUri::isFile() const {
    return uri::hasPrefix(uri::viewOf(text_), u"file:") || !isAbsolute();
}

UnicodeString RyUri::getFileName() const {
    const uri::Parts parts = uri::split(uri::viewOf(text_));
    return uri::toText(uri::viewOf(text_).substr(parts.nameStart, parts.pathEnd - parts.nameStart));
}

UnicodeString RyUri::getExtension() const {
    const std::u16string_view text = uri::viewOf(text_);
    const uri::Parts parts = uri::split(text);
    const std::size_t dot = findExtension(text, parts);
    if (dot == parts.pathEnd) return {};
    return uri::toText(text.substr(dot + 1, parts.pathEnd - dot - 1));
}

void RyUri::setExtension(const UnicodeString& extension) {
    const std::u16string_view text = uri::viewOf(text_);
    const uri::Parts parts = uri::split(text);
    if (parts.nameStart == parts.pathEnd) return;
    std::u16string_view wanted = uri::viewOf(extension);
    if (wanted.starts_with(u'.')) wanted.remove_prefix(1);
    const std::size_t dot = findExtension(text, parts);
    const UnicodeString tail = wanted.empty() ? UnicodeString() : u"." + uri::toText(wanted);
    requireWhole(tail);
    UnicodeString changed(text_);
    requireWhole(changed.replaceBetween(toIndex(dot), toIndex(parts.pathEnd), tail));
    text_ = std::move(changed);
}

UnicodeString RyUri::getBaseString() const {
    if (isDataScheme()) return {};
    const uri::Parts parts = uri::split(uri::viewOf(text_));
    UnicodeString base = uri::toText(uri::viewOf(text_).substr(0, parts.nameStart));
    if (parts.nameStart > parts.pathStart) return base;
    return parts.hasAuthority ? takeWhole(base + u'/') : UnicodeString();
}

UnicodeString RyUri::getRelativeUri(const UnicodeString& target) const {
    const RyUri targetUri(target);
    const UnicodeString baseText = getBaseString();
    const std::u16string_view base = uri::viewOf(baseText);
    const std::u16string_view goal = uri::viewOf(targetUri.text_);
    const std::size_t common = findCommonDirectory(base, goal.substr(0, uri::split(goal).pathEnd));
    if (common == 0 || common < findRelativeRoot(base)) return targetUri.text_;
    const UnicodeString reference = uri::toText(makeReference(base, goal, common));
    // Dot segments inside of either text can lead elsewhere.
    return RyUri(*this, reference) == targetUri ? reference : targetUri.text_;
}

void RyUri::toDirectory() {
    toDirectory(text_, L'/');
}

void RyUri::toDirectory(UnicodeString& text, wchar_t separator) {
    const UnicodeString end(static_cast<UChar32>(separator));
    if (text.endsWith(end)) return;
    UnicodeString changed = takeWhole(text + end);
    text = std::move(changed);
}

UnicodeString RyUri::removeFragment() {
    const std::int32_t start = text_.indexOf(u'#');
    if (start < 0) return {};
    UnicodeString fragment =
        uri::toText(uri::viewOf(text_).substr(static_cast<std::size_t>(start)));
    text_.truncate(start);
    return fragment;
}

}  // namespace RynCommon
