#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A tracker's pattern: its picture, its channel and how well it is found.
class PatternControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
