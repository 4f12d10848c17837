// Attributes: values, order, look-up in small and large maps, errors, lifetimes.
#include <algorithm>
#include <random>

#include "tests/xml/tree/TreeFixture.h"

namespace {

using namespace treetest;
using RynCommon::RyNamedNodeMap;

TEST(RyElementAttributes, SettingKeepsThePlaceAndAddsAtTheEnd) {
    const RyPtr<RyDocument> document = documentOf("<r xmlns:p='u' a='1' p:b='2' c='3'/>");
    RyElement& e = *document->getDocumentElement();
    e.setAttribute(name("a"), RyValue(10));
    e.setAttribute(name("p:b"), RyValue(u"20"));
    e.setAttribute(name("d"), RyValue(4));
    EXPECT_EQ(dump(&e), "r[xmlns:p=u,a=10,p:b=20,c=3,d=4]");
    e.setAttributeNS(name("u"), name("q:b"), RyValue(21));
    EXPECT_EQ(dump(&e), "r[xmlns:p=u,a=10,q:b=21,c=3,d=4]");
    EXPECT_EQ(e.getAttributeNS(name("u"), name("b")).getIntegerValue(), 21);
    EXPECT_TRUE(e.hasAttribute(name("q:b")));
    EXPECT_FALSE(e.hasAttribute(name("p:b")));
    EXPECT_FALSE(e.hasAttributeNS(RyName(), name("b")));
    EXPECT_TRUE(e.hasAttributeLocal(name("b")));
    EXPECT_TRUE(e.getAttribute(name("z")).isNull());
    e.setAttributeNS(RyName(), RyName(), name("b"), RyValue(5));
    std::vector<RyValue> values;
    e.getAttributeLocal(name("b"), &values);
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0].getIntegerValue() * 10 + values[1].getIntegerValue(), 215);
    std::vector<RyPtr<RyAttr>> nodes;
    e.getAttributeNodeLocal(name("b"), &nodes);
    EXPECT_EQ(nodes.size(), 2u);
    e.removeAttribute(name("a"));
    e.removeAttributeNS(name("u"), name("b"));
    e.removeAttribute(name("z"));
    EXPECT_EQ(dump(&e), "r[xmlns:p=u,c=3,d=4,b=5]");
}

TEST(RyElementAttributes, ValuesAndTextsAreEachOthersForms) {
    const RyPtr<RyDocument> document = documentOf("<r empty='' text='\u65E5 x'/>");
    RyElement& e = *document->getDocumentElement();
    EXPECT_TRUE(e.getAttribute(name("empty")).isUnknownString());
    EXPECT_EQ(e.getAttribute(name("text")), RyValue(u"\u65E5 x"));
    EXPECT_TRUE(e.getAttributeNode(name("text"))->holdsText());
    RyAttr& attr = *e.getAttributeNode(name("empty"));
    const RyValue values[] = {RyValue(), RyValue(12), RyValue(u"lit", RynCommon::RYUNIT_LITERAL),
                              RyValue(name("auto")), RyValue(1.5, RynCommon::RYUNIT_PT)};
    for (const RyValue& value : values) {
        attr.setNodeValue(value);
        EXPECT_EQ(attr.getNodeValue().getValueType(), value.getValueType());
        EXPECT_EQ(attr.getNodeValue().getUnitType(), value.getUnitType());
        EXPECT_EQ(utf8(attr.getText()), utf8(value.toString()));
        UnicodeString copied(u"left over");
        attr.copyTextTo(copied);
        EXPECT_EQ(copied, value.toString());
        EXPECT_FALSE(attr.holdsText());
    }
    attr.setText(u"again");
    EXPECT_EQ(attr.getNodeValue(), RyValue(u"again"));
    const RyPtr<RyAttr> fresh = document->createAttribute(name("n"));
    EXPECT_TRUE(fresh->getNodeValue().isNull());
}

TEST(RyElementAttributes, NodesAreNoChildren) {
    const RyPtr<RyDocument> document = documentOf("<r a='1' b='2'/>");
    RyElement& e = *document->getDocumentElement();
    RyAttr* const a = e.getFirstAttribute();
    RyAttr* const b = a->getNextAttribute();
    EXPECT_EQ(b->getNextAttribute(), nullptr);
    EXPECT_EQ(b->getOwnerElement(), &e);
    for (const RyNode* link : {b->getParentNode(), b->getParentNodeFast(), b->getPreviousSibling(),
                               b->getNextSibling(), b->getNextSiblingFast(), a->getNextSibling()})
        EXPECT_EQ(link, nullptr);
    EXPECT_FALSE(e.hasChildNodes());
    EXPECT_EQ(errorOf([&] { e.removeChild(a); }).substr(0, 4), "2057");
}

