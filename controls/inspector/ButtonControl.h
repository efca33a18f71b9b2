#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A button that runs an action of the tool.
class ButtonControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
