// The attributes of one element.
#pragma once

#include <RynCommon/RyElement.h>

#include <memory>

#include "core/SlabMemory.h"
#include "xml/tree/NodeLinks.h"

namespace RynCommon {

class AttrIndex;

/// The map of an element's attributes, which holds a reference on each. Most elements have few, so
/// that the map is a ring of nodes with 64 bits in which a look-up by local name mostly sees that
/// there is no such attribute; above FEW attributes an index takes the place of these bits.
class AttrNodeMap final : public RyNamedNodeMap {
public:
    explicit AttrNodeMap(RyElement* element) : element_(element) {}
    /// One with a first reference.
    static AttrNodeMap* make(RyElement* element) {
        AttrNodeMap* const map = new AttrNodeMap(element);
        map->setRefCount(1);
        return map;
    }
    ~AttrNodeMap() override;
    static void* operator new(std::size_t size) { return SlabMemory::allocate(size); }
    static void operator delete(void* map, std::size_t size) noexcept {
        SlabMemory::release(map, size);
    }
    AttrNodeMap(const AttrNodeMap&) = delete;
    AttrNodeMap& operator=(const AttrNodeMap&) = delete;

    int getLength() const override { return count_; }
    RyNode* item(int index) const override;
    RyNode* getNamedItem(RyName name) const override { return find(name); }
    RyNode* getNamedItemNS(RyName uri, RyName local) const override { return findNS(uri, local); }
    RyPtr<RyNode> setNamedItem(RyNode* node) override;
    RyPtr<RyNode> setNamedItemNS(RyNode* node) override;
    RyPtr<RyNode> removeNamedItem(RyName name) override;
    RyPtr<RyNode> removeNamedItemNS(RyName uri, RyName local) override;

    /// Null once the element is gone.
    RyElement* element() const { return element_; }
    void forgetElement() { element_ = nullptr; }

    RyAttr* first() const {
        return last_ != nullptr ? static_cast<RyAttr*>(NodeLinks::next(*last_)) : nullptr;
    }
    RyAttr* next(const RyAttr& attr) const {
        return &attr != last_ ? static_cast<RyAttr*>(NodeLinks::next(attr)) : nullptr;
    }
    /// The first attribute of a qualified name, or of a namespace and local name; null when there
    /// is none.
    RyAttr* find(RyName name) const;
    RyAttr* findNS(RyName uri, RyName local) const;
    bool holds(const RyAttr& attr) const { return attr.map_ == this; }
    /// Takes a free attribute in as the last one.
    void append(RyPtr<RyAttr> attr) {
        if (count_ < FEW)
            filter_ |= filterBit(attr->local_);
        else
            addToIndex(*attr);
        RyAttr* const node = attr.detach();
        NodeLinks::linkLast(last_, *node);
        node->map_ = this;
        ++count_;
    }
    /// Takes an attribute of this map out.
    RyPtr<RyAttr> remove(RyAttr& attr);
    /// The qualified name of an attribute has changed.
    void nameChanged();

private:
    static constexpr std::int32_t FEW = 16;

    static std::uint64_t filterBit(RyName local) {
        return std::uint64_t{1} << (static_cast<std::uint32_t>(RyNameEnum(local)) * 0x9E3779B1u >>
                                    26);
    }
    bool hasIndex() const { return count_ > FEW; }
    template <class Test>
    RyAttr* search(Test matches) const;
    void checkNewItem(const RyNode* node, int location) const;
    RyPtr<RyNode> put(RyAttr& attr, RyAttr* old);
    void addToIndex(RyAttr& attr);
    std::unique_ptr<AttrIndex> makeIndex() const;
    void dropIndex();

    std::int32_t count_ = 0;
    RyElement* element_;
    RyNode* last_ = nullptr;  // of the ring
    union {
        std::uint64_t filter_ = 0;  // the bits of all local names, while count_ <= FEW
        AttrIndex* index_;          // owned, while count_ > FEW
    };
};

}  // namespace RynCommon
