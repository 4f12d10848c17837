// Qualified names, factories, and looking at a document's root.
#include <gtest/gtest.h>

#include <RynCommon/RyXmlUtil.h>

#include <sstream>

namespace RynCommon {
namespace {

TEST(XmlUtilTest, QualifiedNames) {
    struct Row {
        const char16_t *qname, *prefix, *local;
    };
    const Row rows[] = {
        {u"a", u"", u"a"},        {u"p:a", u"p", u"a"}, {u":a", u"", u":a"}, {u"", u"", u""},
        {u"p:a:b", u"p", u"a:b"}, {u"p:", u"p", u""},   {u":", u"", u":"},
    };
    for (const Row& row : rows) {
        const UnicodeString qname(row.qname), prefix(row.prefix), local(row.local);
        EXPECT_EQ(RyXmlUtil::getPrefixFromQNameStr(qname), prefix);
        EXPECT_EQ(RyXmlUtil::getLocalPartFromQNameStr(qname), local);
        EXPECT_EQ(RyXmlUtil::getPrefixFromQName(qname), RyName(prefix));
        EXPECT_EQ(RyXmlUtil::getLocalPartFromQName(qname), RyName(local));
        EXPECT_EQ(RyXmlUtil::makeQNameStr(prefix, local), qname);
        EXPECT_EQ(RyXmlUtil::makeQName(prefix, local), RyName(qname));
    }
}

TEST(XmlUtilTest, NamespacedKeys) {
    struct Row {
        const char16_t *ns, *local, *expected;
    };
    const Row rows[] = {
        {u"", u"a", u"a"},
        {u"http://www.w3.org/XML/1998/namespace", u"lang", u"xml:lang"},
        {u"http://www.w3.org/2000/xmlns/", u"xmlns", u"xmlns"},
        {u"http://www.w3.org/2000/xmlns/", u"p", u"xmlns:p"},
        {u"urn:x", u"a", u"{urn:x}:a"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(RyXmlUtil::makeNSQNameStr(row.ns, row.local), UnicodeString(row.expected));
}

TEST(XmlUtilTest, RootOfADocument) {
    struct Row {
        const char* what;
        std::string document;
        const char16_t *ns, *local, *stylesheet;
    };
    const std::string fo = "xmlns:fo='http://www.w3.org/1999/XSL/Format'";
    const std::string xsl = "xmlns:xsl='http://www.w3.org/1999/XSL/Transform'";
    const char16_t* const foNs = u"http://www.w3.org/1999/XSL/Format";
    const char16_t* const xslNs = u"http://www.w3.org/1999/XSL/Transform";
    const Row rows[] = {
        {"only the start is read", "<?pi x?><!-- c -->\n<p:a xmlns:p='urn:x'><", u"urn:x", u"a",
         u"urn:x"},
        {"no element", "<!-- only a comment -->", u"", u"", u""},
        {"formatting objects", "<fo:root " + fo + " " + xsl + "/>", foNs, u"root", foNs},
        {"simplified stylesheet", "<fo:root xsl:version='1.0' " + fo + " " + xsl + "/>", foNs,
         u"root", xslNs},
        {"version without namespace", "<fo:root version='1.0' " + fo + " " + xsl + "/>", foNs,
         u"root", foNs},
        {"other formatting object", "<fo:block xsl:version='1.0' " + fo + " " + xsl + "/>", foNs,
         u"block", foNs},
        {"missing external subset", "<!DOCTYPE a SYSTEM 'no-such.dtd'><a/>", u"", u"a", u""},
        {"undeclared attribute prefix", "<a p:b=''/>", u"", u"a", u""},
        {"unknown encoding", "<?xml version='1.0' encoding='no-such'?><a/>", u"", u"a", u""},
    };
    for (const Row& row : rows) {
        std::istringstream in(row.document), again(row.document);
        RyName local = RN_block;
        EXPECT_EQ(RyXmlUtil::getRootName(local, in, UnicodeString(), UnicodeString()).toString(),
                  UnicodeString(row.ns))
            << row.what;
        EXPECT_EQ(local.toString(), UnicodeString(row.local)) << row.what;
        local = RN_block;
        EXPECT_EQ(
            RyXmlUtil::getXSLStylesheetNamespace(local, again, UnicodeString(), UnicodeString())
                .toString(),
            UnicodeString(row.stylesheet))
            << row.what;
        EXPECT_EQ(local.toString(), UnicodeString(row.local)) << row.what;
    }
}

TEST(XmlUtilTest, RootParserStandsAtTheStartTag) {
    std::istringstream in("<!--c--><a b='1'>x</a>"), none("<!--c-->"), broken("<a b></a>");
    const RyPtr<RyXmlParser> parser = RyXmlUtil::getRootParser(in, u"Text/XML", u"UTF-8");
    ASSERT_NE(parser.get(), nullptr);
    EXPECT_EQ(parser->getEventType(), RyXmlParser::START_TAG);
    EXPECT_EQ(parser->getAttributeValue(0), u"1");
    EXPECT_EQ(parser->next(), RyXmlParser::TEXT);
    EXPECT_EQ(RyXmlUtil::getRootParser(none, UnicodeString(), UnicodeString()).get(), nullptr);
    EXPECT_THROW(RyXmlUtil::getRootParser(broken, UnicodeString(), UnicodeString()), RyError);
    EXPECT_THROW(RyXmlUtil::getRootParser(u"/no/such/file.xml"), RyError);
}

}  // namespace
}  // namespace RynCommon
