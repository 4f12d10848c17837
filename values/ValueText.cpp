// The text form of values.
#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyUtil.h>
#include <RynCommon/RyValue.h>

#include "core/MemoryCheck.h"
#include "text/NumberText.h"
#include "text/Quoting.h"
#include "values/ColorText.h"
#include "values/TokenScanner.h"
#include "values/Units.h"

namespace RynCommon {

namespace {

/// Compounds nested deeper print nothing; a map that holds itself would never end.
constexpr int MAX_DEPTH = 256;

/// Appends values to one text. Its recursion is bounded by MAX_DEPTH.
class ValueWriter {
public:
    explicit ValueWriter(bool isValueText) : isValueText_(isValueText) {}

    void write(const RyValue& value) {
        if (value.isColor() && appendColorText(text_, value)) return;
        switch (value.getValueType()) {
            case RYVALUE_INTEGER:
            case RYVALUE_REAL:
                writeNumber(value);
                break;
            case RYVALUE_NAME:
                text_.append(value.getStringValue());
                break;
            case RYVALUE_STRING:
                writeString(value);
                break;
            case RYVALUE_COMPOUND:
                if (value.isCompound()) writeCompound(*value.getNamedValueMap());
                break;
            default:
                break;
        }
    }

    UnicodeString takeText() { return takeWhole(std::move(text_)); }

private:
    void writeNumber(const RyValue& value) {
        if (value.isCharacter()) {
            text_.append(static_cast<UChar32>(value.getIntegerValue()));
            return;
        }
        if (value.isInteger())
            appendInteger(text_, value.getIntegerValue());
        else if (isValueText_)
            appendExactReal(text_, value.getRealValue());
        else
            appendReal(text_, static_cast<double>(value.getRealValue()));
        text_.append(getUnitText(value.getUnitType()));
    }

    void writeString(const RyValue& value) {
        const UnicodeString& string = value.getStringValue();
        if (!isValueText_ || standsForItself(value))
            text_.append(string);
        else if (value.isUriString())
            text_.append(RyUtil::quoteUri(string));
        else
            appendQuoted(text_, viewText(string), RYQUOTE_AUTO);
    }

    bool standsForItself(const RyValue& value) const {
        TokenScanner::Place place;
        TokenScanner::Token token;
        return depth_ == 0 && value.isUnknownString() &&
               !TokenScanner(viewText(value.getStringValue()), place).readSingle(token);
    }

    void writeCompound(const RyNamedValueMap& map) {
        if (depth_ == MAX_DEPTH) return;
        ++depth_;
        text_.append(u'{');
        bool isFirst = true;
        for (RyNamedValueMapIterator entries(&map); entries.hasNext();) {
            const RyNamedValue& entry = entries.next();
            if (entry.isNull()) continue;
            if (!isFirst) text_.append(u"; ", 2);
            isFirst = false;
            writeEntry(entry);
        }
        text_.append(u'}');
        --depth_;
    }

    void writeEntry(const RyNamedValue& entry) {
        if (entry.getName().isEmpty())
            text_.append(u'.');
        else
            text_.append(entry.getName().toString());
        text_.append(u": ", 2);
        write(entry);
    }

    UnicodeString text_;
    bool isValueText_;
    int depth_ = 0;
};

UnicodeString writeValue(const RyValue& value, bool isValueText) {
    ValueWriter writer(isValueText);
    writer.write(value);
    return writer.takeText();
}

}  // namespace

UnicodeString RyValue::toString() const {
    return writeValue(*this, false);
}

UnicodeString RyValue::toValueText() const {
    return writeValue(*this, true);
}

}  // namespace RynCommon
