#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The curve of a gamma.
class GammaControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
