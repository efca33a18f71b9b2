#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The matrix of a custom filter.
class CustomFilterControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
