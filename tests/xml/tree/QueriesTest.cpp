// Queries: order, ancestors, names, texts, lists, iterators, namespaces.
#include <random>

#include "tests/xml/tree/TreeFixture.h"

namespace {

using namespace treetest;

std::vector<RyNode*> nodesOf(const RyPtr<RyNodeList>& list) {
    std::vector<RyNode*> nodes;
    for (int i = 0; i < list->getLength(); ++i) nodes.push_back(list->item(i));
    return nodes;
}

std::string namesOf(const RyPtr<RyNodeList>& list) {
    std::string text;
    for (const RyNode* node : nodesOf(list))
        text += (text.empty() ? "" : " ") + utf8(node->getNodeName().toString());
    return text;
}

/// A tree of `count` elements, each under one chosen at random among those before it.
RyPtr<RyDocument> randomTree(unsigned seed, unsigned count) {
    std::mt19937 random(seed);
    RyPtr<RyDocument> document = new RyDocument;
    std::vector<RyNode*> nodes{document};
    for (unsigned i = 0; i < count; ++i)
        nodes.push_back(
            nodes[i == 0 ? 0 : 1 + random() % i]->appendChild(document->createElement(name("e"))));
    return document;
}

TEST(RyNodeQueries, OrderAgreesWithPositionsInDocumentOrder) {
    const RyPtr<RyDocument> document = randomTree(5, 60);
    const std::vector<RyNode*> nodes = nodesOf(document->getDescendantNodes());
    ASSERT_EQ(nodes.size(), 60u);
    const auto isUnder = [](const RyNode* a, const RyNode* b) {
        while (a != nullptr && a != b) a = a->getParentNode();
        return a != nullptr;
    };
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (std::size_t j = 0; j < nodes.size(); ++j) {
            const RyNode* const a = nodes[i];
            const RyNode* const b = nodes[j];
            ASSERT_EQ(a->isPrecedingOf(b), i < j && !isUnder(b, a)) << i << " " << j;
            ASSERT_EQ(a->isFollowingOf(b), i > j && !isUnder(a, b)) << i << " " << j;
            ASSERT_EQ(a->isDescendantOf(b), i != j && isUnder(a, b)) << i << " " << j;
            ASSERT_EQ(a->isDescendantOrSelfOf(b), isUnder(a, b)) << i << " " << j;
            const RyNode* common = a;
            while (!isUnder(b, common)) common = common->getParentNode();
            ASSERT_EQ(a->getCommonAncestorOrSelf(b), common) << i << " " << j;
            if (common == a || common == b) common = common->getParentNode();
            ASSERT_EQ(a->getCommonAncestor(b), common) << i << " " << j;
        }
    }
}

TEST(RyNodeQueries, NodesOfTwoTreesHaveNoOrder) {
    const RyPtr<RyDocument> document = documentOf("<r><a/></r>");
    const RyPtr<RyElement> apart = document->createElement(name("x"));
    const RyNode* const a = document->getDocumentElement()->getFirstChild();
    EXPECT_FALSE(a->isPrecedingOf(apart));
    EXPECT_FALSE(a->isFollowingOf(apart));
    EXPECT_FALSE(a->isPrecedingOf(nullptr));
    EXPECT_FALSE(a->isDescendantOf(nullptr));
    EXPECT_EQ(a->getCommonAncestor(apart), nullptr);
    EXPECT_EQ(a->getCommonAncestorOrSelf(apart), nullptr);
    EXPECT_EQ(apart->getCommonAncestor(apart), nullptr);
    EXPECT_EQ(apart->getCommonAncestorOrSelf(apart), apart.get());
}

