#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// A distance from an axis.
class XYOffsetControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
