// Percent-escapes (RFC 3986, section 2.1): taking them out and putting them in.
#pragma once

#include <string>
#include <string_view>

#include <RynCommon/Forward.h>

namespace RynCommon::uri {

/// "%" and two hexadecimal digits become one unit of that value; any other "%" stays.
UnicodeString unescape(std::u16string_view text);

/// The text in UTF-8, then "%" and two hexadecimal digits as the byte of that value; any other "%"
/// stays.
std::string unescapeToBytes(std::u16string_view text);

/// What goes to a server: ASCII, without the fragment. Characters that a URI must not hold become
/// escapes of their UTF-8 bytes, a "%" that begins no escape becomes "%25", escapes stay. A host
/// name with other than ASCII letters takes its ASCII form (UTS #46), where it has one.
std::string toRequestUrl(std::u16string_view uri);

}  // namespace RynCommon::uri
