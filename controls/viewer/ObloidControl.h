#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// A box in space. Registered as "CubeControl", the name by which scenes know it.
class ObloidControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
