// The roots of the class tree.
#include <RynCommon/RyObject.h>

namespace RynCommon {

bool RyObjectBase::isA(unsigned int id) const {
    return id == RyObjectBase::getStaticTypeID();
}

bool RyRCObject::isA(unsigned int id) const {
    return id == RyRCObject::getStaticTypeID() || RyObjectBase::isA(id);
}

void RyRCObject::DebugPrintInstanceCount(const char*) {}
void RyRCObject::DebugPrintInstanceId(const char*, int) {}

int RyRCObject::decrementRefCount() {
    const std::int32_t count = refCount_.load(std::memory_order_relaxed) - 1;
    refCount_.store(count, std::memory_order_relaxed);
    return count;
}

void RyRCObject::destroy() const {
    delete this;
}

}  // namespace RynCommon
