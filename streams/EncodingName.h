// Names of encodings, and the converters that stand behind them.
#pragma once

#include <string>
#include <string_view>

#include <unicode/localpointer.h>
#include <unicode/ucnv.h>

namespace RynCommon::streams {

/// Opens ICU's converter of that name in its initial state, or null. Beside ICU's names,
/// "ChineseBIG5", "ChineseGBK" and "KoreanKSC" are known, in any case.
///
/// Names come out of documents. Only letters, digits, ".", "_", ":" and "-" reach ICU, which keeps
/// its converter options (they follow a comma) out. UTF-7 and the EBCDIC encodings, in which markup
/// can be hidden from whoever looks at a document's bytes, are refused under all of their names.
icu::LocalUConverterPointer openConverter(std::string_view name);

/// Whether the converter is for a form of Unicode, UTF-16 without a byte order and the like
/// included.
bool isUnicodeForm(const UConverter& converter);

/// The name by which others know the encoding: the one registered for MIME, else IANA's, else
/// ICU's. Empty for a name that openConverter() refuses.
std::string getCanonicalEncodingName(std::string_view name);

}  // namespace RynCommon::streams
