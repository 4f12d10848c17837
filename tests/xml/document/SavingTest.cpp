// Saving: round trips, options, compound attributes, piecewise output, errors; and very deep trees.
#include <RynCommon/RyNameTable.h>
#include <RynCommon/RyNamedValue.h>

#include <cstdlib>
#include <new>
#include <sstream>
#include <streambuf>
#include <thread>

#include "tests/xml/tree/TreeFixture.h"

namespace {

using namespace treetest;

TEST(RyDocumentSaving, TreesComeBack) {
    const struct {
        const char* xml;
        const char* saved;  // null: the same
    } rows[] = {
        {"<a b=\"1\" c=\"&lt;&amp;&quot;\">x&lt;y<d/> </a>", nullptr},
        {"<a></a>", "<a/>"},
        {"<p:a xmlns:p=\"u\"><p:b p:c=\"1\"/><d xmlns=\"v\"><e/></d></p:a>", nullptr},
        {"<a xmlns=\"u\"><b xmlns=\"\"/></a>", nullptr},
        {"<a>\u65E5\U0001F600</a>", nullptr},
        {"<svg><g xlink:href='#x'/></svg>",
         "<svg xmlns=\"http://www.w3.org/2000/svg\">"
         "<g xlink:href=\"#x\" xmlns:xlink=\"http://www.w3.org/1999/xlink\"/></svg>"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(savedXml(*documentOf(row.xml)), row.saved != nullptr ? row.saved : row.xml);
    }
}

/// Serializers hand encoded names on, but not beyond the table of names. In a process of its own,
/// since the others go on with their names.
TEST(RyDocumentSavingDeathTest, KnownNamesEndWithTheTable) {
    const auto saveWithoutTable = [] {
        // Now both tables give the same numbers.
        RynCommon::RyNameTable::cleanup();
        for (const char* const xml : {"<one-a two-b=\"1\"/>", "<two-b one-a=\"1\"/>"})
            EXPECT_EQ(savedXml(*documentOf(xml)), xml);
        RynCommon::RyNameTable::cleanup();
        const char* const xml = "<three-c two-b=\"1\"><one-a/></three-c>";
        EXPECT_EQ(savedXml(*documentOf(xml)), xml);
        std::exit(testing::Test::HasFailure() ? 1 : 0);
    };
    EXPECT_EXIT(saveWithoutTable(), testing::ExitedWithCode(0), "");
}

TEST(RyDocumentSaving, ThreadsSaveAtTheSameTime) {
    const auto save = [](const char16_t* encoding, const char* expected) {
        for (int i = 0; i < 300; ++i) {
            const RyPtr<RyDocument> document =
                documentOf("<p:\u65E5 xmlns:p=\"u\"><a/></p:\u65E5>");
            std::ostringstream out;
            document->save(out, document->getDocumentElement(), encoding);
            const std::string all = out.str();
            const std::size_t start = all.find("<p:");
            ASSERT_NE(start, std::string::npos);
            ASSERT_EQ(all.substr(start), expected) << i;
        }
    };
    std::thread other(save, u"Shift_JIS", "<p:\x93\xFA xmlns:p=\"u\"><a/></p:\x93\xFA>");
    save(u"UTF-8", "<p:\u65E5 xmlns:p=\"u\"><a/></p:\u65E5>");
    other.join();
}

TEST(RyDocumentSaving, OptionsAndParts) {
    const RyPtr<RyDocument> document = documentOf("<a><b>\u65E5</b>x</a>");
    document->getSerializer()->setGenerator(UnicodeString());
    RyNode* const b = document->getDocumentElement()->getFirstChild();
    const std::string head = "<?xml version=\"1.0\"";
    const std::string body = "<a><b>\u65E5</b>x</a>";
    const struct {
        const char* what;
        std::function<void(std::ostream&)> save;
        std::string expected;
    } rows[] = {
        {"no encoding", [&](std::ostream& out) { document->save(out, nullptr, u""); },
         head + "?>" + body},
        {"Shift_JIS", [&](std::ostream& out) { document->save(out, b, u"Shift_JIS"); },
         head + " encoding=\"&#139;\"?><b>\x93\xFA</b>"},
        {"a part", [&](std::ostream& out) { document->save(out, b->getNextSibling(), u""); },
         head + "?>x"},
        {"document type", [&](std::ostream& out) { document->save(out, b, u"", u"a SYSTEM 'x'"); },
         head + "?><!DOCTYPE a SYSTEM 'x'><b>\u65E5</b>"},
        {"standalone",
         [&](std::ostream& out) { document->save(u"UTF-8", u"yes", out, nullptr, u""); },
         head + " encoding=\"\u00AD\" standalone=\"yes\"?>" + body},
    };
    for (const auto& row : rows) {
        std::ostringstream out;
        row.save(out);
        EXPECT_EQ(out.str(), row.expected) << row.what;
    }
}

TEST(RyDocumentSaving, FilesAreWrittenAndReadBack) {
    const UnicodeString path = units(::testing::TempDir() + "ryn-saving-test.xml");
    const RyPtr<RyDocument> document = documentOf("<a b=\"1\">\u65E5</a>");
    document->save(path);
    const RyPtr<RyDocument> again = new RyDocument;
    again->load(path);
    EXPECT_EQ(dump(again), dump(document));
    document->save(path, document->getDocumentElement(), u"Shift_JIS");
    again->load(path);
    EXPECT_EQ(dump(again), dump(document));
    EXPECT_EQ(errorOf([&] { document->save(u"/nonexistent/dir/x.xml"); }).substr(0, 4), "4099");
    std::remove(utf8(path).c_str());
}

TEST(RyDocumentSaving, CompoundValuesAreOneAttributeAnEntry) {
    const RyPtr<RyDocument> document = documentOf("<a x='0'/>");
    RyElement& a = *document->getDocumentElement();
    RyValue space;
    space.makeCompound();
    space.setNamedItem(name("optimum"), RyValue(12.0, RynCommon::RYUNIT_PT));
    space.setNamedItem(name("precedence"), RyValue(name("force")));
    a.setAttribute(name("space-before"), space);
    a.setAttributeNS(name("u"), name("p:s"), space);
    a.setAttribute(name("y"), RyValue(5));
    const RyPtr<RyDocument> again = documentOf(savedXml(*document));
    RyElement& b = *again->getDocumentElement();
    for (const char* attribute : {"space-before.optimum", "p:s.optimum"})
        EXPECT_EQ(utf8(b.getAttribute(name(attribute)).toString()), "12pt") << attribute;
    EXPECT_EQ(utf8(b.getAttribute(name("space-before.precedence")).toString()), "force");
    EXPECT_EQ(b.getAttributeNodeNS(name("u"), name("s.precedence"))->getText(), u"force");
    EXPECT_FALSE(b.hasAttribute(name("space-before")));
    EXPECT_EQ(utf8(b.getAttribute(name("y")).toString()), "5");
}

/// Of a type that no document writes.
class OddNode : public RyNode {
public:
    explicit OddNode(RyDocument* document) : RyNode(document) {}
    RyNodeType getNodeType() const override { return ENTITY_NODE; }
};

class NoMemoryBuffer : public std::streambuf {
    int overflow(int) override { throw std::bad_alloc(); }
};

TEST(RyDocumentSaving, ErrorsDropTheSerializer) {
    const RyPtr<RyDocument> document = documentOf("<a x='1'>t</a>");
    RyElement& a = *document->getDocumentElement();
    const std::string unsupported =
        "2066 RynCommon::RyDocument::doSave: SYSTEM ERROR: Unsupported node type.";
    std::ostringstream out;
    std::ostringstream failed;
    failed.setstate(std::ios::badbit);
    NoMemoryBuffer noMemory;
    std::ostream hungry(&noMemory);
    hungry.exceptions(std::ios::badbit);
    const struct {
        const char* what;
        std::function<void()> save;
        std::string expected;
    } rows[] = {
        {"an attribute", [&] { document->save(out, a.getFirstAttribute(), u""); }, unsupported},
        {"as text", [&] { document->saveXml(a.getFirstAttribute()); }, unsupported},
        {"failed stream", [&] { document->save(failed, nullptr, u""); },
         "4103 RynCommon::XmlSerializerImpl::checkStream: Output stream error."},
        {"a stream without memory", [&] { document->save(hungry, nullptr, u""); },
         "2049 RynCommon::RyDocument::save: Out of memory."},
        {"a child without a start", [&] { document->saveChildElement(&a); },
         "4101 RynCommon::XmlSerializerImpl::checkStream: Output stream is not set."},
        {"no child", [&] { document->saveChildElement(nullptr); },
         "2051 RynCommon::RyDocument::doSave: SYSTEM ERROR: child is null."},
        {"an odd node",
         [&] {
             a.appendChild(new OddNode(document));
             document->save(out, nullptr, u"");
         },
         unsupported},
        {"no element",
         [&] {
             document->removeAllChildNodes();
             document->saveDocumentElement(out);
         },
         "2051 RynCommon::RyDocument::doSave: SYSTEM ERROR: documentElement is null."},
    };
    for (const auto& row : rows) {
        const RyPtr<RynCommon::RyXmlSerializer> before = document->getSerializer();
        EXPECT_EQ(errorOf(row.save), row.expected) << row.what;
        EXPECT_NE(document->getSerializer(), before.get()) << row.what;
    }
}

TEST(RyDocumentSaving, PieceByPieceFromALazyTree) {
    const std::string xml = "<r xmlns:p=\"u\" a=\"1\">" + repeat("<p:i>x</p:i>", 50) + "</r>";
    const RyPtr<RyDocument> document = new RyDocument;
    document->getSerializer()->setGenerator(UnicodeString());
    document->setPullMode(true);
    document->loadXml(units(xml));
    std::ostringstream out;
    document->saveDocumentElement(out);
    RyElement& root = *document->getDocumentElement();
    while (RyNode* const child = root.getFirstChild()) {
        document->saveChildElement(child);
        child->getNextSibling();
        root.removeChild(child);
    }
    document->closeDocumentElement();
    const RyPtr<RyDocument> again = documentOf(out.str());
    EXPECT_EQ(savedXml(*again), savedXml(*documentOf(xml)));
}

TEST(DeepTrees, AreLoadedCopiedReadSavedAndDestroyed) {
    constexpr int DEPTH = 1'000'000;
    const std::string xml = repeat("<a>", DEPTH) + "x" + repeat("</a>", DEPTH);
    RyPtr<RyDocument> document = documentOf(xml);
    EXPECT_EQ(document->getInnerText(), u"x");
    RyPtr<RyNode> copy = document->getDocumentElement()->cloneNode(true);
    EXPECT_TRUE(savedXml(*document, copy) == xml);
    int visits = 1;
    for (RyTreeIterator it(copy); it.nextNode() != nullptr;) ++visits;
    EXPECT_EQ(visits, 2 * (DEPTH + 1));
    RyNodeIterator it = copy->getIterator();
    it.setToEnd();
    const RyNode* const text = it.previousNode();
    EXPECT_EQ(text->getNodeDepth(), DEPTH);
    EXPECT_TRUE(copy->getFirstChild()->isDescendantOf(copy));
    EXPECT_EQ(text->getCommonAncestor(copy->getFirstChild()), copy.get());
    EXPECT_EQ(utf8(text->lookupNamespaceUri(name("p")).toString()), "");
    EXPECT_EQ(copy->deleteAllChildNodes(), DEPTH);
    copy = document->removeChild(document->getDocumentElement());
    copy.reset();
    document->setPullMode(true);
    document->loadXml(units(xml));
    EXPECT_EQ(document->getElementsByTagName(name("a"))->getLength(), DEPTH);
    document.reset();
}

}  // namespace
