// Loading: sources, targets, URIs, errors, overrides of the node classes.
#include <sstream>

#include "tests/xml/parser/ParserFixture.h"
#include "tests/xml/tree/TreeFixture.h"

namespace {

using namespace treetest;
using RynCommon::RyXmlParser;

TEST(RyDocumentLoading, TextsGiveTheTreesExpected) {
    const std::pair<const char*, const char*> rows[] = {
        {"\uFEFF<a/>", "a"},
        {"<?xml version='1.0' encoding='Shift_JIS'?><a>\u65E5</a>", "a(\"\u65E5\")"},
        {"<!--c--><?p q?><a b='1' c='2'><!--c-->x<!--d-->y<![CDATA[<]]>&amp;</a><!--e-->",
         "a[b=1,c=2](\"xy<&\")"},
        {"<p:a xmlns:p='u' p:b=''><p:c/></p:a>", "p:a[xmlns:p=u,p:b=](p:c)"},
        {"<a>\n <b/>\n</a>\n", "a(\"\n \",b,\"\n\")"},
    };
    for (const auto& [xml, expected] : rows) {
        for (const bool pull : {false, true}) {
            const RyPtr<RyDocument> document = new RyDocument;
            document->setPullMode(pull);
            document->loadXml(units(xml));
            EXPECT_EQ(document->getLastLoadingNode(), pull ? document.get() : nullptr);
            while (document->loadNextNode() != nullptr) EXPECT_TRUE(pull);
            EXPECT_EQ(dump(document), expected) << xml;
            EXPECT_EQ(brokenLinks(*document), "");
            EXPECT_EQ(document->getLastLoadingNode(), nullptr);
            for (RyNode* node = document; node != nullptr; node = node->getFirstChild())
                EXPECT_EQ(node->isLoaded(), node->getNodeType() != RyNode::TEXT_NODE) << xml;
            EXPECT_EQ(document->getRefCount(), 1);
            EXPECT_EQ(document->getDocumentElement()->getRefCount(), 1);
        }
    }
}

TEST(RyDocumentLoading, ElementsKnowWhereTheyStood) {
    const RyPtr<RyDocument> document = documentOf("<a>\n  <b\n c='1'>x</b></a>");
    const RyNode* const b = document->getDocumentElement()->getFirstChild()->getNextSibling();
    EXPECT_EQ(document->getDocumentElement()->getSourceLineNumber(), 1);
    EXPECT_EQ(document->getDocumentElement()->getSourceColumnNumber(), 3);
    EXPECT_EQ(b->getSourceLineNumber(), 3);
    EXPECT_EQ(b->getSourceColumnNumber(), 7);
    EXPECT_EQ(b->getFirstChild()->getSourceLineNumber(), -1);
    EXPECT_EQ(document->createElement(name("n"))->getSourceColumnNumber(), -1);
}

TEST(RyDocumentLoading, TargetsAndUris) {
    xmltest::Resources resources;
    resources.files["http://x/d/a.xml"] =
        "<!DOCTYPE a [<!ENTITY e SYSTEM 'e.ent'>]><a>&e;<old/></a>";
    resources.files["http://x/d/e.ent"] = "near";
    resources.files["http://x/base/e.ent"] = "far";
    const RyPtr<RyDocument> document = new RyDocument;
    document->load(units("http://x/d/a.xml"));
    EXPECT_EQ(dump(document), "a(\"near\",old)");
    EXPECT_EQ(utf8(document->getDocumentUri()), "http://x/d/a.xml");
    EXPECT_EQ(utf8(document->getBaseUri()), "http://x/d/a.xml");
    EXPECT_FALSE(document->isBaseUriSpecified());

    RyElement* const root = document->getDocumentElement();
    std::istringstream part("<!DOCTYPE b [<!ENTITY e SYSTEM 'e.ent'>]><b>&e;</b>");
    document->load(part, root);
    EXPECT_EQ(dump(document), "a(b(\"near\"))")
        << "old children go, the document's URI is the base";
    EXPECT_EQ(utf8(document->getDocumentUri()), "http://x/d/a.xml");
    EXPECT_TRUE(root->isLoaded());

    document->setBaseUri(units("http://x/base/"));
    document->load(units("http://x/d/a.xml"), root->getFirstChild());
    EXPECT_EQ(dump(document), "a(b(a(\"far\",old)))");
    EXPECT_TRUE(document->isBaseUriSpecified());
    document->setBaseUri(UnicodeString());
    EXPECT_FALSE(document->isBaseUriSpecified());

    std::istringstream whole("<c/>");
    document->load(whole, document);
    EXPECT_EQ(dump(document), "c");
    EXPECT_EQ(utf8(document->getDocumentUri()), "");
}

TEST(RyDocumentLoading, ErrorsEndLoadingAndKeepTheTree) {
    const struct {
        const char* xml;
        int code;
        const char* kept;
    } rows[] = {
        {"<a><b>x</c></a>", 6150, "a(b(\"x\"))"},
        {"<a><b/>", 6145, "a(b)"},
        {"<a><b c='&z;'/></a>", 7710 & ~0x0700, "a"},
        {"", 4100, ""},
    };
    for (const auto& row : rows) {
        for (const bool pull : {false, true}) {
            SCOPED_TRACE(row.xml);
            const RyPtr<RyDocument> document = new RyDocument;
            document->setPullMode(pull);
            const std::string error = errorOf([&] {
                document->loadXml(units(row.xml));
                document->getDescendantNodes();
            });
            EXPECT_EQ(error.substr(0, 4), std::to_string(row.code));
            EXPECT_EQ(dump(document), row.kept);
            EXPECT_EQ(document->getLastLoadingNode(), nullptr);
            EXPECT_EQ(document->loadNextNode(), nullptr);
            for (const RyNode* node = document; node != nullptr; node = node->getLastChild())
                EXPECT_FALSE(node->isLoading());
            EXPECT_FALSE(document->isLoaded());
            document->loadXml(u"<again/>");
            document->getDescendantNodes();
            EXPECT_EQ(dump(document), "again");
        }
    }
    const RyPtr<RyDocument> document = documentOf("<a/>");
    EXPECT_EQ(errorOf([&] { document->load(units("http://nowhere/")); }).substr(0, 4), "4099");
    EXPECT_EQ(document->getLastLoadingNode(), nullptr);
    EXPECT_EQ(dump(document), "");
}

void countError(const RyError&, void* count) {
    ++*static_cast<int*>(count);
}

TEST(RyDocumentLoading, CallbacksLetLoadingGoOn) {
    const RyPtr<RyDocument> document = new RyDocument;
    int errors = 0;
    document->getParser()->setCallbackError(countError, &errors);
    document->loadXml(u"<a><b>x</c><d/>");
    EXPECT_EQ(dump(document), "a(b(\"x\"),d)");
    EXPECT_EQ(errors, 2);
    EXPECT_TRUE(document->isLoaded());
    EXPECT_TRUE(document->getDocumentElement()->isLoaded());
}

/// A document whose class is not the library's own.
class OtherDocument : public RyDocument {};

struct Reported {
    RyDocument* document;
    std::string errors;
};

void reportError(const RyError& error, void* reported) {
    auto& [document, errors] = *static_cast<Reported*>(reported);
    const RyXmlParser& parser = *document->getParser();
    errors += utf8(error.getMessage()) + " at " + utf8(parser.getPositionDescription()) + " in " +
              std::to_string(parser.getEventType()) + "/" + std::to_string(parser.getDepth()) +
              "\n";
}

/// The tree, where its elements stood, and the errors on the way.
std::string readingOf(RyDocument& document, const std::string& xml) {
    Reported reported{&document, ""};
    document.getParser()->setCallbackError(reportError, &reported);
    document.loadXml(units(xml));
    std::string result = dump(&document);
    for (RyNodeIterator it = document.getIterator(); const RyNode* node = it.nextNode();) {
        result += " " + std::to_string(node->getSourceLineNumber()) + ":" +
                  std::to_string(node->getSourceColumnNumber());
        EXPECT_EQ(node->getRefCount(), 1);
        EXPECT_FALSE(node->isLoading());
    }
    EXPECT_EQ(brokenLinks(document), "");
    return result + "\n" + reported.errors;
}

// What is read without an event for each part gives what events give.
TEST(RyDocumentLoading, EveryWayOfReadingGivesTheSame) {
    const std::string pieces[] = {
        "",
        "text",
        "<k/>",
        "<k></k>",
        "<k >\n</k >",
        "<k a='1' b=\"2\"/>",
        "<k  a = '1'\tb='2' />",
        "<k b='' p:b='x'/>",
        "<p:k p:b='1'/>",
        "<k xml:space='preserve'/>",
        "<k xmlns='v'><k/></k>",
        "<k xmlns:p='w' p:b=''/>",
        "<k a='1' a='2'/>",
        "<k b='1' c='' b='2'><k/></k>",
        "<k p:a='1' q:a='2'/>",
        "<q:k>x</q:k>",
        "<k a='&amp;\n'/>",
        "<k a='x<y'/>",
        "<k a=x/>",
        "<k a='1'b='2'/>",
        "<k/ >",
        "<k a/>",
        "</k>",
        "<k></p:k>",
        "<k><new/></k>",
        "&amp;x",
        "x&none;y",
        "x<!--c-->y",
        "<?p q?>",
        "<![CDATA[<k/>]]>",
        "]]>",
        "x]y",
        "\U00020000 \u65E5\n\u2028<k/>",
        "\u00E9t\u00E9 seven+",
        "<",
        "<1/>",
        "<k" + repeat(" a='1' b='2'", 20) + "/>",
        repeat("<k>", 300) + repeat("</k>", 300),
        repeat("long ", 5000),
        "<k a='" + repeat("long ", 5000) + "'/>",
        "<k a='1' b='2' c='3' d='4' e='5' f='6' g='7' h='8' i='9' j='10' k='11' l='12' m='13' "
        "n='14' o='15' p='16' q='17' r='18'>x</k>"};
    for (const std::string& piece : pieces) {
        SCOPED_TRACE(piece.substr(0, 60));
        const std::string plain = "<k a='1' b='two and more'>t</k>\n<e/>";
        const std::string xml = "<r xmlns:p='u' xmlns='d'>" + plain + piece + plain + piece +
                                "<e>" + piece + "</e>" + plain + "</r>";
        const RyPtr<RyDocument> events = new OtherDocument;
        const std::string expected = readingOf(*events, xml);
        const RyPtr<RyDocument> eager = new RyDocument;
        EXPECT_EQ(readingOf(*eager, xml), expected);
        EXPECT_EQ(readingOf(*eager, xml), expected) << "with names that are known";
    }
}

TEST(RyDocumentLoading, PresentInputGoesOnWhereTheParserStands) {
    std::istringstream in("<a><b>x</b><c/></a>");
    const RyPtr<RyDocument> document = new RyDocument;
    RyXmlParser* const parser = document->getParser();
    parser->setInput(in, UnicodeString(), UnicodeString());
    parser->next();
    ASSERT_EQ(parser->next(), RyXmlParser::START_TAG);
    document->load();
    EXPECT_EQ(dump(document), "b(\"x\"),c");
}

/// Elements that put some children elsewhere, or nowhere, and come back to the loader from within.
class PickyElement : public RyElement {
public:
    PickyElement(RyDocument* document, RyName local)
        : RyElement(document, RyName(), RyName(), local) {}

