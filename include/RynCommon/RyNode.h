// Base of the nodes of a document tree.
#pragma once

#include <RynCommon/Forward.h>
#include <RynCommon/RyName.h>
#include <RynCommon/RyObject.h>
#include <RynCommon/RyValue.h>

namespace RynCommon {

/// A node of the tree. A parent holds one reference on each child; creation functions of RyDocument
/// return a counted pointer to a node without a parent; removal hands the parent's reference to the
/// caller. Plain accessors return pointers that do not own. A document must outlive its nodes.
/// Nodes are not synchronised.
///
/// Siblings form a ring: a parent keeps its last child only, whose next link leads back to the
/// first child; previous links end in null at the first child. Editing keeps this, and nothing here
/// recurses over the depth of a tree.
///
/// While a document loads lazily, hasChildNodes, getFirstChild, getLastChild and getNextSibling
/// read on as far as their answer needs, and may throw the parser's errors; the forms that end in
/// Fast read the links only.
class RYNCOMMON_API RyNode : public RyRCObject {
public:
    /// The DOM's numbers.
    enum RyNodeType : std::int32_t {
        ELEMENT_NODE = 1,
        ATTRIBUTE_NODE = 2,
        TEXT_NODE = 3,
        ENTITY_NODE = 6,
        PROCESSING_INSTRUCTION_NODE = 7,
        DOCUMENT_NODE = 9,
        DOCUMENT_TYPE_NODE = 10,
        DOCUMENT_FRAGMENT_NODE = 11,
        NOTATION_NODE = 12
    };

    /// Bits of the flag word.
    enum Flag : std::int32_t {
        FLAG_LOADING = 0,      ///< children are still being read
        FLAG_LOADED = 1,       ///< all children have been read
        FLAG_COMPLEMENTAL = 2  ///< put into the tree, stands for no parsed element
    };

    ~RyNode() override {
        if (last_ != nullptr) releaseChildren();
    }
    /// Nodes lie many to a block of memory, which the last of them gives back.
    static void* operator new(std::size_t size);
    static void operator delete(void* node, std::size_t size) noexcept;
    RyNode(const RyNode&) = delete;
    RyNode& operator=(const RyNode&) = delete;

