// Parsing of property texts: a million values of each kind that documents are full of, and of all
// kinds mixed. Side by side with it what a program without typed values does: the text cut off by
// hand, its number read by the C library and its unit compared.
#include <RynCommon/RyColor.h>
#include <RynCommon/RyTokenizer.h>
#include <RynCommon/RyValue.h>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace RynCommon {
namespace {

constexpr std::size_t COUNT = 1'000'000;

/// `COUNT` texts, none sharing its buffer with another.
std::vector<UnicodeString> makeTexts(std::initializer_list<const char16_t*> samples) {
    std::vector<UnicodeString> texts;
    texts.reserve(COUNT);
    while (texts.size() < COUNT)
        for (const char16_t* sample : samples) texts.emplace_back(sample);
    return texts;
}

template <class Parse>
void run(benchmark::State& state, std::initializer_list<const char16_t*> samples, Parse parse) {
    const std::vector<UnicodeString> texts = makeTexts(samples);
    for (auto _ : state)
        for (const UnicodeString& text : texts) {
            const RyValue value = parse(text);
            benchmark::DoNotOptimize(value.getUnitType());
        }
    state.SetItemsProcessed(static_cast<std::int64_t>(texts.size()) * state.iterations());
}

void parse(benchmark::State& state, std::initializer_list<const char16_t*> samples) {
    run(state, samples, RyValue::parse);
}

void parseColor(benchmark::State& state, std::initializer_list<const char16_t*> samples) {
    run(state, samples, [](const UnicodeString& text) { return RyValue::parseColor(text, true); });
}

void parseList(benchmark::State& state, std::initializer_list<const char16_t*> samples) {
    run(state, samples, [](const UnicodeString& text) {
        RyTokenizer tokenizer(text);
        RyValue last;
        for (RyValue value = tokenizer.nextTokenValueFunc(); !value.isNull();
             value = tokenizer.nextTokenValueFunc())
            last = value;
        return last;
    });
}

void readByHand(benchmark::State& state, std::initializer_list<const char16_t*> samples) {
    run(state, samples, [](const UnicodeString& text) {
        char narrow[32];
        text.extract(0, text.length(), narrow, sizeof narrow, US_INV);
        char* end = nullptr;
        const float number = std::strtof(narrow, &end);
        if (std::strcmp(end, "pt") == 0) return RyValue(number, RYUNIT_PT);
        if (std::strcmp(end, "em") == 0) return RyValue(number, RYUNIT_EM);
        if (std::strcmp(end, "in") == 0) return RyValue(number, RYUNIT_IN);
        return RyValue(number);
    });
}

BENCHMARK_CAPTURE(parse, Length, {u"12pt", u"1.5em", u"0.25in", u"100%"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readByHand, Length, {u"12pt", u"1.5em", u"0.25in", u"100%"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, Number, {u"0", u"1", u"-12", u"3.25"})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, HexColor, {u"#ff0000", u"#abc"})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, BuiltinName, {u"solid", u"auto", u"start", u"lr-tb", u"always"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, SingleTokens, {u"12pt", u"1.5em", u"#ff0000", u"solid"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, UnknownString, {u"0.5in 1in", u"Helvetica, serif"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, Typical,
                  {u"12pt", u"1.5em", u"#ff0000", u"rgb(100%,0,50%)", u"solid", u"0.5in 1in"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseColor, Rgb, {u"rgb(100%,0,50%)", u"rgb(255,128,0)"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseColor, Cmyk, {u"rgb-icc(255,0,0,#CMYK,0,1,1,0)"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseList, Lengths, {u"0.5in 1in", u"1pt 2pt 3pt 4pt", u"1pt solid #ff0000"})
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace RynCommon

BENCHMARK_MAIN();
