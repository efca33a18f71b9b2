#pragma once

#include "system/base/Types.h"

#include <type_traits>

namespace Marlox {

/// Scoped holder of one reference to a RefObject. Objects are born with one reference that belongs
/// to whoever made them: `Ref<T>(new T(...))` takes it over; `Share(p)` adds one of its own.
template <class T>
class Ref {
public:
    constexpr Ref() noexcept = default;
    constexpr Ref(std::nullptr_t) noexcept {}
    /// Takes over a reference that the caller owns.
    explicit Ref(T* adopted) noexcept : object_(adopted) {}
    Ref(const Ref& other) : object_(other.object_) { Hold(); }
    Ref(Ref&& other) noexcept : object_(other.Release()) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other) : object_(other.Get())
    {
        Hold();
    }
    template <class U>
    requires std::is_convertible_v<U*, T*> Ref(Ref<U>&& other)
    noexcept : object_(other.Release()) {}
    ~Ref()
    {
        if (object_)
            object_->DecRef();
    }

    Ref& operator=(Ref other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }

    /// A holder with a reference of its own to an object that somebody else owns too.
    static Ref Share(T* object)
    {
        Ref made(object);
        made.Hold();
        return made;
    }

    T* Get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Gives the reference to the caller and forgets the object.
    [[nodiscard]] T* Release() noexcept { return std::exchange(object_, nullptr); }

    friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.object_ == b.object_; }

private:
    void Hold()
    {
        if (object_)
            object_->IncRef();
    }

    T* object_ = nullptr;
};

template <class T, class... Args>
Ref<T> MakeRef(Args&&... args)
{
    return Ref<T>(new T(std::forward<Args>(args)...));
}

} // namespace Marlox
