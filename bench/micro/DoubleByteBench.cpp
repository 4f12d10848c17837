// Decoding of double-byte encodings, against ICU's converters: a document of paragraphs in the
// encoding's language, in the blocks of the conversion stream. And what the first opening of an
// encoding adds, the making of its table.
#include <RynCommon/Forward.h>
#include <benchmark/benchmark.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "streams/Converter.h"
#include "streams/DoubleByteTable.h"
#include "streams/EncodingName.h"

namespace RynCommon {
namespace {

constexpr std::size_t BLOCK = 4096;
constexpr std::int32_t DOCUMENT_UNITS = 500'000;

constexpr const char16_t* JAPANESE =
    u"吾輩は猫である。名前はまだ無い。どこで生れたかとんと見当がつかぬ。何でも薄暗いじめじめした所"
    u"で"
    u"ニャーニャー泣いていた事だけは記憶している。吾輩はここで始めて人間というものを見た。";
constexpr const char16_t* KOREAN =
    u"모든 국민은 인간으로서의 존엄과 가치를 가지며, 행복을 추구할 권리를 가진다. 국가는 개인이 "
    u"가지는 "
    u"불가침의 기본적 인권을 확인하고 이를 보장할 의무를 진다.";
constexpr const char16_t* SIMPLIFIED =
    u"道可道，非常道。名可名，非常名。无名天地之始；有名万物之母。故常无欲，以观其妙；常有欲，以观"
    u"其徼。"
    u"此两者，同出而异名，同谓之玄。玄之又玄，众妙之门。";
constexpr const char16_t* TRADITIONAL =
    u"道可道，非常道。名可名，非常名。無名天地之始；有名萬物之母。故常無欲，以觀其妙；常有欲，以觀"
    u"其徼。"
    u"此兩者，同出而異名，同謂之玄。玄之又玄，眾妙之門。";

/// Paragraphs of random lengths, so that no predictor learns where the text runs end.
UnicodeString makeDocument(const char16_t* sample) {
    const UnicodeString text(sample);
    std::minstd_rand random(1);
    UnicodeString document;
    while (document.length() < DOCUMENT_UNITS) {
        const auto begin = static_cast<std::int32_t>(random() % 40);
        const auto length = static_cast<std::int32_t>(random() % 80);
        document.append(u"<p id=\"n").append(static_cast<char16_t>(u'0' + length % 10));
        document.append(u"\">", 2).append(text, begin, length);
        document.append(static_cast<char16_t>(u'0' + begin % 10));
        document.append(text, 0, length / 2).append(u"</p>\n", 5);
    }
    return document;
}

std::string encode(const UnicodeString& text, UConverter& converter) {
    std::string bytes(static_cast<std::size_t>(text.length()) * 4, '\0');
    UErrorCode status = U_ZERO_ERROR;
    bytes.resize(static_cast<std::size_t>(
        ucnv_fromUChars(&converter, bytes.data(), static_cast<std::int32_t>(bytes.size()),
                        text.getBuffer(), text.length(), &status)));
    return bytes;
}

/// Calls `decodeBlock(from, fromEnd, to, toEnd)` for the blocks of the document.
template <class DecodeBlock>
void decodeBlocks(benchmark::State& state, const char* encoding, const char16_t* sample,
                  DecodeBlock decodeBlock) {
    const auto converter = streams::openConverter(encoding);
    const std::string bytes = encode(makeDocument(sample), *converter);
    std::vector<char16_t> units(BLOCK);
    for (auto _ : state) {
        for (std::size_t i = 0; i < bytes.size(); i += BLOCK) {
            const char* from = bytes.data() + i;
            char16_t* to = units.data();
            decodeBlock(from, from + std::min(BLOCK, bytes.size() - i), to, to + units.size());
            benchmark::DoNotOptimize(to);
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes.size()) * state.iterations());
}

void decodeOurs(benchmark::State& state, const char* encoding, const char16_t* sample) {
    const auto decoder = streams::openDecoder(encoding);
    decodeBlocks(state, encoding, sample,
                 [&](const char* from, const char* fromEnd, char16_t* to, char16_t* toEnd) {
                     decoder->decode(from, fromEnd, to, toEnd, false);
                 });
}

void decodeIcu(benchmark::State& state, const char* encoding, const char16_t* sample) {
    const auto converter = streams::openConverter(encoding);
    decodeBlocks(state, encoding, sample,
                 [&](const char* from, const char* fromEnd, char16_t* to, char16_t* toEnd) {
                     UErrorCode status = U_ZERO_ERROR;
                     ucnv_toUnicode(converter.getAlias(), &to, toEnd, &from, fromEnd, nullptr,
                                    false, &status);
                 });
}

void makeTable(benchmark::State& state, const char* encoding) {
    const auto converter = streams::openConverter(encoding);
    for (auto _ : state) {
        const auto table = streams::makeDoubleByteTable(*converter);
        benchmark::DoNotOptimize(table.get());
    }
}

#define BENCHMARK_ENCODING(name, encoding, sample)         \
    BENCHMARK_CAPTURE(decodeOurs, name, encoding, sample); \
    BENCHMARK_CAPTURE(decodeIcu, name, encoding, sample);  \
    BENCHMARK_CAPTURE(makeTable, name, encoding)->Unit(benchmark::kMicrosecond)

BENCHMARK_ENCODING(ShiftJis, "Shift_JIS", JAPANESE);
BENCHMARK_ENCODING(EucJp, "EUC-JP", JAPANESE);
BENCHMARK_ENCODING(EucKr, "EUC-KR", KOREAN);
BENCHMARK_ENCODING(Cp949, "windows-949", KOREAN);
BENCHMARK_ENCODING(Gbk, "GBK", SIMPLIFIED);
BENCHMARK_ENCODING(Gb18030, "GB18030", SIMPLIFIED);
BENCHMARK_ENCODING(Gb18030FourBytes, "GB18030", KOREAN);
BENCHMARK_ENCODING(Big5, "Big5", TRADITIONAL);
BENCHMARK_ENCODING(Cp950, "cp950", TRADITIONAL);

}  // namespace
}  // namespace RynCommon

BENCHMARK_MAIN();
