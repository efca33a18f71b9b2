#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// How far each of six hues is suppressed.
class ColorSuppressionControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
