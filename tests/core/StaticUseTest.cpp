// The constants and shared tables from static initialisers and destructors.
#include <RynCommon/RyName.h>
#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyString.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "core/UnitScan.h"

namespace RynCommon {
namespace {

// Uses all that must work before main() and after it.
bool isUsable() {
    const RyMutex guard;
    const char16_t text[] = u"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa<";
    return RyEmptyString::EMPTY_VALUE.isEmpty() && !RyEmptyString::EMPTY_VALUE.isBogus() &&
           RyBogusString::BOGUS_VALUE.isBogus() && RyValue::NULL_VALUE.isNull() &&
           RyValue(true).toString() == UnicodeString(u"true") &&
           RyNamedValue::NULL_VALUE.getName().isEmpty() &&
           RyNameTable::getBuiltinNameEnum(u"zoom") == RN_zoom &&
           RyNameTable::getBuiltinNameString(RN_zoom) == UnicodeString(u"zoom") &&
           RyName(UnicodeString(u"x-static-use")).toString() == UnicodeString(u"x-static-use") &&
           *findTextStop(text, text + 37) == u'<';
}

const bool usableBeforeMain = isUsable();

TEST(StaticUse, WorksBeforeMain) {
    EXPECT_TRUE(usableBeforeMain);
}

struct LastUser {
    ~LastUser() { std::_Exit(isUsable() ? 0 : 3); }
};

TEST(StaticUseDeathTest, WorksWhileTheProcessEnds) {
    EXPECT_EXIT(
        {
            static const LastUser user;
            RyNameTable::cleanup();
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace RynCommon
