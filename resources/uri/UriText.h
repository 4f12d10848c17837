// The lexical questions about URI texts that construction, resolution and opening share. All work
// on views and look at each unit at most once.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon::uri {

constexpr std::size_t NONE = std::u16string_view::npos;

std::u16string_view viewOf(const UnicodeString& text);
/// The empty string when the text is longer than a UnicodeString can be.
UnicodeString toText(std::u16string_view text);

bool isLetter(char16_t c);
char16_t toLower(char16_t c);
/// The value of a hexadecimal digit, or -1.
int hexValue(char32_t c);

/// Whether `text` begins with `prefix`, a text of lower-case ASCII, in either case.
bool hasPrefix(std::u16string_view text, std::u16string_view prefix);
/// Without white space at both ends.
std::u16string_view trim(std::u16string_view text);

/// Index of the colon after a scheme: a letter, then letters, digits, "+" and "-". NONE when there
/// is no scheme.
std::size_t findSchemeEnd(std::u16string_view text);
/// Whether a letter and a colon stand at `index`.
bool hasDriveAt(std::u16string_view text, std::size_t index);

/// Trimmed, with blanks as "%20" and backslashes as "/"; a `data:` URI is only trimmed.
std::u16string normalise(std::u16string_view text);
/// Takes the notation `url(...)` and one pair of matching quotes off.
std::u16string_view unwrapCss(std::u16string_view text);
/// The form in which a URI, relative reference or path is kept.
std::u16string toCanonical(std::u16string_view text);
/// `reference` resolved against `base`.
std::u16string resolve(std::u16string_view base, std::u16string_view reference);

/// Where the parts of a URI lie. The path of a `jar:` URI is what follows its last "!/". A `data:`
/// URI has no path.
struct Parts {
    std::size_t pathStart = 0;
    /// The start of query and fragment.
    std::size_t pathEnd = 0;
    /// Behind the last slash of the path.
    std::size_t nameStart = 0;
    /// Whether "//" and an authority (possibly empty) stand before the path.
    bool hasAuthority = false;
};
Parts split(std::u16string_view text);

}  // namespace RynCommon::uri
