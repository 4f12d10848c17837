// What XML 1.0 and Namespaces in XML 1.0 allow in names and texts.
#pragma once

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Whether every character is a Char of XML 1.0: no control characters but TAB, LF and CR, no lone
/// surrogates, no U+FFFE and U+FFFF.
bool isCharacterData(const char16_t* text, std::size_t length);
bool isCharacterData(const UnicodeString& text);
/// Whether the text is a name without a colon.
bool isNcName(const UnicodeString& text);
/// Whether the text can stand between "<!--" and "-->".
bool isCommentText(const UnicodeString& text);
/// Whether the text is a target other than "xml", then the end or white space and whatever has no
/// "?>" in it.
bool isProcessingInstructionText(const UnicodeString& text);
bool isWhiteSpace(const UnicodeString& text);

}  // namespace RynCommon