TEST(RyElementAttributes, NodesReplaceNodesOfTheirName) {
    const RyPtr<RyDocument> document = documentOf("<r xmlns:p='u' a='1' p:b='2' c='3'/>");
    RyElement& e = *document->getDocumentElement();
    const RyPtr<RyAttr> a = document->createAttribute(name("a"));
    a->setText(u"new");
    const RyPtr<RyAttr> old = e.setAttributeNode(a);
    EXPECT_EQ(utf8(old->getText()), "1");
    EXPECT_EQ(old->getRefCount(), 1);
    EXPECT_EQ(old->getOwnerElement(), nullptr);
    EXPECT_EQ(a->getOwnerElement(), &e);
    EXPECT_EQ(e.setAttributeNode(a).get(), a.get());
    const RyPtr<RyAttr> b = document->createAttributeNS(name("u"), name("z:b"));
    EXPECT_EQ(utf8(e.setAttributeNodeNS(b)->getText()), "2");
    EXPECT_EQ(e.setAttributeNode(document->createAttribute(name("d"))).get(), nullptr);
    EXPECT_EQ(dump(&e), "r[xmlns:p=u,a=new,z:b=,c=3,d=]");
    EXPECT_EQ(e.removeAttributeNode(a).get(), a.get());
    EXPECT_EQ(e.removeAttributeNode(a).get(), nullptr);
    EXPECT_EQ(a->getRefCount(), 1);
    EXPECT_EQ(dump(&e), "r[xmlns:p=u,z:b=,c=3,d=]");
}

TEST(RyElementAttributes, Errors) {
    const RyPtr<RyDocument> document = documentOf("<r a='1'><s/></r>");
    const RyPtr<RyDocument> other = new RyDocument;
    const RyPtr<RyAttr> foreign = other->createAttribute(name("a"));
    RyElement& r = *document->getDocumentElement();
    RyElement& s = static_cast<RyElement&>(*r.getFirstChild());
    RyNamedNodeMap& map = *s.getAttributes();
    const std::string set = " RynCommon::AttrNodeMap::setNamedItem: SYSTEM ERROR: newAttr";
    const std::string setNS = " RynCommon::AttrNodeMap::setNamedItemNS: SYSTEM ERROR: newAttr";
    const struct {
        std::function<void()> action;
        std::string expected;
    } rows[] = {
        {[&] { s.setAttributeNode(nullptr); }, "2051" + set + " is null."},
        {[&] { s.setAttributeNodeNS(nullptr); }, "2051" + setNS + " is null."},
        {[&] { map.setNamedItem(&r); }, "2055" + set + " is not an RyAttr object."},
        {[&] { map.setNamedItemNS(&r); }, "2055" + setNS + " is not an RyAttr object."},
        {[&] { s.setAttributeNode(r.getFirstAttribute()); },
         "2056" + set + " is an RyAttr that is already an attribute of another RyElement object."},
        {[&] { s.setAttributeNodeNS(foreign); },
         "2054" + setNS + "arg is created from a different document."},
        {[&] { s.removeAttributeNode(nullptr); },
         "2051 RynCommon::RyElement::removeAttributeNode: SYSTEM ERROR: oldAttr is null."},
    };
    for (const auto& row : rows) EXPECT_EQ(errorOf(row.action), row.expected);
    EXPECT_EQ(dump(&r), "r[a=1](s)");
}

TEST(RyElementAttributes, MapOutlivesItsElementAndAttributesTheirMap) {
    const RyPtr<RyDocument> document = documentOf("<r a='1' b='2'/>");
    RyPtr<RyAttr> attr = document->getDocumentElement()->getFirstAttribute();
    RyPtr<RyNamedNodeMap> map = document->getDocumentElement()->getAttributes();
    document->removeAllChildNodes();
    EXPECT_EQ(attr->getOwnerElement(), nullptr);
    EXPECT_EQ(map->getLength(), 2);
    EXPECT_EQ(map->item(0), attr.get());
    map.reset();
    EXPECT_EQ(attr->getRefCount(), 1);
    EXPECT_EQ(attr->getNextAttribute(), nullptr);
    EXPECT_EQ(utf8(attr->getText()), "1");
}

