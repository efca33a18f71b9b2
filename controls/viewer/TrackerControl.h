#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// A tracker's pattern and search rectangles.
class TrackerControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
