// Construction, copying and access of values.
//
// A value owns its string and shares objects and maps by their counts. Nesting costs no stack: when
// the last reference of an object goes while another object is being destroyed on the same thread,
// the object is put on a list and destroyed by the outermost release.
#include <RynCommon/RyValue.h>

#include <cmath>
#include <new>
#include <utility>
#include <vector>

#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyString.h>
#include <RynCommon/RyUtil.h>

#include "core/MemoryCheck.h"
#include "values/Units.h"

namespace RynCommon {

namespace {

/// ICU reports a lack of memory by a null pointer or a bogus string.
UnicodeString* copyText(const UnicodeString& text) {
    UnicodeString* const copy = new UnicodeString(text);
    if (copy == nullptr || (copy->isBogus() && !text.isBogus())) {
        delete copy;
        throw std::bad_alloc();
    }
    return copy;
}

using ObjectList = std::vector<const RyRCObject*>;

/// Objects that wait for their destruction; null unless a release is under way on this thread. A
/// plain pointer, so that values may be released at any time, also after the thread's other data is
/// gone.
constinit thread_local ObjectList* waitingObjects = nullptr;

bool putOnList(ObjectList& list, const RyRCObject* object) {
    try {
        list.push_back(object);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void releaseWithAllItHolds(const RyRCObject* object) {
    ObjectList list;
    waitingObjects = &list;
    object->release();
    while (!list.empty()) {
        const RyRCObject* const next = list.back();
        list.pop_back();
        next->release();
    }
    waitingObjects = nullptr;
}

void releaseObject(const RyRCObject* object) {
    if (object->removeRef() > 0) return;
    // It was the last reference: nobody else can see the object, and release() shall find one to
    // drop.
    object->addRef();
    if (waitingObjects == nullptr)
        releaseWithAllItHolds(object);
    else if (!putOnList(*waitingObjects, object))
        object->release();
}

}  // namespace

constinit const RyValue RyValue::NULL_VALUE{};

RyValue::RyValue(const RyLength& length) : RyValue(static_cast<float>(length), RYUNIT_PT) {}

RyValue::RyValue(const UnicodeString& text, RyValueUnitType unit) : RyValue(RYVALUE_STRING, unit) {
    string_ = copyText(text);
}

RyValue::RyValue(const char16_t* text, RyValueUnitType unit)
    : RyValue(takeWhole(UnicodeString(text)), unit) {}

RyValue::RyValue(const char* text, RyValueUnitType unit)
    : RyValue(text == nullptr ? UnicodeString() : takeWhole(UnicodeString::fromUTF8(text)), unit) {}

RyValue::RyValue(RyRCObject* object) : RyValue(RYVALUE_RCOBJECT, RYUNIT_NONE) {
    object_ = object;
    if (object != nullptr) object->addRef();
}

RyValue::RyValue(RyNamedValueMap* map) : RyValue(RYVALUE_COMPOUND, RYUNIT_NONE) {
    object_ = map;
    if (map != nullptr) map->addRef();
}

void RyValue::copyPayload(const RyValue& other) {
    if (!other.isString()) {
        object_ = other.object_;
        if (object_ != nullptr) object_->addRef();
    } else if (other.string_ != nullptr) {
        string_ = copyText(*other.string_);
    }
}

void RyValue::releasePayload() {
    if (isString())
        delete string_;
    else if (object_ != nullptr)
        releaseObject(object_);
}

RyValue& RyValue::operator=(const RyValue& other) {
    if (isOwning() || other.isOwning()) return *this = RyValue(other);
    tag_ = (tag_ & ~TAG_MASK) | (other.tag_ & TAG_MASK);
    word_ = other.word_;
    return *this;
}

RyValue& RyValue::operator=(RyValue&& other) noexcept {
    // What this value held goes last: `other` may lie inside of it.
    RyValue taken(std::move(other));
    const RyValue old(std::move(*this));
    tag_ |= taken.tag_;
    word_ = taken.word_;
    taken.tag_ = 0;
    return *this;
}

void RyValue::setValueType(RyValueType type) {
    if (type == getValueType()) return;
    const RyValueUnitType unit = getUnitType();
    if (isOwning() || (type & 4) != 0) *this = RyValue();
    tag_ = (tag_ & ~TAG_MASK) | bitfield(static_cast<RyValueType>(type & 7), unit, RN_EMPTY);
}

int RyValue::getIntegerValue() const {
    if (isInteger()) return integer_;
    if (!isReal()) return 0;
    // The sum is exact in double; saturation and NaN are the rounding's.
    return RyUtil::roundToInteger(std::floor(static_cast<double>(real_) + 0.5));
}

float RyValue::getRealValue(RyValueUnitType unit) const {
    if (!isNumeric()) return RyUtil::getNaNf();
    return convertUnit(isReal() ? real_ : static_cast<float>(integer_), getUnitType(), unit);
}

RyName RyValue::toRyName() const {
    return isName() ? RyName(getNameValue()) : RyName(toString());
}

const UnicodeString& RyValue::getStringValue() const {
    if (isString() && string_ != nullptr) return *string_;
    return isName() ? RyName(getNameValue()).toString() : RyEmptyString::EMPTY_VALUE;
}

RyLength RyValue::getLengthValue() const {
    return RyLength(*this);
}

RyRCObject* RyValue::getRCObject() const {
    const bool isCounted = getValueType() == RYVALUE_RCOBJECT || isCompound();
    return isCounted ? const_cast<RyRCObject*>(object_) : nullptr;
}

RyNamedValueMap* RyValue::getNamedValueMap() const {
    return isCompound() ? static_cast<RyNamedValueMap*>(const_cast<RyRCObject*>(object_)) : nullptr;
}

void RyValue::makeCompound() {
    *this = RyValue(RyPtr(new RyNamedValueMap).get());
}

RyValue RyValue::getNamedItem(RyName name) const {
    const RyNamedValueMap* const map = getNamedValueMap();
    return map != nullptr ? map->getNamedItem(name).getValue() : RyValue();
}

void RyValue::setNamedItem(RyName name, const RyValue& value) {
    if (RyNamedValueMap* const map = getNamedValueMap()) map->setNamedItem(name, value);
}

void RyValue::setNamedItem(const RyNamedValue& item) {
    if (RyNamedValueMap* const map = getNamedValueMap()) map->setNamedItem(item);
}

void RyValue::removeNamedItem(RyName name) {
    if (RyNamedValueMap* const map = getNamedValueMap()) map->removeNamedItem(name);
}

bool RyValue::isEmpty() const {
    switch (getValueType()) {
        case RYVALUE_NULL:
            return true;
        case RYVALUE_STRING:
        case RYVALUE_NAME:
            return getStringValue().isEmpty();
        default:
            return false;
    }
}

bool RyValue::isRelativeLength() const {
    return isNumeric() && getUnit(getUnitType()).unitClass == UnitClass::RELATIVE_LENGTH;
}

bool RyValue::isAbsoluteLength() const {
    return isNumeric() && getUnit(getUnitType()).unitClass == UnitClass::ABSOLUTE_LENGTH;
}

bool RyValue::isAngle() const {
    return isNumeric() && getUnit(getUnitType()).unitClass == UnitClass::ANGLE;
}

bool RyValue::isColor() const {
    return getUnitType() == RYUNIT_COLOR && (isInteger() || isCompound());
}

bool RyValue::isRCObject() const {
    return getValueType() == RYVALUE_RCOBJECT || isCompound();
}

bool RyValue::isTrue() const {
    return isName() && (getNameValue() == RN_true || getNameValue() == RN_yes);
}

bool RyValue::isFalse() const {
    return isName() && (getNameValue() == RN_false || getNameValue() == RN_no);
}

void RyValue::normalizeUnit() {
    if (!isNumeric()) return;
    const RyValueUnitType unit = getUnitType();
    const Unit& row = getUnit(unit);
    if (row.unitClass == UnitClass::RESOLUTION)
        setUnitType(row.canonical);
    else if (row.canonical != unit)
        *this = RyValue(getRealValue(row.canonical), row.canonical);
}

const UnicodeString& RyValue::getUnitString(RyValueUnitType unit) {
    return getUnitText(unit);
}

}  // namespace RynCommon
