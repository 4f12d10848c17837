// Editing calls: the ring of siblings, ownership, errors.
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "tests/xml/tree/TreeFixture.h"

namespace {

using namespace treetest;

/// The nodes that rows speak of, in the tree r(a,b(d,e),c); f is free, o is of another document.
struct Scene {
    RyPtr<RyDocument> document = documentOf("<r><a/><b><d/><e/></b><c/></r>");
    RyPtr<RyDocument> other = new RyDocument;
    RyPtr<RyElement> free = document->createElement(name("f"));
    RyPtr<RyElement> foreign = other->createElement(name("o"));
    std::map<char, RyNode*> nodes;

    Scene() {
        for (RyTreeIterator it(document->getDocumentElement()); it.hasNextNode(); it.nextNode())
            nodes[dump(it.getCurrentNode())[0]] = it.getCurrentNode();
        nodes['f'] = free;
        nodes['o'] = foreign;
        nodes['#'] = document;
        nodes['-'] = nullptr;
    }
    std::string result() const {
        const RyNode* const root = document->getDocumentElement();
        const std::string broken = brokenLinks(*document) + brokenLinks(*free);
        return broken.empty() ? dump(root != nullptr ? root : nodes.at('r')) : "broken: " + broken;
    }
};

/// "+pc" appends c to p, "<pcx" inserts c before x in p, "=pcx" replaces x, "!px" removes x from p.
void apply(const Scene& scene, const std::string& call) {
    RyNode& parent = *scene.nodes.at(call[1]);
    RyNode* const first = scene.nodes.at(call[2]);
    RyNode* const second = call.size() > 3 ? scene.nodes.at(call[3]) : nullptr;
    switch (call[0]) {
        case '+':
            EXPECT_EQ(parent.appendChild(first), first) << call;
            break;
        case '<':
            EXPECT_EQ(parent.insertBefore(first, second), first) << call;
            break;
        case '=':
            EXPECT_EQ(parent.replaceChild(first, second).get(), second) << call;
            break;
        default:
            EXPECT_EQ(parent.removeChild(first).get(), first) << call;
            break;
    }
}

TEST(RyNodeEditing, CallsGiveTheTreeExpected) {
    const std::pair<const char*, const char*> rows[] = {
        {"+rf", "r(a,b(d,e),c,f)"}, {"+ra", "r(b(d,e),c,a)"},    {"+rc", "r(a,b(d,e),c)"},
        {"+ab", "r(a(b(d,e)),c)"},  {"<rfa", "r(f,a,b(d,e),c)"}, {"<rf-", "r(a,b(d,e),c,f)"},
        {"<rbb", "r(a,b(d,e),c)"},  {"<rca", "r(c,a,b(d,e))"},   {"<bce", "r(a,b(d,c,e))"},
        {"=rfa", "r(f,b(d,e),c)"},  {"=rbb", "r(a,b(d,e),c)"},   {"=rac", "r(b(d,e),a)"},
        {"=rdb", "r(a,d,c)"},       {"!ra", "r(b(d,e),c)"},      {"!#r", "r(a,b(d,e),c)"},
    };
    for (const auto& [call, expected] : rows) {
        SCOPED_TRACE(call);
        Scene scene;
        const RyPtr<RyNode> held = scene.nodes.at('r');
        apply(scene, call);
        EXPECT_EQ(scene.result(), expected);
    }
}

TEST(RyNodeEditing, ErrorsLeaveTheTreeAlone) {
    const std::string append = " RynCommon::RyNode::appendChild: SYSTEM ERROR: ";
    const std::string insert = " RynCommon::RyNode::insertBefore: SYSTEM ERROR: ";
    const std::string replace = " RynCommon::RyNode::replaceChild: SYSTEM ERROR: ";
    const std::string remove = " RynCommon::RyNode::removeChild: SYSTEM ERROR: ";
    const std::string foreign = "newChildarg is created from a different document.";
    const struct {
        const char* call;
        std::string expected;
    } rows[] = {
        {"+r-", "2051" + append + "newChild is null."},
        {"+ro", "2054" + append + foreign},
        {"+r#", "2054" + append + foreign},
        {"+rr", "2058" + append + "RyErrorCodeRYNLIB"},
        {"+er", "2058" + append + "RyErrorCodeRYNLIB"},
        {"+##", "2058" + append + "RyErrorCodeRYNLIB"},
        {"<r-a", "2051" + insert + "newChild is null."},
        {"<rfd", "2057" + insert + "refChild is not a child of this node."},
        {"<roa", "2054" + insert + foreign},
        {"<dr-", "2058" + append + "RyErrorCodeRYNLIB"},
        {"<bbd", "2058" + insert + "RyErrorCodeRYNLIB"},
        {"=r-a", "2051" + replace + "newChild is null."},
        {"=rf-", "2051" + replace + "oldChild is null."},
        {"=rfd", "2057" + replace + "oldChild is not a child of this node."},
        {"=roa", "2054" + replace + foreign},
        {"=bre", "2058" + replace + "RyErrorCodeRYNLIB"},
        {"!r-", "2051" + remove + "oldChild is null."},
        {"!rd", "2057" + remove + "oldChild is not a child of this node."},
        {"!rf", "2057" + remove + "oldChild is not a child of this node."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.call);
        Scene scene;
        EXPECT_EQ(errorOf([&] { apply(scene, row.call); }), row.expected);
        EXPECT_EQ(scene.result(), "r(a,b(d,e),c)");
        EXPECT_EQ(scene.nodes.at('a')->getRefCount(), 1);
        EXPECT_EQ(scene.free->getRefCount(), 1);
    }
}

TEST(RyNodeEditing, ValuesAndAttributesAreRefusedWhereTheyDoNotBelong) {
    Scene scene;
    const RyPtr<RyAttr> attr = scene.document->createAttribute(name("x"));
    RyNode& root = *scene.nodes.at('r');
    EXPECT_EQ(errorOf([&] { root.appendChild(attr); }).substr(0, 4), "2058");
    EXPECT_EQ(errorOf([&] { root.setNodeValue(RyValue(1)); }),
              "2059 RynCommon::RyNode::setNodeValue: SYSTEM ERROR: Cannot set a value on node "
              "type: RyElement");
    EXPECT_EQ(errorOf([&] { scene.document->setText(u"x"); }),
              "2059 RynCommon::RyNode::setNodeValue: SYSTEM ERROR: Cannot set a value on node "
              "type: RyDocument");
}

/// What formatters' classes see of a tree that dies.
struct Sight {
    int alive = 0;
    bool isWholeTree = true;  // what is above a node is still there
    std::string broken;
};

/// A class of a formatter, which knows the nodes above it and looks around when it dies.
class Watched : public RyElement {
public:
    Watched(RyDocument* document, Sight& sight, std::vector<RyNode*> above)
        : RyElement(document, RyName(), RyName(), name("w")),
          sight_(sight),
          above_(std::move(above)) {
        ++sight_.alive;
    }
    ~Watched() override {
        --sight_.alive;
        if (!sight_.isWholeTree) return;
        if (getParentNodeFast() != nullptr || getNextSiblingFast() != nullptr ||
            getPreviousSiblingFast() != nullptr)
            sight_.broken += "linked;";
        for (const RyNode* node : above_) sight_.broken += brokenLinks(*node);
    }

private:
    Sight& sight_;
    std::vector<RyNode*> above_;
};

/// The same as an attribute.
class WatchedAttr : public RyAttr {
public:
    WatchedAttr(RyDocument* document, Sight& sight, std::vector<RyNode*> above)
        : RyAttr(document, RyName(), RyName(), name("w")),
          sight_(sight),
          above_(std::move(above)) {}
    ~WatchedAttr() override {
        if (!sight_.isWholeTree) return;
        for (const RyNode* node : above_) sight_.broken += brokenLinks(*node);
    }

private:
    Sight& sight_;
    std::vector<RyNode*> above_;
};

TEST(RyNodeEditing, NodesHeldElsewhereSurviveTheirParentWhole) {
    std::mt19937 random(4711);
    const auto below = [&random](std::size_t n) { return random() % n; };
    for (int round = 0; round < 200; ++round) {
        Sight sight;
        RyPtr<RyDocument> document = documentOf("<r a='1'><b/>t</r>");
        std::vector<RyNode*> nodes{document->getDocumentElement()};
        const auto make = [&](RyNode* parent) -> RyPtr<RyNode> {
            std::vector<RyNode*> above;
            for (RyNode* node = parent; node != document; node = node->getParentNode())
                above.push_back(node);
            switch (below(4)) {
                case 0:
                    return new Watched(document, sight, std::move(above));
                case 1:
                    return RyPtr<RyNode>(document->createTextNode(u"a text of some length").get());
                default:
                    const RyPtr<RyElement> element = document->createElement(name("e"));
                    if (below(2) == 0)
                        element->setAttributeNode(
                            new WatchedAttr(document, sight, std::move(above)));
                    return RyPtr<RyNode>(element.get());
            }
        };
        for (int i = 0; i < 40; ++i) {
            RyNode* const parent = nodes[below(nodes.size())];
            if (parent->isElementNode()) nodes.push_back(parent->appendChild(make(parent)));
        }
        std::vector<std::pair<RyPtr<RyNode>, std::string>> held;
        const std::size_t holders = below(6);
        for (std::size_t i = 0; i < holders; ++i) {
            RyNode* const node = nodes[1 + below(nodes.size() - 1)];
            held.emplace_back(node, dump(node));
        }
        document->removeAllChildNodes();
        for (const auto& [node, before] : held) {
            EXPECT_EQ(dump(node), before) << round;
            EXPECT_EQ(brokenLinks(*node), "") << round;
        }
        sight.isWholeTree = false;
        held.clear();
        EXPECT_EQ(sight.alive, 0) << round;
        EXPECT_EQ(sight.broken, "") << round;
    }
}

TEST(RyNodeEditing, FragmentsAreLinkedAsTheNodesTheyAre) {
    const RyPtr<RyDocument> document = documentOf("<r/>");
    const RyPtr<RyDocumentFragment> fragment = document->createDocumentFragment();
    fragment->appendChildText(u"x");
    fragment->appendChild(document->createProcessingInstruction(u"p q"));
    document->getDocumentElement()->appendChild(fragment);
    EXPECT_EQ(dump(document), "r(#(\"x\",?p q?))");
    EXPECT_EQ(savedXml(*document), "<r>x<?p q?></r>");
}

TEST(RyNodeEditing, ClonesAreEqualFreeAndApart) {
    const RyPtr<RyDocument> document =
        documentOf("<p:r xmlns:p='urn:p' a='1'>x<b c='2'><d/>y</b><e/></p:r>");
    RyElement* const root = document->getDocumentElement();
    root->appendChild(document->createProcessingInstruction(u"pi data"));
    root->setAttribute(name("n"), RyValue(7));
    const std::string before = dump(document);
    const RyPtr<RyNode> deep = root->cloneNode(true);
    const RyPtr<RyNode> copy = document->cloneNode(true);
    EXPECT_EQ(dump(deep), before);
    EXPECT_EQ(dump(root->cloneNode(false)), "p:r[xmlns:p=urn:p,a=1,n=7]");
    EXPECT_EQ(dump(copy), before);
    EXPECT_EQ(deep->getParentNode(), nullptr);
    EXPECT_EQ(deep->getNamespaceUri(), name("urn:p"));
    EXPECT_EQ(deep->getSourceColumnNumber(), root->getSourceColumnNumber());
    EXPECT_TRUE(static_cast<RyElement&>(*deep).getAttribute(name("n")).isInteger());
    for (const RyNode* node = copy->getFirstChild(); node != nullptr; node = node->getFirstChild())
        EXPECT_EQ(node->getOwnerDocument(), copy.get());
}

TEST(RyNodeEditing, IdentifiersNamesAndTypes) {
    const RyPtr<RyDocument> document = new RyDocument;
    const RyPtr<RyElement> element = document->createElementNS(name("urn:p"), name("p:e"));
    const RyPtr<RyAttr> attr = document->createAttributeNS(name("urn:p"), name("p:a"));
    const RyPtr<RyTextNode> text = document->createTextNode(u"t");
    const RyPtr<RynCommon::RyPINode> pi = document->createProcessingInstruction(u"target\tdata");
    const RyPtr<RyDocumentFragment> fragment = document->createDocumentFragment();
    const RyPtr<RyNodeList> list = document->getChildNodes();
    const struct {
        const RynCommon::RyObjectBase* object;
        std::vector<unsigned> ids;
        const char *type, *nodeName;
        int number;
    } rows[] = {
        {element, {0xD31942AA, 0x74DC3393, 0x90AF0240, 0xA4EBD8C4}, "RyElement", "p:e", 1},
        {attr, {0xC5B6A2E2, 0x74DC3393}, "RyAttr", "p:a", 2},
        {text, {0x92151179, 0x74DC3393}, "RyTextNode", "#text", 3},
        {pi, {0x1A6FA3CF, 0x74DC3393}, "RyPINode", "target", 7},
        {document, {0xF6B431AF, 0x74DC3393}, "RyDocument", "#document", 9},
        {fragment, {0x319C59B1, 0x74DC3393}, "RyDocumentFragment", "#document-fragment", 11},
        {list, {0x316E063E, 0x548EE986, 0x90AF0240}, "RyNodeList", "", 0},
        {element->getAttributes(), {0x953D7483, 0x90AF0240}, "RyNamedNodeMap", "", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(row.object->getTypeID(), row.ids[0]);
        for (const unsigned id : row.ids) EXPECT_TRUE(row.object->isA(id)) << id;
        EXPECT_FALSE(row.object->isA(0x31FB5B85));
        EXPECT_EQ(utf8(row.object->getTypeName()), row.type);
        const auto* const node = dynamic_cast<const RyNode*>(row.object);
        if (node == nullptr) continue;
        EXPECT_EQ(utf8(node->getNodeName().toString()), row.nodeName);
        EXPECT_EQ(node->getNodeType(), row.number);
        EXPECT_EQ(node->isElementNode(), row.number == 1);
        EXPECT_EQ(node->isText(), row.number == 3);
    }
}

}  // namespace
