#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>

namespace Marlox {

/// A place where a widget keeps a picture that it painted until the picture is out of date.
///
/// A paint takes what is in the slot, and puts it back when it has drawn it; meanwhile a marker
/// stands in the slot, and whoever else wants it, from any thread, yields until that is gone. So
/// discarding never frees a picture that is being drawn. A thread that holds a slot must not ask
/// for it again.
template <class Picture>
class ImageSlot {
public:
    /// The slot's picture while it is drawn.
    class Hold {
    public:
        explicit Hold(ImageSlot& slot) : slot_(slot), picture_(slot.Take()) {}
        ~Hold() { slot_.PutBack(picture_.release()); }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

        explicit operator bool() const { return picture_ != nullptr; }
        Picture& operator*() const { return *picture_; }
        Picture* operator->() const { return picture_.get(); }
        void Set(Picture picture) { picture_ = std::make_unique<Picture>(std::move(picture)); }

    private:
        ImageSlot& slot_;
        std::unique_ptr<Picture> picture_;
    };

    ImageSlot() = default;
    ~ImageSlot() { Discard(); }
    ImageSlot(const ImageSlot&) = delete;
    ImageSlot& operator=(const ImageSlot&) = delete;

    /// Empties the slot, once no one draws what is in it.
    void Discard()
    {
        const std::unique_ptr<Picture> old(Take());
        PutBack(nullptr);
    }

private:
    static Picture* Busy() { return reinterpret_cast<Picture*>(std::uintptr_t(1)); }

    Picture* Take()
    {
        Picture* taken = picture_.exchange(Busy());
        while (taken == Busy()) {
            std::this_thread::yield();
            taken = picture_.exchange(Busy());
        }
        return taken;
    }
    void PutBack(Picture* picture) { picture_.exchange(picture); }

    std::atomic<Picture*> picture_ = nullptr;
};

} // namespace Marlox
