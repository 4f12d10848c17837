// Lazy loading: how far navigation reads, edits meanwhile, threads.
#include <istream>
#include <thread>

#include "tests/xml/parser/ParserFixture.h"
#include "tests/xml/tree/TreeFixture.h"

namespace {

using namespace treetest;

/// A document that loads lazily from a stream that counts the bytes demanded.
struct Lazy {
    explicit Lazy(std::string xml) : bytes(std::move(xml)), in(&bytes) {
        document->setPullMode(true);
        document->load(in);
    }
    RyElement& root() const { return *document->getDocumentElement(); }

    xmltest::DripBuf bytes;
    std::istream in;
    RyPtr<RyDocument> document = new RyDocument;
};

TEST(LazyLoading, NavigationReadsNoFurtherThanItsAnswer) {
    const std::string xml = "<a><b/><c>text</c><d><e/></d><f/></a>";
    const struct {
        const char* what;
        std::function<const RyNode*(const Lazy&)> go;
        std::string node;
        const char* read;  // what has been demanded ends in this
    } rows[] = {
        {"nothing", [](const Lazy&) { return nullptr; }, "null", ""},
        {"first child of the document", [](const Lazy& l) { return l.document->getFirstChild(); },
         "a", "<a>"},
        {"document element", [](const Lazy& l) { return &l.root(); }, "a", "<a>"},
        {"first child", [](const Lazy& l) { return l.root().getFirstChild(); }, "b", "<b/>"},
        {"no children of an empty element",
         [](const Lazy& l) { return l.root().getFirstChild()->getFirstChild(); }, "null", "<b/>"},
        {"next sibling", [](const Lazy& l) { return l.root().getFirstChild()->getNextSibling(); },
         "c", "<c>"},
        {"fast forms read nothing",
         [](const Lazy& l) {
             EXPECT_FALSE(l.root().hasChildNodesFast());
             EXPECT_EQ(l.root().getFirstChildFast(), nullptr);
             EXPECT_EQ(l.root().getFirstChild()->getNextSiblingFast(), nullptr);
             return l.root().getLastChildFast();
         },
         "b", "<b/>"},
        {"last child of an inner element",
         [](const Lazy& l) { return l.root().getChildNodeByName(name("d"))->getLastChild(); }, "e",
         "</d>"},
        {"no sibling behind the last",
         [](const Lazy& l) {
             return l.root().getChildNodeByName(name("d"))->getFirstChild()->getNextSibling();
         },
         "null", "</d>"},
        {"all", [](const Lazy& l) { return l.root().getLastChild(); }, "f", "</a>"},
    };
    for (const auto& row : rows) {
        const Lazy lazy(xml);
        EXPECT_EQ(dump(row.go(lazy)), row.node) << row.what;
        const std::string read(row.read);
        EXPECT_EQ(lazy.bytes.demanded(), xml.find(read) + read.size()) << row.what;
        EXPECT_EQ(brokenLinks(*lazy.document), "");
        EXPECT_EQ(lazy.document->getDocumentElement()->getInnerText(), u"text");
    }
}

TEST(LazyLoading, EveryWayToWalkGivesTheWholeTree) {
    const std::string xml = "<a>x<b><c/>y<d i='1'><e/></d></b><f/>z</a>";
    const std::string whole = dump(documentOf(xml));
    const std::function<void(RyDocument&)> walks[] = {
        [](RyDocument& d) {
            while (d.loadNextNode() != nullptr) continue;
        },
        [](RyDocument& d) { d.getDescendantNodes(); },
        [](RyDocument& d) { d.getElementsByTagName(name("none")); },
        [](RyDocument& d) { d.cloneNode(true); },
        [](RyDocument& d) { d.saveXml(); },
        [](RyDocument& d) {
            for (RyNodeIterator it = d.getIterator(); it.nextNode();) continue;
        },
        [](RyDocument& d) {
            for (RyTreeIterator it(&d); it.nextNode();) continue;
        },
        [](RyDocument& d) { d.getIterator().setToEnd(); },
    };
    int number = 0;
    for (const auto& walk : walks) {
        const Lazy lazy(xml);
        walk(*lazy.document);
        EXPECT_EQ(dump(lazy.document), whole) << "walk " << number++;
        EXPECT_TRUE(lazy.root().isLoaded());
    }
}

TEST(LazyLoading, LoadNextNodeGivesTheNodesInDocumentOrder) {
    const Lazy lazy("<a><b>x</b><c/></a>");
    std::string nodes;
    std::string places;
    for (const RyNode* place = lazy.document->getLastLoadingNode(); place != nullptr;
         place = lazy.document->getLastLoadingNode()) {
        places += utf8(place->getNodeName().toString()) + " ";
        const RyNode* const node = lazy.document->loadNextNode();
        nodes += dump(node) + " ";
    }
    EXPECT_EQ(nodes, "a b \"x\" c null ");
    EXPECT_EQ(places, "#document a b b c ");
}

TEST(LazyLoading, NodesBeingLoadedMayBeMovedAndRemoved) {
    const std::string xml = "<r><a><b>x</b>y</a><c><d/></c></r>";
    {
        const Lazy lazy(xml);
        lazy.root().getFirstChild()->getFirstChild();
        RyPtr<RyNode> a = lazy.root().removeChild(lazy.root().getFirstChild());
        EXPECT_EQ(a->getLastChild()->getPreviousSibling(), a->getFirstChild());
        EXPECT_EQ(dump(a), "a(b(\"x\"),\"y\")");
        EXPECT_EQ(lazy.document->getInnerText(), u"");
        EXPECT_EQ(dump(lazy.document), "r(c(d))");
        EXPECT_EQ(a->getRefCount(), 1);
    }
    {
        const Lazy lazy(xml);
        lazy.root().getFirstChild()->getFirstChild();
        lazy.root().deleteAllChildNodes();
        EXPECT_EQ(dump(lazy.document), "r") << "what dies goes on loading unseen";
        EXPECT_EQ(lazy.root().getChildNodeCount(), 1);
        EXPECT_EQ(dump(lazy.document), "r(c(d))");
    }
}

TEST(LazyLoading, AbortKeepsTheTreeAndAnotherLoadStopsTheFirst) {
    const Lazy lazy("<a><b>x</b><c/></a>");
    lazy.root().getFirstChild();
    lazy.document->abort();
    EXPECT_EQ(lazy.document->getLastLoadingNode(), nullptr);
    EXPECT_EQ(lazy.document->loadNextNode(), nullptr);
    EXPECT_EQ(lazy.root().getLastChild(), lazy.root().getFirstChild());
    EXPECT_EQ(dump(lazy.document), "a(b)");
    EXPECT_FALSE(lazy.root().isLoading() || lazy.root().isLoaded());
    EXPECT_LT(lazy.bytes.demanded(), 10u);

    lazy.document->loadXml(u"<d><e/></d>");
    const RyPtr<RyElement> d = &lazy.root();
    lazy.document->loadXml(u"<f><g/></f>");
    EXPECT_FALSE(d->hasChildNodes());
    EXPECT_FALSE(d->isLoading());
    EXPECT_EQ(dump(lazy.root().getFirstChild()), "g");
    EXPECT_EQ(dump(lazy.document), "f(g)");
}

TEST(LazyLoading, ErrorsComeFromTheCallThatNeedsTheBytes) {
    const Lazy lazy("<a><b/><c></d></a>");
    const RyNode* const b = lazy.root().getFirstChild();
    const RyNode* const c = b->getNextSibling();
    EXPECT_EQ(dump(c), "c");
    EXPECT_EQ(errorOf([&] { c->hasChildNodes(); }).substr(0, 4), "6150");
    EXPECT_FALSE(c->hasChildNodes());
    EXPECT_EQ(c->getNextSibling(), nullptr);
    EXPECT_EQ(dump(lazy.document), "a(b,c)");
}

TEST(LazyLoading, ParserSetMeanwhileServesTheNextLoad) {
    const Lazy lazy("<a><b/></a>");
    lazy.root();
    lazy.document->setParser(nullptr);
    EXPECT_EQ(dump(lazy.root().getFirstChild()), "b");
    lazy.document->loadXml(u"<c/>");
    EXPECT_EQ(dump(&lazy.root()), "c");
}

TEST(LazyLoading, ThreadsTakeNodesInTurn) {
    const std::string xml = "<r>" + repeat("<a i='1'><b>text</b><c/></a>", 2'000) + "</r>";
    const RyPtr<RyDocument> document = new RyDocument;
    document->setPullMode(true);
    document->loadXml(units(xml));
    int counts[2] = {0, 0};
    const auto work = [&](int which) {
        while (document->loadNextNode() != nullptr) ++counts[which];
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    EXPECT_EQ(counts[0] + counts[1], 1 + 4 * 2'000);
    EXPECT_EQ(dump(document), dump(documentOf(xml)));
    EXPECT_EQ(brokenLinks(*document), "");
}

}  // namespace
