#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// Hue and saturation on a wheel, for several ranges of tone.
class ColorWheelControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
