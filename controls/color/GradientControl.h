#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The colours of a gradient and their places.
class GradientControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
