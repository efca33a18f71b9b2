#pragma once

#include "system/base/Types.h"

#include <shared_mutex>

namespace Marlox {

/// Base of host objects whose content is read under a read lock and changed under a write lock.
/// Locks do not nest: a thread holding one must not take another on the same object.
class LockableObject {
public:
    void ObtainReadLock() const { mutex_.lock_shared(); }
    void ReleaseReadLock() const { mutex_.unlock_shared(); }
    void ObtainWriteLock() const { mutex_.lock(); }
    void ReleaseWriteLock() const { mutex_.unlock(); }

protected:
    LockableObject() = default;
    LockableObject(const LockableObject&) noexcept {} // a copy has a lock of its own
    LockableObject& operator=(const LockableObject&) noexcept { return *this; }
    ~LockableObject() = default;

private:
    mutable std::shared_mutex mutex_;
};

class ReadLock {
public:
    explicit ReadLock(const LockableObject& object) : object_(object) { object_.ObtainReadLock(); }
    ~ReadLock() { object_.ReleaseReadLock(); }
    ReadLock(const ReadLock&) = delete;
    ReadLock& operator=(const ReadLock&) = delete;

private:
    const LockableObject& object_;
};

class WriteLock {
public:
    explicit WriteLock(const LockableObject& object) : object_(object)
    {
        object_.ObtainWriteLock();
    }
    ~WriteLock() { object_.ReleaseWriteLock(); }
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;

private:
    const LockableObject& object_;
};

} // namespace Marlox
