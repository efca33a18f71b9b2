#pragma once

#include "system/document/MarloxDoc.h"
#include "system/viewer/PreviewControl.h"

#include <utility>

namespace Marlox {

/// A further input that an overlay reads but does not write (the point it is joined to, a centre, a
/// radius). The overlay listens to it from Attach to Detach and owns one of these for each, as a
/// member; changes arrive as the overlay's NotifyChanged, which compares with Get().
///
/// Overlay must make PreviewControl's Listen and StopListening callable: SecondInput is its friend.
template <class Overlay>
class SecondInput {
public:
    explicit SecondInput(Overlay& overlay) : overlay_(overlay) {}
    ~SecondInput() { Detach(); }
    SecondInput(const SecondInput&) = delete;
    SecondInput& operator=(const SecondInput&) = delete;

    Input* Get() const { return input_; } // null: none
    bool Is(const Input* input) const { return input && input == input_; }

    /// Takes the input that the tags tell: by its id, where that tag is present and the overlay has
    /// a tool (an id that the tool does not have yields none); else by the pointer, and without
    /// that tag the one it has. An id tag of 0 means that there is none. An address that is no
    /// input of the document's tools is none: the tags may have outlived the tool.
    void ReadFrom(const TagList& tags, u32 idTag, u32 pointerTag)
    {
        Operator* tool = overlay_.GetOperator(nullptr);
        if (idTag != 0 && tool && tags.FindQuery(idTag))
            Attach(tool->FindInput(tags.GetID(idTag)));
        else
            Attach(InputAt(tags.GetPtr(pointerTag, input_)));
    }

    /// Null detaches.
    void Attach(Input* input)
    {
        if (input == input_)
            return;
        Detach();
        input_ = input;
        if (input)
            overlay_.Listen(input);
    }

    void Detach()
    {
        if (Input* const input = std::exchange(input_, nullptr))
            overlay_.StopListening(input);
    }

    /// For RemoveInput: whether it was this one, which is detached then.
    bool Forget(const Input* input)
    {
        const bool mine = Is(input);
        if (mine)
            Detach();
        return mine;
    }

private:
    Input* InputAt(const void* address) const
    {
        if (!address || address == input_)
            return address ? input_ : nullptr;
        const auto find = [address](const Operator* tool) -> Input* {
            for (const Ref<Input>& input : tool->Inputs()) {
                if (input.Get() == address)
                    return input.Get();
            }
            return nullptr;
        };
        Operator* const own = overlay_.GetOperator(nullptr);
        Input* found = own ? find(own) : nullptr;
        if (MarloxDoc* const document = found ? nullptr : overlay_.GetDoc()) {
            for (const Ref<Operator>& tool : document->Tools())
                found = found ? found : find(tool.Get());
        }
        return found;
    }

    Overlay& overlay_;
    Input* input_ = nullptr; // kept alive by the overlay's base while it listens
};

} // namespace Marlox