TEST(RyNodeQueries, CountsAndSearches) {
    const RyPtr<RyDocument> document = documentOf(
        "<r xmlns:p='urn:p'><a/>x<p:b><a><p:b i='in'/></a></p:b><a/><b xmlns='urn:p'/></r>");
    const RyElement* const root = document->getDocumentElement();
    const RyName uri = name("urn:p");
    const RyNode* const b = root->getChildNodeByName(name("p:b"));
    const RyNode* const inner = b->getFirstChild()->getFirstChild();
    EXPECT_EQ(dump(inner), "p:b[i=in]");
    EXPECT_EQ(root->getChildNodeCount(), 5);
    EXPECT_EQ(b->countPrecedingSiblings(), 2);
    EXPECT_EQ(b->countFollowingSiblings(), 2);
    EXPECT_EQ(inner->getNodeDepth(), 4);
    EXPECT_EQ(document->getNodeDepth(), 0);
    EXPECT_EQ(root->getChildNodeByNameNS(uri, name("b")), b);
    EXPECT_EQ(root->getChildNodeByName(name("b")), root->getLastChild());
    EXPECT_EQ(root->getChildNodeByName(name("#text")), b->getPreviousSibling());
    EXPECT_EQ(root->getChildNodeByTypeID(RyTextNode::getStaticTypeID()), b->getPreviousSibling());
    EXPECT_EQ(inner->getAncestorByName(name("p:b")), b);
    EXPECT_EQ(inner->getAncestorOrSelfByName(name("p:b")), inner);
    EXPECT_EQ(inner->getAncestorByNameNS(uri, name("b")), b);
    EXPECT_EQ(inner->getAncestorByNameNS(RyName(), name("b")), nullptr);
    EXPECT_EQ(inner->getAncestorByTypeID(RyDocument::getStaticTypeID()), document.get());
    EXPECT_EQ(namesOf(document->getElementsByTagName(name("p:b"))), "p:b p:b");
    EXPECT_EQ(namesOf(document->getElementsByTagName(name("b"))), "b");
    EXPECT_EQ(namesOf(root->getElementsByTagName(name("a"))), "a a a");
    EXPECT_EQ(namesOf(root->getElementsByTagName(name("r"))), "");
    EXPECT_EQ(namesOf(document->getElementsByTagNameNS(uri, name("b"))), "p:b p:b b");
    EXPECT_EQ(namesOf(root->getChildNodes()), "a #text p:b a b");
    EXPECT_EQ(namesOf(b->getDescendantNodes()), "a p:b");
    EXPECT_EQ(root->getChildNodes()->item(5), nullptr);
    EXPECT_EQ(root->getChildNodes()->item(-1), nullptr);
}

TEST(RyNodeQueries, ComplementalAncestorsArePassedOver) {
    const RyPtr<RyDocument> document = documentOf("<r><a><b/></a></r>");
    RyNode* const a = document->getDocumentElement()->getFirstChild();
    EXPECT_EQ(a->getFirstChild()->getParentNodeUncomplemental(), a);
    a->setFlag(RyNode::FLAG_COMPLEMENTAL, true);
    EXPECT_EQ(a->getFirstChild()->getParentNodeUncomplemental(), document->getDocumentElement());
}

TEST(RyNodeQueries, InnerText) {
    const RyPtr<RyDocument> document = documentOf("<r>a<b>\u00E9<c/>\u65E5</b><?p q?>d</r>");
    const RyElement* const root = document->getDocumentElement();
    EXPECT_EQ(utf8(root->getInnerText()), "a\u00E9\u65E5d");
    EXPECT_EQ(utf8(document->getInnerText()), "a\u00E9\u65E5d");
    EXPECT_EQ(utf8(root->getFirstChild()->getInnerText()), "a");
    EXPECT_EQ(utf8(root->getText()), "");
    const RyPtr<RyNode> pi = document->createProcessingInstruction(u"p q");
    EXPECT_EQ(utf8(pi->getInnerText()), "p q");
}

TEST(RyNodeIterator, GoesBothWaysThroughDescendants) {
    const RyPtr<RyDocument> document = documentOf("<r><a><b/>x</a><c/></r>");
    const RyElement* const root = document->getDocumentElement();
    const std::vector<RyNode*> all = nodesOf(root->getDescendantNodes());
    ASSERT_EQ(all.size(), 4u);
    const auto expectAll = [&](RyNodeIterator it) {
        for (std::size_t end = 0; end <= all.size(); ++end) {
            it.setToStart();
            EXPECT_FALSE(it.hasPreviousNode());
            for (std::size_t i = 0; i < end; ++i) EXPECT_EQ(it.nextNode(), all[i]);
            for (std::size_t i = end; i-- > 0;) EXPECT_EQ(it.previousNode(), all[i]);
            EXPECT_EQ(it.previousNode(), nullptr);
        }
        it.setToEnd();
        EXPECT_FALSE(it.hasNextNode());
        EXPECT_EQ(it.nextNode(), nullptr);
        EXPECT_EQ(it.previousNode(), all.back());
        EXPECT_EQ(it.nextNode(), all.back());
    };
    expectAll(root->getIterator());
    const RyPtr<RyNodeList> list = root->getDescendantNodes();
    expectAll(RyNodeIterator(list));
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(RyNodeIterator(root, all[i]).nextNode(), all[i]);
        EXPECT_EQ(RyNodeIterator(root, all[i]).previousNode(), i > 0 ? all[i - 1] : nullptr);
    }
}

