// Run-time type identity, intrusive reference counting and its pointer.
#pragma once

#include <atomic>
#include <cstddef>
#include <utility>

#include <RynCommon/Forward.h>

namespace RynCommon {

/// Root of the polymorphic classes. Each has a fixed 32-bit type identifier that is part of the
/// interface.
class RYNCOMMON_API RyObjectBase {
public:
    virtual ~RyObjectBase() = default;

    static unsigned int getStaticTypeID() { return 0xA4EBD8C4u; }
    /// Identifier of the object's own class.
    virtual unsigned int getTypeID() const = 0;
    /// Whether `id` is the identifier of the object's class or of one of its bases.
    virtual bool isA(unsigned int id) const;
    /// Name of the object's own class, such as "RyNameTable".
    virtual UnicodeString getTypeName() const = 0;

protected:
    RyObjectBase() = default;
    RyObjectBase(const RyObjectBase&) = default;
    RyObjectBase& operator=(const RyObjectBase&) = default;
};

/// An object on the heap that counts its references. A new object, also a copied one, starts at
/// count 0; whoever brings the count below 1 with release() deletes it. Counts change atomically;
/// nothing else here is synchronised.
class RYNCOMMON_API RyRCObject : public RyObjectBase {
public:
    ~RyRCObject() override = default;

    static unsigned int getStaticTypeID() { return 0x90AF0240u; }
    bool isA(unsigned int id) const override;

    /// Adds a reference; returns the new count.
    int addRef() const { return refCount_.fetch_add(1, std::memory_order_relaxed) + 1; }

    /// Drops a reference and deletes the object when none is left; returns the new count.
    int release() const {
        const int count = removeRef();
        if (count < 1) destroy();
        return count;
    }

    /// Drops a reference without ever deleting; returns the new count.
    int removeRef() const {
        if (isHeldOnce()) {  // no atomic step is needed
            refCount_.store(0, std::memory_order_relaxed);
            return 0;
        }
        return refCount_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    }

    int getRefCount() const { return refCount_.load(std::memory_order_relaxed); }

    /// Kept for callers that print instance counts in debugging builds; do nothing.
    static void DebugPrintInstanceCount(const char* title);
    static void DebugPrintInstanceId(const char* title, int id);

protected:
    RyRCObject() = default;
    RyRCObject(const RyRCObject& other) : RyObjectBase(other) {}
    RyRCObject& operator=(const RyRCObject&) { return *this; }

    /// Whether there is one reference, so that whoever holds it is alone with the object.
    bool isHeldOnce() const { return refCount_.load(std::memory_order_acquire) == 1; }
    /// For owners with exclusive access: sets the count.
    void setRefCount(int count) { refCount_.store(count, std::memory_order_relaxed); }
    /// For owners with exclusive access: sets the count to 0.
    void clearRefCount() { setRefCount(0); }
    /// For owners with exclusive access: a decrement that is not atomic; returns the new count.
    int decrementRefCount();

private:
    void destroy() const;

    mutable std::atomic<std::int32_t> refCount_{0};
};

/// A counted pointer to an RyRCObject. Construction from a raw pointer adds a reference; null is
/// allowed.
template <class T>
class RyPtr {
public:
    RyPtr() = default;
    RyPtr(std::nullptr_t) {}
    RyPtr(T* object) : object_(object) { acquire(); }
    RyPtr(const RyPtr& other) : object_(other.object_) { acquire(); }
    RyPtr(RyPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class U>
    RyPtr(const RyPtr<U>& other) : object_(other.get()) {
        acquire();
    }
    ~RyPtr() { drop(object_); }

    /// Takes over a reference that the caller already holds.
    static RyPtr adopt(T* object) {
        RyPtr result;
        result.object_ = object;
        return result;
    }

    RyPtr& operator=(const RyPtr& other) {
        reset(other.object_);
        return *this;
    }
    RyPtr& operator=(RyPtr&& other) noexcept {
        if (this != &other) drop(std::exchange(object_, std::exchange(other.object_, nullptr)));
        return *this;
    }
    RyPtr& operator=(T* object) {
        reset(object);
        return *this;
    }

    T* get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    operator T*() const { return object_; }

    /// Points to `object` instead, with a reference of its own.
    void reset(T* object = nullptr) {
        if (object != nullptr) object->addRef();
        drop(std::exchange(object_, object));
    }
    /// Gives the reference up to the caller and becomes null.
    T* detach() { return std::exchange(object_, nullptr); }

private:
    void acquire() const {
        if (object_ != nullptr) object_->addRef();
    }
    static void drop(T* object) {
        if (object != nullptr) object->release();
    }

    T* object_ = nullptr;
};

}  // namespace RynCommon
