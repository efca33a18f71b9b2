#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The ranges of shadows, midtones and highlights, as curves of their weights.
class ColorRangesControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
