#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The low, middle and high level of the input, below its histogram.
class LevelsControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
