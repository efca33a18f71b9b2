#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// A position marked by a point.
class PointControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
