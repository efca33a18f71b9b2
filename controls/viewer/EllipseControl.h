#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// An ellipse with centre, size and angle.
class EllipseControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
