// Elements, attributes and the map of them.
#pragma once

#include <vector>

#include <RynCommon/RyNode.h>
#include <RynCommon/RyString.h>

namespace RynCommon {

class AttrNodeMap;

/// An attribute: a name and a value. Belongs to at most one element, and is no child of it: it has
/// no parent and no siblings. New ones have the null value.
class RYNCOMMON_API RyAttr : public RyNode {
public:
    static unsigned int getStaticTypeID() { return 0xC5B6A2E2u; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;
    RyNodeType getNodeType() const override { return ATTRIBUTE_NODE; }

    RyName getNodeName() const override;
    RyName getLocalName() const override { return local_; }
    RyName getPrefix() const override { return prefix_; }
    void setPrefix(RyName prefix) override;
    RyName getNamespaceUri() const override { return uri_; }
    /// An attribute has no siblings; getNextAttribute() leads through those of an element.
    RyNode* getPreviousSibling() const override { return nullptr; }
    RyValue getNodeValue() const override;
    void setNodeValue(const RyValue& value) override;
    /// The value's text form.
    UnicodeString getText() const override;
    /// Sets the value to a string of unknown sort.
    void setText(const UnicodeString& text) override;
    /// Replaces the text of `text`, whose buffer is used again.
    void copyTextTo(UnicodeString& text) const;
    /// The units of the value's text form as `buffer` shows them: the quick way to read many.
    std::u16string_view readText(RyTextBuffer& buffer) const {
        return holdsText() ? buffer.read(text_) : buffer.read(getText());
    }
    /// The text of a value that is a string of unknown sort.
    const RyCompactText& getCompactText() const { return text_; }
    /// Whether the value is a string of unknown sort, which is kept as text alone.
    bool holdsText() const { return notes(NOTE_TEXT_VALUE) != 0; }
    RyPtr<RyNode> cloneNode(bool deep) const override;

    /// Null while the attribute belongs to none.
    RyElement* getOwnerElement() const;
    /// Next attribute of the element, or null.
    RyAttr* getNextAttribute() const;

protected:
    friend class ExactNodes;
    friend class PlainTree;
    RyAttr(RyDocument* owner, RyName uri, RyName prefix, RyName local)
        : RyNode(owner), uri_(uri), prefix_(prefix), local_(local) {}

private:
    friend class AttrNodeMap;

    void setUnits(std::u16string_view text);

    RyName uri_;
    RyName prefix_;
    RyName local_;
    mutable RyName qname_;  // made on first need
    RyValue value_;         // null while text_ holds the value
    RyCompactText text_;
    AttrNodeMap* map_ = nullptr;  // the map it is linked in
};

/// Attributes of one element in the order in which they were first set.
class RYNCOMMON_API RyNamedNodeMap : public RyRCObject {
public:
    static unsigned int getStaticTypeID() { return 0x953D7483u; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;

    virtual int getLength() const = 0;
    /// The attribute at `index`, or null.
    virtual RyNode* item(int index) const = 0;
    /// By qualified name; by namespace and local name. Null when there is none.
    virtual RyNode* getNamedItem(RyName name) const = 0;
    virtual RyNode* getNamedItemNS(RyName uri, RyName local) const = 0;
    /// Puts an attribute in, in the place of one of the same name, which is returned. Errors: 2051
    /// null, 2055 no attribute, 2056 it belongs to another element, 2054 it belongs to another
    /// document (argument "newAttr").
    virtual RyPtr<RyNode> setNamedItem(RyNode* node) = 0;
    virtual RyPtr<RyNode> setNamedItemNS(RyNode* node) = 0;
    /// Takes the attribute out and returns it; null when there is none.
    virtual RyPtr<RyNode> removeNamedItem(RyName name) = 0;
    virtual RyPtr<RyNode> removeNamedItemNS(RyName uri, RyName local) = 0;
};

/// An element: a name, attributes and children.
class RYNCOMMON_API RyElement : public RyNode {
public:
    ~RyElement() override {
        if (attributes_ != nullptr) releaseAttributes();
    }

