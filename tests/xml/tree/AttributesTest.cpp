// Attributes: values, order, look-up in small and large maps, errors, lifetimes.
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
        for (int bit = 3; bit < 32; ++bit) attr.setFlag(bit, true);  // all are the caller's own
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
    // One that takes the place of the first.
    const RyPtr<RyAttr> third = document->createAttributeNS(name("u"), name("r:a"));
    EXPECT_EQ(e->setAttributeNodeNS(third).get(), first.get());
    EXPECT_EQ(e->getAttributeNodeNS(name("u"), name("a")), third.get());
    EXPECT_EQ(e->getAttributeNode(name("p:a")), nullptr);
    const RyPtr<RyAttr> other = document->createAttribute(name("x5"));
    EXPECT_EQ(e->setAttributeNode(other)->getNodeValue(), RyValue(5));
    EXPECT_EQ(e->getAttributeNode(name("x5")), other.get());
    e->removeAttributeNode(third);
    EXPECT_EQ(e->getAttributeNodeNS(name("u"), name("a")), second.get());
    second->setPrefix(name("z"));
    EXPECT_EQ(e->getAttributeNode(name("q:a")), nullptr);
    EXPECT_EQ(e->getAttributeNode(name("z:a")), second.get());
    e->setAttributeEx(name("u"), name("y"), name("a"), u"text");
    EXPECT_EQ(e->getAttributeNode(name("y:a")), second.get());
    e->removeAttributeNode(second);
    EXPECT_EQ(e->getAttributeNodeNS(name("u"), name("a")), nullptr);
}

TEST(RyElementAttributes, ManyAreSetFoundAndRemoved) {
    constexpr int COUNT = 5'000;
    const RyPtr<RyDocument> document = new RyDocument;
    const RyPtr<RyElement> e = document->createElement(name("e"));
    RyNamedNodeMap& map = *e->getAttributes();
    for (int i = 0; i < COUNT; ++i) e->setAttribute(name("a" + std::to_string(i)), RyValue(i));
    // Small enough at the end to be looked up otherwise.
    for (int first = 0; first < COUNT; first = first * 3 / 2 + 1) {
        ASSERT_EQ(map.getLength(), COUNT - first);
        for (int i = first; i < COUNT; ++i) {
            const RyName key = name("a" + std::to_string(i));
            ASSERT_EQ(e->getAttribute(key), RyValue(i));
            ASSERT_EQ(map.item(i - first), e->getAttributeNodeNS(RyName(), key));
        }
        for (int i = first; i < first * 3 / 2 + 1; ++i)
            e->removeAttribute(name("a" + std::to_string(i)));
    }
}

}  // namespace
