// Number formatting against ICU's rule-based formatter, which it is held against: page numbers in
// Roman numerals, in decimal, and in Hebrew numerals.
#include <RynCommon/RyLang.h>
#include <RynCommon/RyUtil.h>
#include <benchmark/benchmark.h>
#include <unicode/rbnf.h>

namespace RynCommon {
namespace {

constexpr int LAST_NUMBER = 3999;

/// Each of the numbers in turn, so that short and long numerals weigh as in a book.
class Numbers {
public:
    int next() { return number_ = number_ < LAST_NUMBER ? number_ + 1 : 1; }

private:
    int number_ = 0;
};

void formatOurs(benchmark::State& state, const char16_t* picture) {
    const UnicodeString format(picture);
    const RyLang lang;
    Numbers numbers;
    for (auto _ : state) {
        const UnicodeString text = RyUtil::formatNumber(numbers.next(), format, lang);
        benchmark::DoNotOptimize(text.getBuffer());
    }
    state.SetItemsProcessed(state.iterations());
}

/// The rule set is made the default once, which spares ICU the look-up by name on every call.
void formatIcu(benchmark::State& state, const char16_t* ruleSet) {
    UErrorCode status = U_ZERO_ERROR;
    icu::RuleBasedNumberFormat formatter(icu::URBNF_NUMBERING_SYSTEM, icu::Locale::getRoot(),
                                         status);
    formatter.setDefaultRuleSet(ruleSet, status);
    if (U_FAILURE(status)) return state.SkipWithError(u_errorName(status));
    Numbers numbers;
    for (auto _ : state) {
        UnicodeString text;
        formatter.format(numbers.next(), text);
        benchmark::DoNotOptimize(text.getBuffer());
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK_CAPTURE(formatOurs, RomanLower, u"i");
BENCHMARK_CAPTURE(formatIcu, RomanLower, u"%roman-lower");
BENCHMARK_CAPTURE(formatOurs, RomanUpper, u"I");
BENCHMARK_CAPTURE(formatIcu, RomanUpper, u"%roman-upper");
BENCHMARK_CAPTURE(formatOurs, RomanBetweenTexts, u"- i -");
BENCHMARK_CAPTURE(formatOurs, Hebrew, u"א");
BENCHMARK_CAPTURE(formatIcu, Hebrew, u"%hebrew");
BENCHMARK_CAPTURE(formatOurs, Decimal, u"1");
BENCHMARK_CAPTURE(formatOurs, Letters, u"a");

}  // namespace
}  // namespace RynCommon

BENCHMARK_MAIN();