    static unsigned int getStaticTypeID() { return 0xD31942AAu; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;
    RyNodeType getNodeType() const override { return ELEMENT_NODE; }
    bool isElementNode() const override { return true; }

    RyName getNodeName() const override;
    RyName getLocalName() const override { return local_; }
    RyName getPrefix() const override { return prefix_; }
    void setPrefix(RyName prefix) override;
    RyName getNamespaceUri() const override { return uri_; }
    RyPtr<RyNode> cloneNode(bool deep) const override;

    void setSourceLineNumber(int line) { line_ = line; }
    void setSourceColumnNumber(int column) { column_ = column; }
    int getElementLineNumber() const { return line_; }
    int getElementColumnNumber() const { return column_; }

    // Attributes, by qualified name or by namespace and local name.
    /// The null value when absent.
    virtual RyValue getAttribute(RyName name) const;
    virtual RyValue getAttributeNS(RyName uri, RyName local) const;
    /// Replaces the value in place, or adds the attribute as the last one. A name given whole is
    /// not split: such an attribute has no prefix and no namespace. The forms with a namespace also
    /// give an attribute that exists the new prefix.
    virtual void setAttribute(RyName name, const RyValue& value);
    virtual void setAttributeNS(RyName uri, RyName qname, const RyValue& value);
    virtual void setAttributeNS(RyName uri, RyName prefix, RyName local, const RyValue& value);
    /// What the loader calls: the value as text.
    virtual void setAttributeEx(RyName uri, RyName prefix, RyName local,
                                const UnicodeString& value);
    virtual void removeAttribute(RyName name);
    virtual void removeAttributeNS(RyName uri, RyName local);
    virtual bool hasAttribute(RyName name) const;
    virtual bool hasAttributeNS(RyName uri, RyName local) const;
    /// In any namespace.
    virtual bool hasAttributeLocal(RyName local) const;
    virtual bool hasAttributes() const;
    virtual RyAttr* getAttributeNode(RyName name) const;
    virtual RyAttr* getAttributeNodeNS(RyName uri, RyName local) const;
    /// Put an attribute in, in the place of one of the same name, which is returned; one that is in
    /// already is returned itself. Errors as in RyNamedNodeMap.
    virtual RyPtr<RyAttr> setAttributeNode(RyAttr* attr);
    virtual RyPtr<RyAttr> setAttributeNodeNS(RyAttr* attr);
    /// Takes an attribute out and returns it; null when it is not this element's. Error 2051 for
    /// null.
    virtual RyPtr<RyAttr> removeAttributeNode(RyAttr* attr);
    /// Collect every attribute with that local name, in any namespace, in order.
    virtual void getAttributeLocal(RyName local, std::vector<RyValue>* values) const;
    virtual void getAttributeNodeLocal(RyName local, std::vector<RyPtr<RyAttr>>* attrs) const;
    /// The map; lives as long as the element or a counted pointer to it.
    virtual RyNamedNodeMap* getAttributes() const;
    /// First attribute, or null; RyAttr::getNextAttribute() leads on.
    RyAttr* getFirstAttribute() const {
        return attributes_ != nullptr ? firstOfAttributes() : nullptr;
    }

protected:
    friend class ExactNodes;
    friend class NodeCloner;
    friend class PlainTree;
    RyElement(RyDocument* owner, RyName uri, RyName prefix, RyName local)
        : RyNode(owner), uri_(uri), prefix_(prefix), local_(local) {}

private:
    AttrNodeMap& attributes() const;
    void releaseAttributes();
    RyAttr* firstOfAttributes() const;

    std::int32_t line_ = -1;
    std::int32_t column_ = -1;
    mutable AttrNodeMap* attributes_ = nullptr;  // made on first need; one reference held
    RyName uri_;
    RyName prefix_;
    RyName local_;
    mutable RyName qname_;  // made on first need
};

}  // namespace RynCommon
