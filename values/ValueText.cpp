// The text form of values.
#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyValue.h>

#include "text/NumberText.h"
#include "text/Quoting.h"
#include "values/ColorText.h"
#include "values/Units.h"

namespace RynCommon {

namespace {

/// Compounds nested deeper print nothing; a map that holds itself would never end.
constexpr int MAX_DEPTH = 256;

/// Appends values to one text. Its recursion is bounded by MAX_DEPTH.
class ValueWriter {
public:
    explicit ValueWriter(bool quotesStrings) : quotesStrings_(quotesStrings) {}

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
                writeString(value.getStringValue());
                break;
            case RYVALUE_COMPOUND:
                if (value.isCompound()) writeCompound(*value.getNamedValueMap());
                break;
            default:
                break;
        }
    }

    UnicodeString takeText() { return std::move(text_); }

private:
    void writeNumber(const RyValue& value) {
        if (value.isCharacter()) {
            text_.append(static_cast<UChar32>(value.getIntegerValue()));
            return;
        }
        if (value.isInteger())
            appendInteger(text_, value.getIntegerValue());
        else
            appendReal(text_, static_cast<double>(value.getRealValue()));
        text_.append(getUnitText(value.getUnitType()));
    }

    void writeString(const UnicodeString& string) {
        if (quotesStrings_)
            appendQuoted(text_, {string.getBuffer(), static_cast<std::size_t>(string.length())},
                         RYQUOTE_AUTO);
        else
            text_.append(string);
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
    bool quotesStrings_;
    int depth_ = 0;
};

UnicodeString writeValue(const RyValue& value, bool quotesStrings) {
    ValueWriter writer(quotesStrings);
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
