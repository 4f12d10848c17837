// Fuzz target of editing trees: the input is a sequence of edits, made on nodes and on a model of
// them. After each the nodes have to be what the model is; edits that are not allowed have to fail
// as they should, and change nothing. At the end what the document has become is saved and loaded.
#include <RynCommon/RyError.h>
#include <RynCommon/RyNodeIterator.h>

#include <algorithm>
#include <sstream>

#include "core/ErrorLocations.h"
#include "fuzz/ByteFeed.h"
#include "fuzz/Require.h"
#include "fuzz/TreeModel.h"
#include "fuzz/TreeText.h"

using namespace RynCommon;

namespace {

constexpr std::size_t MAX_NODES = 40;
constexpr std::size_t MAX_EDITS = 120;

constexpr SystemErrorCode NONE{};

template <class Edit>
unsigned short failureOf(Edit edit) {
    try {
        edit();
        return NONE;
    } catch (const RyError& error) {
        return error.getErrorCode();
    }
}

class Editor {
public:
    Editor(TreeModel& model, ByteFeed& feed) : model_(model), feed_(feed) {}

    void edit() {
        using Edit = void (Editor::*)();
        static constexpr Edit EDITS[] = {&Editor::createElement,
                                         &Editor::createElement,
                                         &Editor::createOther,
                                         &Editor::append,
                                         &Editor::append,
                                         &Editor::insert,
                                         &Editor::insert,
                                         &Editor::replace,
                                         &Editor::remove,
                                         &Editor::removeAll,
                                         &Editor::deleteAll,
                                         &Editor::clone,
                                         &Editor::appendText,
                                         &Editor::setText,
                                         &Editor::setPrefix,
                                         &Editor::setAttribute,
                                         &Editor::setAttributeNS,
                                         &Editor::setManyAttributes,
                                         &Editor::setAttributeNode,
                                         &Editor::removeAttribute,
                                         &Editor::removeAttributeNode,
                                         &Editor::setAttributePrefix};
        (this->*EDITS[feed_.takeBelow(std::size(EDITS))])();
    }

private:
    // Choices.

    ModelNode& pick() { return model_.at(feed_.takeBelow(model_.size())); }
    ModelNode* pickElement() {
        ModelNode& node = pick();
        if (!node.isElement()) return nullptr;
        model_.touch(node);
        return &node;
    }
    /// A child of `parent`; seldom, or when there is none, any node.
    ModelNode& pickChild(ModelNode& parent) {
        const std::uint8_t choice = feed_.take();
        if (parent.children.empty() || choice % 8 == 7) return model_.at(choice % model_.size());
        return *parent.children[choice % parent.children.size()];
    }
    RyName pickLocal() {
        static const RyName names[] = {RyName(u"a"),     RyName(u"b"), RyName(u"c"), RyName(u"p:a"),
                                       RyName(u"xmlns"), RyName(u"p"), RyName(u"q")};
        return names[feed_.takeBelow(std::size(names))];
    }
    RyName pickPrefix() {
        static const RyName names[] = {RyName(), RyName(u"p"), RyName(u"q"), RyName(u"xmlns")};
        return names[feed_.takeBelow(std::size(names))];
    }
    RyName pickUri() {
        static const RyName names[] = {RyName(), RyName(u"urn:u"), RyName(u"urn:v"),
                                       RyName(u"http://www.w3.org/2000/xmlns/")};
        return names[feed_.takeBelow(std::size(names))];
    }
    UnicodeString pickText() {
        static const UnicodeString texts[] = {
            u"", u"x", u"<&>\"'", u" \t\r\n", u"漢\U0001F600", u"\x01", u"]]>", u"urn:u", u"urn:v"};
        return texts[feed_.takeBelow(std::size(texts))];
    }
    bool hasRoom() const { return model_.size() < MAX_NODES; }

    // Nodes.

    void createElement() {
        if (!hasRoom()) return;
        const RyName uri = pickUri();
        const RyName prefix = pickPrefix();
        const RyName local = pickLocal();
        ModelNode& made = model_.add(asNode(model_.document().createElementNS(uri, prefix, local)));
        appendTo(pick(), made);
    }
    void createOther() {
        if (!hasRoom()) return;
        RyDocument& document = model_.document();
        switch (feed_.takeBelow(3)) {
            case 0:
                model_.add(asNode(document.createTextNode(pickText())));
                break;
            case 1:
                model_.add(asNode(document.createProcessingInstruction(u"t " + pickText())));
                break;
            default:
                model_.add(asNode(document.createDocumentFragment()));
        }
    }
    template <class T>
    static RyPtr<RyNode> asNode(const RyPtr<T>& node) {
        return RyPtr<RyNode>(node.get());
    }

