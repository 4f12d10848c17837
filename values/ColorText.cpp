// The text form of colours.
#include "values/ColorText.h"

#include "text/NumberText.h"

namespace RynCommon {

bool appendColorText(UnicodeString& text, const RyValue& color) {
    if (!color.isInteger()) return false;
    text.append(u'#');
    appendHex(text, static_cast<std::uint32_t>(color.getIntegerValue()), 6);
    return true;
}

}  // namespace RynCommon
