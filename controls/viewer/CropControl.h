#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// The edges of a crop.
class CropControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
