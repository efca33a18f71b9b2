#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A colour gamut: its primaries and white point.
class ColorGamutControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