    /// What keeps `child` from being put below `parent`.
    SystemErrorCode failureOfChild(const ModelNode& parent, const ModelNode& child) {
        const bool isDocument = &child == &model_.at(0);
        if (isDocument && &parent != &child) return SYSTEM_WRONG_DOCUMENT;
        return parent.isBelowOrSelf(child) ? SYSTEM_HIERARCHY : NONE;
    }
    void requireFailure(const char* what, unsigned short expected, unsigned short found) {
        require(expected == found, what, std::to_string(expected), std::to_string(found));
    }

    void appendTo(ModelNode& parent, ModelNode& child) {
        const SystemErrorCode expected = failureOfChild(parent, child);
        requireFailure("appendChild", expected,
                       failureOf([&] { parent.node->appendChild(child.node); }));
        if (expected != NONE) return;
        child.takeOut();
        parent.insert(child, parent.children.size());
    }
    void append() {
        ModelNode& parent = pick();
        const std::uint8_t choice = feed_.take();
        if (choice >= 0xF8) {
            const bool isNull = choice >= 0xFC;
            RyNode* const bad = isNull ? nullptr : model_.stranger();
            requireFailure("appendChild of what is none",
                           isNull ? SYSTEM_ARG_IS_NULL : SYSTEM_WRONG_DOCUMENT,
                           failureOf([&] { parent.node->appendChild(bad); }));
            return;
        }
        appendTo(parent, model_.at(choice % model_.size()));
    }
    void insert() {
        ModelNode& parent = pick();
        ModelNode& child = pick();
        ModelNode& before = pickChild(parent);
        SystemErrorCode expected = failureOfChild(parent, child);
        if (&child == &before) expected = NONE;
        if (before.parent != &parent) expected = SYSTEM_NOT_A_CHILD;
        requireFailure("insertBefore", expected,
                       failureOf([&] { parent.node->insertBefore(child.node, before.node); }));
        if (expected != NONE || &child == &before) return;
        child.takeOut();
        parent.insert(child, before.placeAmongSiblings());
    }
    void replace() {
        ModelNode& parent = pick();
        ModelNode& child = pick();
        ModelNode& old = pickChild(parent);
        SystemErrorCode expected = failureOfChild(parent, child);
        if (&child == &old) expected = NONE;
        if (old.parent != &parent) expected = SYSTEM_NOT_A_CHILD;
        requireFailure("replaceChild", expected, failureOf([&] {
                           const RyPtr<RyNode> given =
                               parent.node->replaceChild(child.node, old.node);
                           require(given.get() == old.node.get(), "replaced another node");
                       }));
        if (expected != NONE || &child == &old) return;
        child.takeOut();
        const std::size_t place = old.placeAmongSiblings();
        old.takeOut();
        parent.insert(child, place);
    }
    void remove() {
        ModelNode& parent = pick();
        ModelNode& child = pickChild(parent);
        const SystemErrorCode expected = child.parent == &parent ? NONE : SYSTEM_NOT_A_CHILD;
        requireFailure("removeChild", expected,
                       failureOf([&] { parent.node->removeChild(child.node); }));
        if (expected == NONE) child.takeOut();
    }
    void removeAll() {
        ModelNode& parent = pick();
        parent.node->removeAllChildNodes();
        while (!parent.children.empty()) parent.children.back()->takeOut();
    }
    /// Takes all apart below a node; half of it is held by nobody else.
    void deleteAll() {
        ModelNode& top = pick();
        std::vector<ModelNode*> below(top.children);
        for (std::size_t i = 0; i < below.size(); ++i)
            below.insert(below.end(), below[i]->children.begin(), below[i]->children.end());
        int destroyed = 0;
        for (ModelNode* node : below) {
            node->parent = nullptr;
            node->children.clear();
            if (!feed_.takeBool()) continue;
            model_.forget(*node);
            ++destroyed;
        }
        top.children.clear();
        require(top.node->deleteAllChildNodes() == destroyed, "number of nodes destroyed");
    }
    void clone() {
        ModelNode& original = pick();
        const bool deep = feed_.takeBool();
        if (!hasRoom() || &original == &model_.at(0)) return;
        const RyPtr<RyNode> copy = original.node->cloneNode(deep);
        ModelNode shallow = original;
        if (!deep) shallow.children.clear();
        model_.addCopy(shallow, *copy);
    }
    void appendText() {
        if (!hasRoom()) return;
        ModelNode& parent = pick();
        RyNode* const made = parent.node->appendChildText(pickText());
        parent.insert(model_.add(RyPtr<RyNode>(made)), parent.children.size());
    }
    void setText() {
        ModelNode& node = pick();
        const UnicodeString text = pickText();
        const bool hasText =
            node.node->isText() || node.node->getNodeType() == RyNode::PROCESSING_INSTRUCTION_NODE;
        requireFailure("setText", hasText ? NONE : SYSTEM_WRONG_STATE,
                       failureOf([&] { node.node->setText(text); }));
        if (hasText) node.text = text;
    }
    void setPrefix() {
        ModelNode* const element = pickElement();
        if (element == nullptr) return;
        element->prefix = pickPrefix();
        element->node->setPrefix(element->prefix);
    }

