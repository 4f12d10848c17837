// How far the parser reads: no further than its events need, in blocks where bytes lie ready.
#include "ParserFixture.h"

using namespace xmltest;

namespace {

TEST(ParserLazy, NothingPastAMarkIsDemanded) {
    const struct {
        std::u32string before, after;
        int tokens;  // to be read before `after` may be demanded
    } rows[] = {
        {U"<a>", U"text</a>", 1},
        {U"<a\n>", U"\n</a>", 1},
        {U"<a/>", U" ", 2},
        {U"<?xml version='1.0'?><a>", U"t</a>", 1},
        {U"<!--c-->", U"<a/>", 1},
        {U"<?p i?>", U"<a/>", 1},
        {U"<!DOCTYPE a [<!ENTITY e 'v'> ]>", U"<a/>", 1},
        {U"<a>&amp;", U"x</a>", 2},
        {U"<a><![CDATA[x]]>", U"y</a>", 2},
        {U"<a><b></b>", U"y</a>", 3},
    };
    for (const auto& row : rows) {
        for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
            const std::string needed = encode(encoding, row.before);
            Opened<DripBuf> parser(needed + encode(encoding, row.after));
            for (int i = 0; i < row.tokens; ++i) parser->nextToken();
            EXPECT_EQ(parser.buffer.demanded(), needed.size())
                << encode("UTF-8", row.before) << " in " << encoding;
            while (parser->nextToken() != RyXmlParser::END_DOCUMENT) continue;
        }
    }
}

TEST(ParserLazy, ConvertersWaitForNoMoreThanTheirCharacter) {
    for (const char* name : {"cp932", "EUC-JP", "GBK", "Big5", "windows-1252", "KOI8-R"}) {
        const std::string before = "<?xml version='1.0' encoding='"s + name + "'?>\n<a>";
        Opened<DripBuf> parser(before + "text</a>");
        parser->next();
        EXPECT_EQ(parser.buffer.demanded(), before.size()) << name;
        while (parser->next() != RyXmlParser::END_DOCUMENT) continue;
    }
}

TEST(ParserLazy, AChunkIsUsedUpBeforeTheNextIsWaitedFor) {
    std::string document = "<a>";
    for (int i = 0; i < 50; ++i) document += "<b n='" + std::to_string(i) + "'/>";
    document += "</a>";
    for (const std::size_t chunk : {2, 5, 16, 100}) {
        Opened<ChunkBuf> parser(document, chunk);
        std::size_t position = 0;
        while (parser->nextToken() != RyXmlParser::END_DOCUMENT) {
            if (parser->getEventType() != RyXmlParser::START_TAG) continue;
            position = document.find('>', position) + 1;
            EXPECT_EQ(parser.buffer.delivered(),
                      std::min(document.size(), (position + chunk - 1) / chunk * chunk))
                << "chunk " << chunk;
        }
    }
}

TEST(ParserLazy, ReadyBytesAreTakenInBlocks) {
    const std::string document = "<a>" + repeat("<b x='1'>text</b>", 20000) + "</a>";
    for (const std::size_t ready : {512, 4096, 1 << 20}) {
        Opened<DripBuf> parser(document, ready);
        std::size_t elements = 0;
        while (parser->next() != RyXmlParser::END_DOCUMENT)
            elements += parser->getEventType() == RyXmlParser::START_TAG;
        EXPECT_EQ(elements, 20001u);
        EXPECT_FALSE(parser.buffer.askedForMoreThanReady()) << ready;
        EXPECT_LT(parser.buffer.calls(), 64 + 4 * document.size() / 512) << ready;
    }
}

TEST(ParserLazy, TheStreamStaysTheCallersAndIsNotReadPastTheEnd) {
    ChunkBuf buffer("<a/>", 100);
    std::istream in(&buffer);
    {
        const RyPtr<RyXmlParser> parser = RyXmlUtil::createXmlParser();
        parser->setInput(in, UnicodeString(), UnicodeString());
        while (parser->next() != RyXmlParser::END_DOCUMENT) continue;
        parser->closeStream();
    }
    EXPECT_EQ(in.rdbuf(), &buffer);
}

}  // namespace
