#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// A low and a high value on one track.
class RangeControl final : public GenericInputControl {
public:
    using GenericInputControl::GenericInputControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