    RyNode* appendChildEx(RyNode* child) override {
        const std::string local = utf8(child->getLocalName().toString());
        if (local == "drop") return nullptr;
        if (local != "wrap") return appendChild(child);
        const RyPtr<RyElement> around = getOwnerDocument()->createElement(name("around"));
        around->setFlag(FLAG_COMPLEMENTAL, true);
        appendChild(around);
        return around->appendChild(child);
    }
    RyNode* appendChildText(const UnicodeString& text) override {
        return text[0] != u' ' ? RyElement::appendChildText(text) : nullptr;
    }
    void finishAttributes() override {
        RyDocument& document = *getOwnerDocument();
        if (hasAttribute(name("nested"))) {
            EXPECT_EQ(document.loadNextNode(), nullptr);
            EXPECT_FALSE(document.hasChildNodes() && document.getLastChild()->getNextSibling());
            EXPECT_EQ(errorOf([&] { document.loadXml(u"<x/>"); }),
                      "2059 RynCommon::RyDocument::loadNextNode: SYSTEM ERROR: Cannot set a value "
                      "on node type.");
        }
        if (hasAttribute(name("stop"))) document.abort();
        if (hasAttribute(name("throw"))) throw std::runtime_error("picky");
    }
};

class PickyDocument : public RyDocument {
public:
    using RyDocument::createElementNS;
    RyPtr<RyElement> createElementNS(RyName, RyName, RyName local) override {
        if (local == name("none")) return nullptr;
        return new PickyElement(this, local);
    }
};

TEST(RyDocumentLoading, OverridesDecideWhereNodesGo) {
    const std::pair<const char*, const char*> rows[] = {
        {"<r><drop><a/>x<drop/></drop><b/></r>", "r(b)"},
        {"<r><none><a/></none>x</r>", "r(\"x\")"},
        {"<r><wrap><a/>x</wrap><b/></r>", "r(around(wrap(a,\"x\")),b)"},
        {"<r><a>x</a> y <b/></r>", "r(a(\"x\"),b)"},
        {"<r><a nested=''/>x</r>", "r(a[nested=],\"x\")"},
        {"<r><a/><b stop=''>x</b><c/></r>", "r(a,b[stop=])"},
    };
    for (const auto& [xml, expected] : rows) {
        for (const bool pull : {false, true}) {
            const RyPtr<RyDocument> document = new PickyDocument;
            document->setPullMode(pull);
            document->loadXml(units(xml));
            const int count = document->getDescendantNodes()->getLength();
            EXPECT_EQ(dump(document), expected) << xml << " pull " << pull;
            EXPECT_EQ(count, document->getDescendantNodes()->getLength()) << xml;
            EXPECT_EQ(document->getLastLoadingNode(), nullptr);
        }
    }
    const RyPtr<RyDocument> document = new PickyDocument;
    EXPECT_THROW(document->loadXml(u"<r>x<b throw=''/></r>"), std::runtime_error);
    EXPECT_EQ(dump(document), "r(\"x\")");
    EXPECT_FALSE(document->getDocumentElement()->isLoading());
}

TEST(RyDocumentLoading, DocumentsThatDieWhileLoadingLeaveNothingBehind) {
    RyPtr<RyElement> held;
    {
        const RyPtr<RyDocument> document = new RyDocument;
        document->setPullMode(true);
        document->loadXml(u"<a><b><c/></b></a>");
        held = document->getDocumentElement();
        EXPECT_EQ(dump(held->getFirstChild()), "b");
        EXPECT_EQ(document->getRefCount(), 1);
    }
    EXPECT_EQ(held->getRefCount(), 1);
    EXPECT_FALSE(held->isLoading());
    EXPECT_EQ(dump(held), "a(b)");
}

}  // namespace
