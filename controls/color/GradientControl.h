#pragma once

#include "framework/GenericInputControl.h"
#include "system/values/Gradient.h"

namespace Marlox {

/// The colours of a gradient and their places.
class GradientControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    /// Sets the colour of the selected stop at `time`; false: none is selected.
    bool SetSelectedColor(const GradientColor& color, double time);

    std::size_t SizeOf() const override;
};

} // namespace Marlox
