#pragma once

#include "framework/GenericPreviewControl.h"

namespace Marlox {

/// The points and handles of a shape. Registered as "PolylineControl", the spelling that scenes and
/// scripts know.
class PolyLineControl final : public GenericPreviewControl {
public:
    using GenericPreviewControl::GenericPreviewControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
