#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// Position, rotation and size in space.
class TransformControl : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
