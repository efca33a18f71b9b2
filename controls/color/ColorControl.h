#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A colour: swatch, field and channel sliders.
class ColorControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
