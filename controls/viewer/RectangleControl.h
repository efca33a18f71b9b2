#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// A rectangle with centre, size and angle.
class RectangleControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