    static unsigned int getStaticTypeID() { return 0x74DC3393u; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;

    virtual RyNodeType getNodeType() const = 0;

    bool getFlag(int bit) const { return (flags_ >> bit & 1u) != 0; }
    void setFlag(int bit, bool on) {
        flags_ = (flags_ & ~(1u << bit)) | static_cast<std::uint32_t>(on) << bit;
    }
    bool isLoading() const { return getFlag(FLAG_LOADING); }
    bool isLoaded() const { return getFlag(FLAG_LOADED); }

    // Navigation.
    virtual RyNode* getParentNode() const;
    virtual RyNode* getFirstChild() const;
    virtual RyNode* getLastChild() const;
    virtual RyNode* getPreviousSibling() const;
    virtual RyNode* getNextSibling() const;
    virtual bool hasChildNodes() const;
    virtual RyPtr<RyNodeList> getChildNodes() const;
    /// All descendants in document order.
    virtual RyPtr<RyNodeList> getDescendantNodes() const;
    /// Descendant elements by qualified name, in document order.
    virtual RyPtr<RyNodeList> getElementsByTagName(RyName name) const;
    virtual RyPtr<RyNodeList> getElementsByTagNameNS(RyName uri, RyName local) const;
    /// An iterator over the descendants in document order.
    virtual RyNodeIterator getIterator() const;

    RyNode* getParentNodeFast() const { return parent_; }
    RyNode* getFirstChildFast() const {
        fetchAhead();
        return last_ != nullptr ? last_->next_ : nullptr;
    }
    RyNode* getLastChildFast() const { return last_; }
    /// Null for the last child.
    RyNode* getNextSiblingFast() const {
        fetchAhead();
        return parent_ == nullptr || parent_->last_ == this ? nullptr : next_;
    }
    RyNode* getPreviousSiblingFast() const { return previous_; }
    bool hasChildNodesFast() const { return last_ != nullptr; }
    /// The nearest ancestor that is not complemental.
    RyNode* getParentNodeUncomplemental() const;

    // Queries. Names compare by number.
    int getChildNodeCount() const;
    int countPrecedingSiblings() const;
    int countFollowingSiblings() const;
    /// Number of ancestors.
    int getNodeDepth() const;
    /// First child with that qualified name (namespace and local name, type identifier), or null.
    RyNode* getChildNodeByName(RyName name) const;
    RyNode* getChildNodeByNameNS(RyName uri, RyName local) const;
    RyNode* getChildNodeByTypeID(unsigned int id) const;
    /// Nearest ancestor with that name, or null.
    RyNode* getAncestorByName(RyName name) const;
    RyNode* getAncestorOrSelfByName(RyName name) const;
    RyNode* getAncestorByNameNS(RyName uri, RyName local) const;
    RyNode* getAncestorByTypeID(unsigned int id) const;
    /// Nearest node that is an ancestor of both, or null.
    RyNode* getCommonAncestor(const RyNode* other) const;
    /// The same where each node counts as its own ancestor.
    RyNode* getCommonAncestorOrSelf(const RyNode* other) const;
    bool isDescendantOf(const RyNode* other) const;
    bool isDescendantOrSelfOf(const RyNode* other) const;
    /// Whether `other` follows this node in document order without being its descendant.
    bool isPrecedingOf(const RyNode* other) const;
    /// Whether `other` precedes this node without being its ancestor.
    bool isFollowingOf(const RyNode* other) const;
    /// The text of a text node; the texts of all descendant text nodes joined; getText() where
    /// there are no children.
    UnicodeString getInnerText() const;
    /// Position of the start tag in its source; -1 when unknown and for nodes that are no elements.
    int getSourceLineNumber() const;
    int getSourceColumnNumber() const;

    // Names and values.
    /// Qualified name; "#text", "#document", "#document-fragment"; the target of a processing
    /// instruction.
    virtual RyName getNodeName() const;
    virtual RyName getLocalName() const;
    virtual RyName getPrefix() const;
    virtual void setPrefix(RyName prefix);
    virtual RyName getNamespaceUri() const;
    /// A prefix bound to `uri` here, found as in DOM Level 3; the empty name when there is none.
    virtual RyName lookupPrefix(RyName uri) const;
    /// The namespace bound to `prefix` here, found as in DOM Level 3; the empty name when there is
    /// none.
    virtual RyName lookupNamespaceUri(RyName prefix) const;
    virtual bool isDefaultNamespace(RyName uri) const;
    /// The null value for nodes that have none.
    virtual RyValue getNodeValue() const;
    /// Error 2059 for nodes that have no value.
    virtual void setNodeValue(const RyValue& value);
    /// Text of a text node, processing instruction or attribute; empty for others.
    virtual UnicodeString getText() const;
    /// Sets the value to a string; error 2059 as in setNodeValue().
    virtual void setText(const UnicodeString& text);
    virtual RyDocument* getOwnerDocument() const;

    // Classification; overridden by the classes of formatters.
    virtual bool isElementNode() const;
    virtual bool isText() const;
    virtual bool isFO() const;
    virtual bool isRYXO() const;
    virtual bool isArea() const;
    virtual bool isBlock() const;
    virtual bool isInline() const;
    virtual bool isInlineBlock() const;
    virtual bool isNeutral() const;
    virtual bool isOutOfLine() const;

    // Editing. Errors: 2051 a null argument, 2054 a node of another document, 2057 a node that is
    // no child of this one, 2058 a node put under itself or its descendant, or an attribute put
    // among children. The tree is unchanged then. A fragment is linked as the node it is.
    /// Links `newChild` as the last child, out of its old parent; returns it.
    virtual RyNode* appendChild(RyNode* newChild);
    /// What the loader calls. An override may put the child elsewhere or drop it, and returns the
    /// node that took its place or null; the loader skips the content of an element that is not the
    /// one returned.
    virtual RyNode* appendChildEx(RyNode* newChild);
    /// Appends a new text node, and returns it.
    virtual RyNode* appendChildText(const UnicodeString& text);
    /// A null `refChild` appends.
    virtual RyNode* insertBefore(RyNode* newChild, RyNode* refChild);
    /// Returns the old child, now without a parent.
    virtual RyPtr<RyNode> replaceChild(RyNode* newChild, RyNode* oldChild);
    virtual RyPtr<RyNode> removeChild(RyNode* oldChild);
    /// A copy without a parent, of the same document; attributes are always copied, children when
    /// `deep` (by their own shallow cloneNode()). Null for classes that do not define it.
    virtual RyPtr<RyNode> cloneNode(bool deep) const;
    /// Called by the loader after an element's last attribute.
    virtual void finishAttributes();

    /// Unlinks all children; those that others hold stay alive.
    void removeAllChildNodes();
    /// Takes the whole tree below apart and returns the number of nodes destroyed.
    int deleteAllChildNodes();

protected:
    explicit RyNode(RyDocument* owner) : owner_(reinterpret_cast<std::uintptr_t>(owner)) {}

    /// Asks for the memory that a walk in document order needs next. A loaded tree lies in memory
    /// in that order, so what comes soon lies some twenty nodes further on; waiting for it is what
    /// a walk over a large tree spends most of its time with otherwise. Where another thing lies
    /// there, or nothing, the processor drops the request.
    void fetchAhead() const {
#if defined(__GNUC__)
        constexpr std::uintptr_t DISTANCE = 2048, CACHE_LINE = 64;
        const auto ahead = reinterpret_cast<std::uintptr_t>(this) + DISTANCE;
        __builtin_prefetch(reinterpret_cast<const void*>(ahead));
        __builtin_prefetch(reinterpret_cast<const void*>(ahead + CACHE_LINE));
#endif
    }

private:
    friend class ExactNodes;
    friend class NodeLinks;
    friend class PlainTree;
    friend class RyAttr;

    // What the library notes about a node, in the bits that its document's address leaves free; the
    // flag word is its users'.
    static constexpr std::uintptr_t NOTE_EXACT = 3;       // see ExactNodes; 0 for other classes
    static constexpr std::uintptr_t NOTE_TEXT_VALUE = 4;  // an attribute whose value is text
    static constexpr std::uintptr_t NOTES = NOTE_EXACT | NOTE_TEXT_VALUE;

    std::uintptr_t notes(std::uintptr_t which) const {
        return owner_ & which;
    }
    void setNotes(std::uintptr_t which, std::uintptr_t to) {
        owner_ = (owner_ & ~which) | to;
    }
    RyDocument* owner() const {
        return reinterpret_cast<RyDocument*>(owner_ & ~NOTES);
    }

    void releaseChildren();
    RyDocument* factory() const;
    void checkNewChild(const RyNode* newChild, int location) const;

    std::uint32_t flags_ = 0;
    alignas(8) RyNode* parent_ = nullptr;  // so that every node's address has room for notes
    RyNode* next_ = nullptr;
    RyNode* previous_ = nullptr;
    RyNode* last_ = nullptr;
    std::uintptr_t owner_;  // with the notes
};

}  // namespace RynCommon
