// What parsing allocates: nothing for numbers, units, hexadecimal colours and built-in names.
//
// Both sources of memory are counted: operator new, replaced for this test program, and ICU's,
// whose strings take theirs from the functions set here.
#include <cstdlib>
#include <new>

#include <RynCommon/RyTokenizer.h>
#include <gtest/gtest.h>
#include <unicode/uclean.h>

#include "tests/values/ValueTestSupport.h"

namespace {

constinit thread_local int allocations = 0;

void* countedAllocation(std::size_t size) {
    ++allocations;
    return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* const room = countedAllocation(size)) return room;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* room) noexcept {
    std::free(room);
}
[[gnu::noinline]] void operator delete(void* room, std::size_t) noexcept {
    std::free(room);
}

namespace RynCommon {
namespace {

void* allocateForIcu(const void*, std::size_t size) {
    return countedAllocation(size);
}
void* reallocateForIcu(const void*, void* room, std::size_t size) {
    ++allocations;
    return std::realloc(room, size);
}
void freeForIcu(const void*, void* room) {
    std::free(room);
}

template <class Action>
int countAllocations(Action action) {
    action();
    allocations = 0;
    action();
    return allocations;
}

TEST(ParseAllocation, CommonValuesTakeNoMemory) {
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(nullptr, allocateForIcu, reallocateForIcu, freeForIcu, &status);
    ASSERT_TRUE(U_SUCCESS(status));
    ASSERT_GE(countAllocations([] { RyValue(u"a string"); }), 1) << "nothing is counted";
    ASSERT_GE(countAllocations([] { UnicodeString text(100, u'a', 100); }), 1)
        << "ICU is not counted";
    for (const char16_t* sample :
         {u"12pt", u"-1.5em", u"50%", u"0", u"123456789012345678", u"0.000000000000001in",
          u"#ff0000", u"#abc", u"solid", u"xyz-left-top", u"background-position-horizontal",
          u" 12PT\n"}) {
        const UnicodeString text(sample);
        EXPECT_EQ(countAllocations([&] { RyValue::parse(text); }), 0) << s(text);
        EXPECT_EQ(countAllocations([&] { RyValue::parseColor(text, true); }), 0) << s(text);
        EXPECT_EQ(countAllocations([&] { RyValue::parseNonNumeric(u"auto"); }), 0);
    }
    const UnicodeString list(u"1pt 2.5em\t#abc solid rgb(1,2%,3) 1e3 + ( 12foo ");
    EXPECT_EQ(countAllocations([&] { RyValue::parseColor(u"rgb(100%,0,50%)", false); }), 0);
    EXPECT_EQ(countAllocations([&] {
                  RyTokenizer tokenizer(list);
                  while (tokenizer.nextToken() != RYTOKEN_END) {
                  }
              }),
              0);
}

}  // namespace
}  // namespace RynCommon
