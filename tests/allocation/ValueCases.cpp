// Values, colours, numbers, names and the small functions on texts.
#include <RynCommon/RyColor.h>
#include <RynCommon/RyLang.h>
#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyNamedValue.h>
#include <RynCommon/RyTokenizer.h>
#include <RynCommon/RyUtil.h>
#include <RynCommon/RyValue.h>
#include <gtest/gtest.h>

#include "tests/allocation/Inputs.h"

namespace allocation {
namespace {

using namespace RynCommon;

/// A call that gives a text for each of some texts.
template <class Function>
std::function<Action()> forEach(std::vector<std::string> inputs, Function function) {
    return [=]() -> Action {
        std::vector<UnicodeString> texts;
        for (const std::string& input : inputs) texts.push_back(widen(input));
        return [texts, function] {
            std::string results;
            for (const UnicodeString& text : texts) {
                const std::string result = function(text);
                const Pause pause;
                results += result + "|";
            }
            return results;
        };
    };
}

std::string show(const RyValue& value) {
    const Pause pause;
    return std::to_string(value.getValueType()) + narrow(value.toValueText());
}

const std::string LONG = "a-name-that-is-longer-than-a-string-keeps-within-itself";

TEST(Allocation, Values) {
    const std::vector<std::string> texts = {
        "12pt",
        "1pt 2pt solid",
        "'a literal \\61 text that is longer than a short one'",
        LONG,
        "url('http://host/a/path/that/is/long/enough.png')",
        "rgb-icc(1%, 2%, 3%, #Separation, '" + LONG + "', 0.5, 0.1, 0.2, 0.3, 0.4)",
        "rgb-icc(10%, 20%, 30%, '" + LONG + "', 0.1, 0.2)",
        "#CMYK(1, 2, 3, 4)",
        repeat(LONG + " ", 20)};
    const std::vector<std::string> parameters = {"page=3&zoom=50,1,2&nameddest=" + LONG, "#" + LONG,
                                                 "pages/" + LONG + "?page=2#x", "new-window"};
    sweep({
        {"parse and print", forEach(texts,
                                    [](const UnicodeString& text) {
                                        const RyValue value = RyValue::parse(text);
                                        const UnicodeString printed = value.toString();
                                        const UnicodeString source = value.toValueText();
                                        return paused([&] {
                                            return show(value) + narrow(printed) + narrow(source);
                                        });
                                    })},
        {"colours", forEach(texts,
                            [](const UnicodeString& text) {
                                const RyValue value = RyValue::parseColor(text, true);
                                const RyColor color = value.getColorValue();
                                const UnicodeString printed = color.toString(true);
                                const RyValue back(color);
                                return paused([&] { return show(back) + narrow(printed); });
                            })},
        {"tokens", forEach(texts,
                           [](const UnicodeString& text) {
                               RyTokenizer tokenizer(text);
                               std::string tokens;
                               while (tokenizer.nextToken() != RYTOKEN_END) {
                                   const UnicodeString token = tokenizer.getText();
                                   const Pause pause;
                                   tokens += narrow(token) + ",";
                               }
                               return tokens;
                           })},
        {"parameters", forEach(parameters,
                               [](const UnicodeString& text) {
                                   const RyValue pdf = RyValue::parsePDFOpenParameters(text);
                                   const RyValue link = RyValue::parseXlinkHref(text);
                                   const RyValue sheet = RyValue::parseExcelOpenParameters(text);
                                   const RyValue place = RyValue::parseInternalDestination(text, 1);
                                   return paused([&] {
                                       return show(pdf) + show(link) + show(sheet) + show(place);
                                   });
                               })},
        {"compounds", forEach(texts,
                              [](const UnicodeString& text) {
                                  RyValue value;
                                  value.makeCompound();
                                  value.setNamedItem(RN_width, RyValue(text));
                                  value.setNamedItem(RN_height, RyValue(1, RYUNIT_PT));
                                  const RyValue copy = value;
                                  const UnicodeString printed = copy.toString();
                                  const RyValue width = copy.getNamedItem(RN_width);
                                  return paused([&] { return narrow(printed) + show(width); });
                              })},
    });
}

TEST(Allocation, Numbers) {
    const std::vector<std::string> formats = {"1",
                                              "0001",
                                              "a",
                                              "I",
                                              "\xE3\x82\xA2",
                                              "01",
                                              "\xE4\xB8\x80",
                                              "\xD7\x90",
                                              "(" + LONG + " 1)"};
    sweep({
        {"format", forEach(formats,
                           [](const UnicodeString& format) {
                               const RyLang lang(RN_en);
                               const UnicodeString plain = RyUtil::formatNumber(1234, format, lang);
                               const UnicodeString grouped = RyUtil::formatNumber(
                                   1234567, format, u",", 3, lang, RN_traditional);
                               return paused([&] { return narrow(plain) + narrow(grouped); });
                           })},
        {"kansuji", forEach({"1234567.89" + repeat("12345", 20), "12"},
                            [](const UnicodeString& number) {
                                const UnicodeString text = RyUtil::convertKansuji(number);
                                const UnicodeString large = RyUtil::convertKansuji(2147483647);
                                return paused([&] { return narrow(text) + narrow(large); });
                            })},
    });
}

TEST(Allocation, Texts) {
    const auto base64 = []() -> Action {
        return [] {
            const auto in = openBytes(repeat("bytes of some length, ", 40));
            const UnicodeString text = RyUtil::encodeBase64(*in, 100, u"\n", u"  ");
            const auto out = paused([] { return std::make_unique<FixedOut>(); });
            RyUtil::decodeBase64(text, text.length(), *out);
            return paused([&] { return narrow(text) + out->written(); });
        };
    };
    const auto names = []() -> Action {
        return [] {
            const auto table = RyPtr<RyNameTable>(new RyNameTable);
            std::string numbers;
            for (int i = 0; i < 600; ++i) {
                const UnicodeString name =
                    paused([&] { return widen(LONG + std::to_string(i % 550)); });
                const RyNameEnum number = table->getNameEnum(name);
                const Pause pause;
                numbers += std::to_string(number) + narrow(table->getNameString(number));
            }
            return numbers;
        };
    };
    const std::vector<std::string> texts = {LONG, "'" + LONG + "\\41 \"'", "a \"b\" 'c'",
                                            repeat("\xE3\x81\x82'", 50)};
    sweep({
        {"base64", base64},
        {"quoting",
         forEach(texts,
                 [](const UnicodeString& text) {
                     const UnicodeString quoted = RyUtil::quoteString(text);
                     const UnicodeString plain = RyUtil::unquoteString(quoted);
                     const UnicodeString uri = RyUtil::unquoteUri(RyUtil::quoteUri(text));
                     return paused([&] { return narrow(quoted) + narrow(plain) + narrow(uri); });
                 })},
        {"names", names},
    });
}

}  // namespace
}  // namespace allocation