    // Attributes.

    using Attributes = std::vector<ModelAttr>;

    static Attributes::iterator findByName(ModelNode& element, RyName qname) {
        return std::find_if(element.attributes.begin(), element.attributes.end(),
                            [&](const ModelAttr& attr) { return attr.qname() == qname; });
    }
    static Attributes::iterator findNS(ModelNode& element, RyName uri, RyName local) {
        return std::find_if(
            element.attributes.begin(), element.attributes.end(),
            [&](const ModelAttr& attr) { return attr.uri == uri && attr.local == local; });
    }
    static void put(ModelNode& element, Attributes::iterator at, const ModelAttr& attr) {
        if (at != element.attributes.end())
            *at = attr;
        else
            element.attributes.push_back(attr);
    }

    void setAttribute() {
        ModelNode* const element = pickElement();
        if (element == nullptr) return;
        const RyName name = pickLocal();
        const UnicodeString value = pickText();
        element->element().setAttribute(name, RyValue(value));
        const auto at = findByName(*element, name);
        if (at != element->attributes.end())
            at->value = value;
        else
            element->attributes.push_back({RyName(), RyName(), name, value});
    }
    void setAttributeNS() {
        ModelNode* const element = pickElement();
        if (element == nullptr) return;
        const RyName uri = pickUri();
        const RyName prefix = pickPrefix();
        setOneNS(*element, {uri, prefix, pickLocal(), pickText()});
    }
    void setOneNS(ModelNode& element, const ModelAttr& attr) {
        put(element, findNS(element, attr.uri, attr.local), attr);
        if (feed_.takeBool())
            element.element().setAttributeEx(attr.uri, attr.prefix, attr.local, attr.value);
        else
            element.element().setAttributeNS(attr.uri, attr.prefix, attr.local,
                                             RyValue(attr.value));
    }
    /// More than fit into a map without an index.
    void setManyAttributes() {
        ModelNode* const element = pickElement();
        if (element == nullptr) return;
        const std::size_t count = feed_.takeBelow(24);
        for (std::size_t i = 0; i < count; ++i)
            setOneNS(*element, {RyName(), RyName(),
                                RyName(UnicodeString(u"n").append(static_cast<char16_t>(u'a' + i))),
                                u"many"});
    }
    void setAttributeNode() {
        ModelNode* const element = pickElement();
        if (element == nullptr) return;
        const RyName uri = pickUri();
        const RyName prefix = pickPrefix();
        const ModelAttr wanted{uri, prefix, pickLocal(), pickText()};
        const RyPtr<RyAttr> attr = model_.document().createAttributeNS(uri, prefix, wanted.local);
        attr->setText(wanted.value);
        const bool byName = feed_.takeBool();
        const auto at =
            byName ? findByName(*element, wanted.qname()) : findNS(*element, uri, wanted.local);
        const bool isNew = at == element->attributes.end();
        put(*element, at, wanted);
        const RyPtr<RyAttr> old = byName ? element->element().setAttributeNode(attr)
                                         : element->element().setAttributeNodeNS(attr);
        require((old == nullptr) == isNew, "an attribute takes another one's place");
        require(old == nullptr || old->getOwnerElement() == nullptr, "a replaced one has an owner");
        checkInUse(*element, *attr);
    }
    void checkInUse(const ModelNode& element, RyAttr& attr) {
        ModelNode* const other = &pick();
        if (!other->isElement() || other == &element) return;
        requireFailure("setAttributeNode", SYSTEM_ATTR_IN_USE,
                       failureOf([&] { other->element().setAttributeNode(&attr); }));
        requireFailure("appendChild of an attribute", SYSTEM_HIERARCHY,
                       failureOf([&] { other->node->appendChild(&attr); }));
    }
    void removeAttribute() {
        ModelNode* const element = pickElement();
        if (element == nullptr) return;
        const RyName local = pickLocal();
        const bool byName = feed_.takeBool();
        const RyName uri = pickUri();
        const auto at = byName ? findByName(*element, local) : findNS(*element, uri, local);
        if (at != element->attributes.end()) element->attributes.erase(at);
        if (byName)
            element->element().removeAttribute(local);
        else
            element->element().removeAttributeNS(uri, local);
    }
    RyAttr* pickAttribute(ModelNode& element, std::size_t& place) {
        if (element.attributes.empty()) return nullptr;
        place = feed_.takeBelow(element.attributes.size());
        RyNode* const attr = element.element().getAttributes()->item(static_cast<int>(place));
        require(attr != nullptr, "an attribute is lost");
        return static_cast<RyAttr*>(attr);
    }
    void removeAttributeNode() {
        ModelNode* const element = pickElement();
        std::size_t place = 0;
        RyAttr* const attr = element != nullptr ? pickAttribute(*element, place) : nullptr;
        if (attr == nullptr) return;
        const RyPtr<RyAttr> removed = element->element().removeAttributeNode(attr);
        require(removed.get() == attr && attr->getOwnerElement() == nullptr, "removed another one");
        require(element->element().removeAttributeNode(attr) == nullptr, "removed twice");
        element->attributes.erase(element->attributes.begin() + static_cast<std::ptrdiff_t>(place));
    }
    void setAttributePrefix() {
        ModelNode* const element = pickElement();
        std::size_t place = 0;
        RyAttr* const attr = element != nullptr ? pickAttribute(*element, place) : nullptr;
        if (attr == nullptr) return;
        element->attributes[place].prefix = pickPrefix();
        attr->setPrefix(element->attributes[place].prefix);
    }

