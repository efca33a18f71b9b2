#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// A number on a slider drawn in the view.
class SliderOverlay final : public GenericOverlay<OverlayControl> {
public:
    using GenericOverlay<OverlayControl>::GenericOverlay;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
