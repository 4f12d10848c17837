// The ordered map of named values, and its cursor.
#include <algorithm>
#include <memory>
#include <utility>

#include <RynCommon/RyNamedValue.h>

#include "core/NamedValueMapRep.h"

namespace RynCommon {

namespace {

bool isNameBelow(const RyNamedValue& entry, RyName name) {
    return RyNameEnum(entry.getName()) < RyNameEnum(name);
}

}  // namespace

RyNamedValueMap::Rep::Entries::iterator RyNamedValueMap::Rep::lowerBound(RyName name) {
    return std::lower_bound(entries.begin(), entries.end(), name, isNameBelow);
}

RyNamedValueMap::Rep::Entries::iterator RyNamedValueMap::Rep::find(RyName name) {
    const Entries::iterator at = lowerBound(name);
    return at != entries.end() && at->getName() == name ? at : entries.end();
}

RyNamedValueMap::RyNamedValueMap() : rep_(std::make_unique<Rep>()) {}

// A map may hold compounds that hold maps, to any depth. A map that dies while another is being
// taken down on this thread only queues its entries, so that the depth of the stack does not follow
// the depth of the values. The queue is linked through the entries' own storage: nothing is
// allocated here.
RyNamedValueMap::~RyNamedValueMap() {
    constinit thread_local std::unique_ptr<Rep>* queue = nullptr;
    if (queue != nullptr) {
        rep_->nextDying = std::move(*queue);
        *queue = std::move(rep_);
        return;
    }
    std::unique_ptr<Rep> dying = std::move(rep_);
    queue = &dying;
    while (dying != nullptr) {
        const std::unique_ptr<Rep> current = std::exchange(dying, std::move(dying->nextDying));
        current->entries.clear();
    }
    queue = nullptr;
}

unsigned int RyNamedValueMap::getTypeID() const {
    return getStaticTypeID();
}

bool RyNamedValueMap::isA(unsigned int id) const {
    return id == getStaticTypeID() || RyRCObject::isA(id);
}

UnicodeString RyNamedValueMap::getTypeName() const {
    return UnicodeString(u"RyNamedValueMap");
}

int RyNamedValueMap::getCount() const {
    return static_cast<int>(rep_->entries.size());
}

void RyNamedValueMap::setNamedItem(const RyNamedValue& item) {
    const Rep::Entries::iterator at = rep_->lowerBound(item.getName());
    if (at != rep_->entries.end() && at->getName() == item.getName())
        *at = item;
    else
        rep_->entries.insert(at, item);
}

void RyNamedValueMap::setNamedItem(RyName name, const RyValue& value) {
    setNamedItem(RyNamedValue(value, name));
}

RyNamedValue RyNamedValueMap::getNamedItem(RyName name) const {
    const Rep::Entries::const_iterator at = rep_->find(name);
    return at != rep_->entries.end() ? *at : RyNamedValue::NULL_VALUE;
}

RyNamedValue RyNamedValueMap::item(int index) const {
    if (index < 0 || index >= getCount()) return RyNamedValue::NULL_VALUE;
    return rep_->entries[static_cast<std::size_t>(index)];
}

void RyNamedValueMap::removeNamedItem(RyName name) {
    const Rep::Entries::iterator at = rep_->find(name);
    if (at != rep_->entries.end()) rep_->entries.erase(at);
}

void RyNamedValueMap::removeNamedItem(RyName name, const RyValue& value) {
    const Rep::Entries::iterator at = rep_->find(name);
    if (at != rep_->entries.end() && *at == value) rep_->entries.erase(at);
}

RyPtr<RyNamedValueMap> RyNamedValueMap::clone() const {
    RyPtr<RyNamedValueMap> copy(new RyNamedValueMap());
    copy->rep_->entries = rep_->entries;
    return copy;
}

RyNamedValueMapIterator::RyNamedValueMapIterator(const RyNamedValueMap* map) : map_(map) {}

bool RyNamedValueMapIterator::hasNext() const {
    return map_ != nullptr && position_ < map_->rep_->entries.size();
}

bool RyNamedValueMapIterator::hasPrevious() const {
    return map_ != nullptr && position_ > 0 && !map_->rep_->entries.empty();
}

const RyNamedValue& RyNamedValueMapIterator::next() {
    return hasNext() ? map_->rep_->entries[position_++] : RyNamedValue::NULL_VALUE;
}

const RyNamedValue& RyNamedValueMapIterator::previous() {
    if (!hasPrevious()) return RyNamedValue::NULL_VALUE;
    // Entries may have gone since the cursor passed them.
    position_ = std::min(position_, map_->rep_->entries.size()) - 1;
    return map_->rep_->entries[position_];
}

void RyNamedValueMapIterator::setToStart() {
    position_ = 0;
}

void RyNamedValueMapIterator::setToEnd() {
    position_ = map_ != nullptr ? map_->rep_->entries.size() : 0;
}

}  // namespace RynCommon
