#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// The mesh of a grid warp.
class MeshControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