// Random calls on one map, which grows to and shrinks from both sides of the limit above which it
// looks up by hash, beside a list that says what should come of them.
TEST(RyElementAttributes, RandomCallsAgreeWithAModel) {
    std::mt19937 random(4711);
    const RyPtr<RyDocument> document = new RyDocument;
    const RyPtr<RyElement> e = document->createElement(name("e"));
    RyNamedNodeMap& map = *e->getAttributes();
    struct Item {
        RyName uri, local, qname;
        int value;
    };
    std::vector<Item> model;
    int largest = 0;
    for (int step = 0; step < 20'000; ++step) {
        const bool growing = step / 500 % 2 == 0;
        const std::string local = "n" + std::to_string(random() % 24);
        const bool prefixed = random() % 2 == 0;
        const RyName qname = name(prefixed ? "p:" + local : local);
        const RyName uri = prefixed ? name("urn:p") : RyName();
        const auto at = std::find_if(model.begin(), model.end(),
                                     [&](const Item& item) { return item.qname == qname; });
        const auto kind = random() % (growing ? 6 : 12);
        if (kind < 4) {
            if (at != model.end())
                at->value = step;
            else
                model.push_back({uri, name(local), qname, step});
            if (kind == 0) {
                const RyPtr<RyAttr> attr = document->createAttributeNS(uri, qname);
                attr->setNodeValue(RyValue(step));
                e->setAttributeNode(attr);
            } else if (kind == 1) {
                e->setAttributeEx(uri, prefixed ? name("p") : RyName(), name(local),
                                  units(std::to_string(step)));
            } else {
                e->setAttributeNS(uri, qname, RyValue(step));
            }
        } else if (kind >= 6) {
            if (at != model.end()) model.erase(at);
            if (kind < 9)
                e->removeAttribute(qname);
            else
                e->removeAttributeNS(uri, name(local));
        }
        ASSERT_EQ(map.getLength(), static_cast<int>(model.size())) << "step " << step;
        largest = std::max(largest, map.getLength());
        ASSERT_EQ(e->hasAttribute(qname), e->hasAttributeNS(uri, name(local))) << step;
        const std::size_t first = random() % 3;
        for (std::size_t i = first; i < model.size(); ++i) {
            const auto* const attr = static_cast<const RyAttr*>(map.item(static_cast<int>(i)));
            ASSERT_EQ(utf8(attr->getText()), std::to_string(model[i].value)) << "step " << step;
            ASSERT_EQ(map.getNamedItem(model[i].qname), attr) << "step " << step;
            ASSERT_EQ(map.getNamedItemNS(model[i].uri, model[i].local), attr) << "step " << step;
        }
    }
    EXPECT_GT(largest, 30);
    EXPECT_EQ(map.item(map.getLength()), nullptr);
}

TEST(RyElementAttributes, SharedNamesInLargeMapsFindTheFirst) {
    const RyPtr<RyDocument> document = new RyDocument;
    const RyPtr<RyElement> e = document->createElement(name("e"));
    for (int i = 0; i < 20; ++i) e->setAttribute(name("x" + std::to_string(i)), RyValue(i));
    // Two qualified names, one expanded name.
    const RyPtr<RyAttr> first = document->createAttributeNS(name("u"), name("p:a"));
    const RyPtr<RyAttr> second = document->createAttributeNS(name("u"), name("q:a"));
    e->setAttributeNode(first);
    e->setAttributeNode(second);
    EXPECT_EQ(e->getAttributeNodeNS(name("u"), name("a")), first.get());
    EXPECT_EQ(e->getAttributeNode(name("q:a")), second.get());
    e->removeAttributeNode(first);
    EXPECT_EQ(e->getAttributeNodeNS(name("u"), name("a")), second.get());
    second->setPrefix(name("z"));
    EXPECT_EQ(e->getAttributeNode(name("q:a")), nullptr);
    EXPECT_EQ(e->getAttributeNode(name("z:a")), second.get());
    e->removeAttributeNode(second);
    EXPECT_EQ(e->getAttributeNodeNS(name("u"), name("a")), nullptr);
}

TEST(RyElementAttributes, SixtyThousandAreSetFoundAndRemoved) {
    constexpr int COUNT = 60'000;
    std::string xml = "<r";
    for (int i = 0; i < COUNT; ++i)
        xml += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
    const RyPtr<RyDocument> document = documentOf(xml + "/>");
    RyElement& e = *document->getDocumentElement();
    RyNamedNodeMap& map = *e.getAttributes();
    ASSERT_EQ(map.getLength(), COUNT);
    int wrong = 0;
    for (int i = 0; i < COUNT; ++i) {
        const RyName key = name("a" + std::to_string(i));
        wrong += e.getAttribute(key) != RyValue(units(std::to_string(i)));
        wrong += map.item(i) != e.getAttributeNodeNS(RyName(), key);
    }
    EXPECT_EQ(wrong, 0);
    for (int i = 0; i < COUNT; i += 2) e.removeAttribute(name("a" + std::to_string(i)));
    EXPECT_EQ(map.getLength(), COUNT / 2);
    EXPECT_EQ(map.item(0), e.getAttributeNode(name("a1")));
}

}  // namespace
