// Construction, kinds, predicates, access and ownership of values.
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyOrientation.h>
#include <RynCommon/RySide.h>
#include <RynCommon/RyValue.h>
#include <RynCommon/RyWritingMode.h>
#include <gtest/gtest.h>

#include "tests/values/ValueTestSupport.h"

namespace RynCommon {
namespace {

struct Counted : RyRCObject {
    explicit Counted(int& alive) : alive_(alive) { ++alive_; }
    ~Counted() override { --alive_; }
    unsigned int getTypeID() const override { return 1; }
    UnicodeString getTypeName() const override { return u"Counted"; }
    int& alive_;
};

TEST(RyValue, ConstructorsSetKindUnitAndPayload) {
    const RyPtr<RyNamedValueMap> map(new RyNamedValueMap);
    const std::pair<RyValue, const char*> rows[] = {
        {RyValue(), "0/0 "},
        {RyValue(-7), "1/1 -7"},
        {RyValue(0x1'0000'0005L), "1/1 5"},
        {RyValue(1.5F, RYUNIT_EM), "2/3 1.5em"},
        {RyValue(2, RYUNIT_PT), "2/9 2pt"},
        {RyValue(RyLength(1, RYUNIT_IN)), "2/9 72pt"},
        {RyValue(RyName(u"no such built-in name")), "3/23 no such built-in name"},
        {RyValue(true), "3/23 true"},
        {RyValue(u"text"), "4/0 text"},
        {RyValue("t\xC3\xA9xt", RYUNIT_LITERAL), "4/21 t\xC3\xA9xt"},
        {RyValue(static_cast<const char*>(nullptr)), "4/0 "},
        {RyValue(map), "7/0 {}"},
        {RyValue(static_cast<RyNamedValueMap*>(nullptr)), "7/0 "},
        {RyValue(static_cast<RyRCObject*>(nullptr)), "5/0 "},
        {RyValue(RySide(RN_left)), "3/23 left"},
        {RyWritingMode(RN_tb), "3/23 tb-rl"},
        {RyOrientation(100), "1/1 90"},
    };
    for (const auto& [value, description] : rows) {
        EXPECT_EQ(describe(value), description);
        EXPECT_EQ(describe(RyValue(value)), description);
        RyValue assigned(u"before");
        assigned = value;
        EXPECT_EQ(describe(assigned), description);
    }
}

/// Names of the predicates that hold, each behind a blank.
std::string getPredicates(const RyValue& value) {
    static constexpr struct {
        const char* name;
        bool (RyValue::*holds)() const;
    } PREDICATES[] = {
        {"null", &RyValue::isNull},
        {"empty", &RyValue::isEmpty},
        {"numeric", &RyValue::isNumeric},
        {"numerical", &RyValue::isNumericalValue},
        {"number", &RyValue::isNumber},
        {"percentage", &RyValue::isPercentage},
        {"relative", &RyValue::isRelativeLength},
        {"absolute", &RyValue::isAbsoluteLength},
        {"angle", &RyValue::isAngle},
        {"character", &RyValue::isCharacter},
        {"unknown", &RyValue::isUnknownString},
        {"literal", &RyValue::isLiteralString},
        {"uri", &RyValue::isUriString},
        {"color", &RyValue::isColor},
        {"object", &RyValue::isRCObject},
        {"compound", &RyValue::isCompound},
        {"true", &RyValue::isTrue},
        {"false", &RyValue::isFalse},
    };
    std::string result;
    for (const auto& predicate : PREDICATES)
        if ((value.*predicate.holds)()) result += std::string(" ") + predicate.name;
    return result;
}

TEST(RyValue, Predicates) {
    RyValue compound;
    compound.makeCompound();
    RyValue colorCompound(compound);
    colorCompound.setUnitType(RYUNIT_COLOR);
    RyValue colorName(RN_red);
    colorName.setUnitType(RYUNIT_COLOR);
    const struct {
        RyValue value;
        const char* expected;
    } rows[] = {
        {RyValue(), " null empty"},
        {RyValue(1), " numeric numerical number"},
        {makeInteger(5, RYUNIT_PERCENTAGE), " numeric numerical percentage"},
        {makeInteger(65, RYUNIT_CHARACTER), " numeric character"},
        {RyValue(65, RYUNIT_CHARACTER), " numeric"},
        {makeInteger(0xFF, RYUNIT_COLOR), " numeric numerical color"},
        {RyValue(1, RYUNIT_COLOR), " numeric numerical"},
        {RyValue(u""), " empty unknown"},
        {RyValue(u"a", RYUNIT_LITERAL), " literal"},
        {RyValue(RyName()), " empty"},
        {RyValue(RN_yes), " true"},
        {RyValue(RN_no), " false"},
        {colorName, ""},
        {compound, " object compound"},
        {colorCompound, " color object compound"},
        {RyValue(static_cast<RyNamedValueMap*>(nullptr)), ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(getPredicates(row.value), row.expected) << describe(row.value);

    for (unsigned u = 0; u < 32; ++u) {
        const auto unit = static_cast<RyValueUnitType>(u);
        const RyValue value(1, unit);
        EXPECT_EQ(value.isRelativeLength(), u >= 3 && u <= 5) << u;
        EXPECT_EQ(value.isAbsoluteLength(), (u >= 6 && u <= 12) || u == 29) << u;
        EXPECT_EQ(value.isAngle(), u >= 13 && u <= 15) << u;
        EXPECT_FALSE(RyValue(u"1", unit).isAbsoluteLength());
    }
}

TEST(RyValue, IntegerValueRoundsHalvesUpAndSaturates) {
    constexpr float INF = std::numeric_limits<float>::infinity();
    const std::pair<RyValue, int> rows[] = {
        {2.5, 3},           {-2.5, -2},
        {0.49999997F, 0},   {8388609.0F, 8388609},
        {INF, 2147483647},  {-INF, std::numeric_limits<int>::min()},
        {3e9F, 2147483647}, {std::nanf(""), 0},
        {-9, -9},           {u"7", 0},
        {RN_auto, 0},       {RyValue(), 0},
    };
    for (const auto& [value, expected] : rows)
        EXPECT_EQ(value.getIntegerValue(), expected) << describe(value);
}

TEST(RyValue, AccessOfTextNamesAndObjects) {
    int alive = 0;
    const RyValue object(new Counted(alive));
    RyValue compound;
    compound.makeCompound();
    EXPECT_EQ(s(RyValue(u"a b").getStringValue()), "a b");
    EXPECT_TRUE(RyValue(12).getStringValue().isEmpty());
    EXPECT_EQ(RyValue(u"auto").getNameValue(), RN_EMPTY);
    EXPECT_EQ(RyValue(u"auto").toRyName(), RN_auto);
    EXPECT_EQ(s(RyValue(12, RYUNIT_PT).toRyName().toString()), "12pt");
    EXPECT_TRUE(std::isnan(RyValue(u"12").getRealValue()));
    EXPECT_EQ(object.getRCObject()->getTypeID(), 1U);
    EXPECT_EQ(object.getNamedValueMap(), nullptr);
    EXPECT_NE(compound.getNamedValueMap(), nullptr);
    EXPECT_EQ(compound.getRCObject(), compound.getNamedValueMap());
    EXPECT_EQ(RyValue(u"x").getRCObject(), nullptr);
}

TEST(RyValue, RelabellingKeepsOrReleasesThePayload) {
    int alive = 0;
    RyValue value(RN_auto);
    value.setValueType(RYVALUE_INTEGER);
    EXPECT_EQ(value.getIntegerValue(), RN_auto);
    EXPECT_EQ(value.getUnitType(), RYUNIT_NAME);
    for (const RyValueType owning :
         {RYVALUE_STRING, RYVALUE_RCOBJECT, RYVALUE_UNUSED, RYVALUE_COMPOUND}) {
        value = RyValue(7);
        value.setValueType(owning);
        const RyValue copy(value);
        EXPECT_TRUE(copy.toString().isEmpty());
        EXPECT_FALSE(value.isCompound());
        EXPECT_EQ(value.getRCObject(), nullptr);
        value = RyValue(new Counted(alive));
        value.setValueType(owning);
        EXPECT_EQ(alive, owning == RYVALUE_RCOBJECT ? 1 : 0);
        value.setValueType(RYVALUE_INTEGER);
        EXPECT_EQ(alive, 0);
        EXPECT_EQ(value.getIntegerValue(), 0);
    }
}

TEST(RyValue, ObjectsAreSharedAndDieWithTheLastValue) {
    int alive = 0;
    {
        RyValue a(new Counted(alive));
        RyValue b(a);
        RyValue c;
        c = b;
        const RyValue& self = c;
        c = self;
        EXPECT_EQ(a.getRCObject()->getRefCount(), 3);
        const RyValue d(std::move(b));
        EXPECT_TRUE(b.isNull());
        EXPECT_EQ(d.getRCObject()->getRefCount(), 3);
        a = 5;
        c = std::move(a);
        EXPECT_EQ(d.getRCObject()->getRefCount(), 1);
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);
}

TEST(RyValue, CompoundsShareTheirMap) {
    RyValue value;
    value.setNamedItem(RN_top, 1);
    EXPECT_TRUE(value.isNull());
    EXPECT_TRUE(value.getNamedItem(RN_top).isNull());
    value.makeCompound();
    const RyValue copy(value);
    value.setNamedItem(RN_top, 1);
    value.setNamedItem(RyNamedValue(2, RN_left));
    EXPECT_EQ(copy.getNamedItem(RN_top), RyValue(1));
    EXPECT_EQ(copy.getNamedValueMap()->getCount(), 2);
    value.removeNamedItem(RN_top);
    EXPECT_TRUE(copy.getNamedItem(RN_top).isNull());
    RyNamedValueMapIterator entries(value.getNamedValueMap());
    value = entries.next();
    EXPECT_EQ(value, RyValue(2)) << "an entry may replace its own map";
}

TEST(RyValue, ANamedValueKeepsItsNameThroughAssignmentAndArithmetic) {
    RyNamedValue item(RyValue(3), RN_width);
    static_cast<RyValue&>(item) = RyValue(u"text");
    EXPECT_EQ(item.getName(), RN_width);
    static_cast<RyValue&>(item) = RyValue(4, RYUNIT_PT);
    item += item;
    item.normalizeUnit();
    EXPECT_EQ(item.getName(), RN_width);
    EXPECT_EQ(describe(item), "2/9 8pt");
}

struct Holder : Counted {
    Holder(int& alive, const RyValue& value) : Counted(alive), held(value) {}
    RyValue held;
};

TEST(RyValue, DeepChainsOfObjectsCostNoStack) {
    int alive = 0;
    RyValue value(1);
    for (int i = 0; i < 300000; ++i) value = RyValue(new Holder(alive, value));
    EXPECT_EQ(alive, 300000);
    value = 1;
    EXPECT_EQ(alive, 0);
}

TEST(RyValue, DeepCompoundsCostNoStack) {
    RyValue value(1);
    for (int i = 0; i < 1000000; ++i) {
        RyValue outer;
        outer.makeCompound();
        outer.setNamedItem(RN_value, value);
        value = outer;
    }
    const RyValue copy(value);
    EXPECT_EQ(copy.getNamedValueMap(), value.getNamedValueMap());
    const UnicodeString text = value.toString();
    EXPECT_EQ(text.indexOf(u"{value: {value: "), 0);
    EXPECT_EQ(text.length(), 256 * UnicodeString(u"{value: }").length());
}

}  // namespace
}  // namespace RynCommon
