#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A position as two numbers.
class OffsetControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
