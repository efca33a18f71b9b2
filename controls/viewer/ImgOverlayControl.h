#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// A second image laid over the first.
class ImgOverlayControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
