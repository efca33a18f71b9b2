#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A clip of images: its file, its length and the range used.
class ClipControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
