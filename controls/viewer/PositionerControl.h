#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// A position in space.
class PositionerControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
