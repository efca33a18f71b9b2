#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The low and high level of the output, below a gradient.
class LevelsOutputControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