TEST(RyTreeIterator, VisitsEachNodeBeforeAndAfterItsChildren) {
    const RyPtr<RyDocument> document = documentOf("<r><a><b/></a>x</r>");
    RyTreeIterator it(document->getDocumentElement());
    std::vector<RyTreeIterator> places{it};
    std::string visits;
    const auto visit = [&] {
        visits += it.atPreVisit() ? "<" : ">";
        visits += dump(it.getCurrentNode())[0];
    };
    for (visit(); it.nextNode() != nullptr; visit()) places.push_back(it);
    EXPECT_EQ(visits, "<r<a<b>b>a<\">\">r");
    EXPECT_FALSE(it.hasNextNode());
    EXPECT_EQ(it.getRootNode(), document->getDocumentElement());
    for (std::size_t i = places.size(); i-- > 0;) {
        EXPECT_TRUE(it == places[i]) << i;
        EXPECT_TRUE(i == 0 || it != places[i - 1]);
        EXPECT_EQ(it.previousNode() != nullptr, i > 0);
    }
    EXPECT_TRUE(it.atPreVisit());
}

TEST(RyNodeLookup, NamespacesOfPrefixesAndBack) {
    const RyPtr<RyDocument> document = documentOf(
        "<r xmlns='urn:d' xmlns:p='urn:p' xmlns:q='urn:q'>"
        "<p:a xmlns:q='urn:q2' xmlns:p2='urn:p'><b xmlns=''>t</b></p:a></r>");
    const RyElement* const r = document->getDocumentElement();
    const RyNode* const a = r->getFirstChild();
    const RyNode* const b = a->getFirstChild();
    const RyPtr<RyDocumentFragment> fragment = document->createDocumentFragment();
    const RyAttr* const attr = static_cast<const RyElement*>(b)->getFirstAttribute();
    const RyPtr<RyAttr> free = document->createAttribute(name("x"));
    const struct {
        const char* what;
        const RyNode* node;
        const char *prefix, *uri;
    } forward[] = {
        {"declared", r, "p", "urn:p"},        {"own prefix", a, "p", "urn:p"},
        {"redeclared", a, "q", "urn:q2"},     {"default from above", a, "", "urn:d"},
        {"default taken away", b, "", ""},    {"text", b->getFirstChild(), "q", "urn:q2"},
        {"document", document, "p", "urn:p"}, {"fragment", fragment, "p", ""},
        {"attribute", attr, "p2", "urn:p"},   {"free attribute", free, "p", ""},
    };
    for (const auto& row : forward)
        EXPECT_EQ(utf8(row.node->lookupNamespaceUri(name(row.prefix)).toString()), row.uri)
            << row.what;
    const struct {
        const char* what;
        const RyNode* node;
        const char *uri, *prefix;
    } back[] = {
        {"hidden below", a, "urn:q", ""},
        {"own", a, "urn:p", "p"},
        {"own of an ancestor", b, "urn:p", "p"},
        {"default has none", r, "urn:d", ""},
        {"text", b->getFirstChild(), "urn:q2", "q"},
    };
    for (const auto& row : back)
        EXPECT_EQ(utf8(row.node->lookupPrefix(name(row.uri)).toString()), row.prefix) << row.what;
    EXPECT_TRUE(r->isDefaultNamespace(name("urn:d")));
    EXPECT_TRUE(a->isDefaultNamespace(name("urn:d")));
    EXPECT_FALSE(a->isDefaultNamespace(name("urn:p")));
    EXPECT_TRUE(b->isDefaultNamespace(RyName()));
    EXPECT_FALSE(b->isDefaultNamespace(name("urn:d")));
}

/// An element whose own prefix declares nothing.
class UnboundElement : public RyElement {
public:
    UnboundElement(RyDocument* document, RyName uri, RyName prefix, RyName local)
        : RyElement(document, uri, prefix, local) {}
    unsigned int getTypeID() const override { return 0xD27D366Cu; }
};

TEST(RyNodeLookup, OneTypeOfElementDoesNotBindItsOwnPrefix) {
    const RyPtr<RyDocument> document = documentOf("<p:r xmlns:p='urn:p'/>");
    const RyPtr<RyElement> element =
        new UnboundElement(document, name("urn:other"), name("p"), name("e"));
    document->getDocumentElement()->appendChild(element);
    EXPECT_EQ(utf8(element->lookupNamespaceUri(name("p")).toString()), "urn:p");
    EXPECT_EQ(utf8(element->lookupPrefix(name("urn:p")).toString()), "p");
}

}  // namespace
