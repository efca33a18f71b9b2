#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The histogram of an image.
class HistogramControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
