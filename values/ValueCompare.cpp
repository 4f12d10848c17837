// Equality and order of values.
#include <functional>

#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyValue.h>

#include "values/ColorValue.h"

namespace RynCommon {

namespace {

bool isAlike(const RyValue& a, const RyValue& b) {
    return a.getValueType() == b.getValueType() && a.getUnitType() == b.getUnitType();
}

bool isText(const RyValue& value) {
    return value.isString() || value.isName();
}

bool isLessText(const RyValue& a, const RyValue& b) {
    return a.getStringValue().compare(b.getStringValue()) < 0;
}

/// Two numbers in one unit, as far as their units allow.
struct NumberPair {
    NumberPair(const RyValue& left, const RyValue& right) : a(left), b(right) {
        a.normalizeUnit();
        b.normalizeUnit();
    }
    bool hasOneUnit() const { return a.getUnitType() == b.getUnitType(); }

    RyValue a;
    RyValue b;
};

bool equalNumbers(const RyValue& a, const RyValue& b) {
    if (a.getUnitType() == b.getUnitType()) return a.getRealValue() == b.getRealValue();
    const NumberPair pair(a, b);
    return pair.hasOneUnit() && pair.a.getRealValue() == pair.b.getRealValue();
}

bool isLessNumber(const RyValue& a, const RyValue& b) {
    if (a.getUnitType() == b.getUnitType()) return a.getRealValue() < b.getRealValue();
    const NumberPair pair(a, b);
    return pair.hasOneUnit() ? pair.a.getRealValue() < pair.b.getRealValue()
                             : pair.a.getUnitType() < pair.b.getUnitType();
}

/// Compounds of the colour unit that are no colours: equal when they have entries of the same names
/// with equal values. Nothing is entered more than one level deep.
bool equalComponents(const RyNamedValueMap& a, const RyNamedValueMap& b) {
    if (a.getCount() != b.getCount()) return false;
    RyNamedValueMapIterator left(&a);
    RyNamedValueMapIterator right(&b);
    while (left.hasNext()) {
        const RyNamedValue& x = left.next();
        const RyNamedValue& y = right.next();
        const bool isEqual = x.isCompound() || y.isCompound()
                                 ? x.getNamedValueMap() == y.getNamedValueMap()
                                 : static_cast<const RyValue&>(x) == y;
        if (x.getName() != y.getName() || !isEqual) return false;
    }
    return true;
}

bool equalCompounds(const RyValue& a, const RyValue& b) {
    const RyNamedValueMap* const left = a.getNamedValueMap();
    const RyNamedValueMap* const right = b.getNamedValueMap();
    if (left == right) return true;
    if (!a.isColor() || !b.isColor()) return false;
    RyColor leftColor;
    RyColor rightColor;
    const bool isLeftColor = readColorValue(a, leftColor);
    const bool isRightColor = readColorValue(b, rightColor);
    if (isLeftColor && isRightColor) return leftColor == rightColor;
    return isLeftColor == isRightColor && equalComponents(*left, *right);
}

}  // namespace

bool RyValue::operator==(const RyValue& other) const {
    if (!isAlike(*this, other)) {
        if (isNumeric() && other.isNumeric()) return equalNumbers(*this, other);
        return isText(*this) && isText(other) && getValueType() != other.getValueType() &&
               getStringValue() == other.getStringValue();
    }
    switch (getValueType()) {
        case RYVALUE_NULL:
            return true;
        case RYVALUE_INTEGER:
        case RYVALUE_NAME:
            return integer_ == other.integer_;
        case RYVALUE_REAL:
            return real_ == other.real_;
        case RYVALUE_STRING:
            return getStringValue() == other.getStringValue();
        case RYVALUE_COMPOUND:
            return equalCompounds(*this, other);
        default:
            return object_ == other.object_;
    }
}

bool RyValue::operator<(const RyValue& other) const {
    if (!isAlike(*this, other)) {
        if (isNumeric() && other.isNumeric()) return isLessNumber(*this, other);
        if (getValueType() == other.getValueType()) return getUnitType() < other.getUnitType();
        if (isText(*this) && isText(other)) return isLessText(*this, other);
        return getValueType() < other.getValueType();
    }
    switch (getValueType()) {
        case RYVALUE_NULL:
            return false;
        case RYVALUE_INTEGER:
        case RYVALUE_NAME:
            return integer_ < other.integer_;
        case RYVALUE_REAL:
            return real_ < other.real_;
        case RYVALUE_STRING:
            return isLessText(*this, other);
        default:
            return std::less<>()(object_, other.object_);
    }
}

}  // namespace RynCommon