    TreeModel& model_;
    ByteFeed& feed_;
};

/// Elements and texts as another reader has to find them: prefixes may be others, neighbouring
/// texts are one, and nodes of other kinds do not enclose anything.
std::string expandedContent(RyNode& root) {
    std::string out;
    RyTreeIterator place(&root);
    do {
        const RyNode& node = *place.getCurrentNode();
        if (node.getNodeType() != RyNode::ELEMENT_NODE) continue;
        if (place.atPreVisit())
            out += "<" + describeName(toUtf8(node.getNamespaceUri().toString()), "",
                                      toUtf8(node.getLocalName().toString()));
        out += ">\n";
    } while (place.nextNode() != nullptr);
    return out + toUtf8(root.getInnerText());
}

/// What any sort of tree can be saved as is read back as that tree.
void checkSaving(RyDocument& document) {
    RyElement* const root = document.getDocumentElement();
    if (root == nullptr) return;
    std::ostringstream out;
    document.getSerializer()->setConformant(true);
    const unsigned short failure = failureOf([&] { document.save(out, root, u"UTF-8"); });
    require(failure == NONE || failure == SYSTEM_NOT_WELL_FORMED, "saving fails");
    if (failure != NONE) return;
    const RyPtr<RyDocument> again(new RyDocument);
    std::istringstream in(out.str());
    require(failureOf([&] { again->load(in); }) == NONE, "what was saved does not load", out.str());
    requireEqual("another tree is loaded than was saved", expandedContent(*root),
                 expandedContent(*again->getDocumentElement()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteFeed feed(data, size);
    TreeModel model;
    Editor editor(model, feed);
    for (std::size_t i = 0; i < MAX_EDITS && !feed.isEmpty(); ++i) {
        editor.edit();
        model.check();
        const ModelNode& a = model.at(i % model.size());
        model.checkPair(a, model.at(i * 7 % model.size()));
        if (i % 8 == 0) model.checkBelow(a);
    }
    model.checkAllAttributes();
    model.checkBelow(model.at(0));
    checkSaving(model.document());
    return 0;
}
