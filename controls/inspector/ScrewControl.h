#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A number turned by a thumbwheel.
class ScrewControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
