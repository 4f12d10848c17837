// The entity table against the data that it was made from.
#include "xml/names/MathMLEntities.h"

#include <gtest/gtest.h>

#include <RynCommon/RyXmlParser.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>

namespace RynCommon {
namespace {

std::map<UnicodeString, UnicodeString> readData() {
    std::ifstream in(RYN_SOURCE_DIR "/xml/names/data/mathml2-entities.tsv");
    std::map<UnicodeString, UnicodeString> entities;
    std::string name;
    for (std::string line; std::getline(in, name, '\t') && std::getline(in, line);) {
        UnicodeString text;
        std::istringstream points(line);
        for (std::uint32_t point; points >> std::hex >> point;)
            text.append(static_cast<UChar32>(point));
        entities[UnicodeString::fromUTF8(name)] = text;
    }
    return entities;
}

std::u16string_view view(const UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

TEST(MathMLEntitiesTest, HoldsExactlyTheData) {
    const auto data = readData();
    ASSERT_EQ(data.size(), 2086u);
    int longer = 0;
    for (const auto& [name, text] : data) {
        std::int32_t length = 0;
        const char16_t* const found = MathMLEntities::find(view(name), length);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(UnicodeString(found, length), text);
        EXPECT_EQ(found[length], u'\0');
        EXPECT_EQ(RyXmlParser::getMathMLEntity(name), text);
        if (length > 1) ++longer;
    }
    EXPECT_EQ(longer, 226);

    std::map<UnicodeString, UnicodeString> listed;
    for (std::int32_t i = 0; i < MathMLEntities::COUNT; ++i) {
        const MathMLEntities::Entity& entity = MathMLEntities::item(i);
        listed[UnicodeString(entity.name.data(), static_cast<std::int32_t>(entity.name.size()))] =
            UnicodeString(entity.text.data(), static_cast<std::int32_t>(entity.text.size()));
    }
    EXPECT_EQ(listed, data);
}

TEST(MathMLEntitiesTest, OtherNamesAreUnknown) {
    for (const char16_t* unknown : {u"", u"ZEETRF", u"zeetr", u"zeetrff", u"fjlig"}) {
        std::int32_t length = -7;
        EXPECT_EQ(MathMLEntities::find(unknown, length), nullptr);
        EXPECT_EQ(length, -7);
        EXPECT_TRUE(RyXmlParser::getMathMLEntity(unknown).isEmpty());
    }
}

}  // namespace
}  // namespace RynCommon
