#pragma once

#include "system/document/Operator.h"

namespace Marlox {

/// Lays a soft shadow of the picture's alpha under it. The shadow is scaled by Size about the point
/// Origin (normalised image coordinates, y up), which then comes to Origin + (Offset X, Offset Y),
/// fractions of the image's width and height. Softness is the blur's spot in pixel widths at full
/// resolution, twice the standard deviation, at most 500; it is round where pixels are square. The
/// data window grows to hold the shadow; its sharp form reaches at most half a frame beyond the
/// display window.
class DropShadow final : public Operator {
public:
    explicit DropShadow(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
