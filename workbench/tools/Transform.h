#pragma once

#include "system/document/Operator.h"

namespace Marlox {

/// Moves, scales and turns a picture about the point Pivot of the picture. Points are normalised
/// image coordinates with y up. The way from the image's middle (0.5, 0.5) to Centre is how far the
/// picture moves: the pivot comes to Pivot + Centre - (0.5, 0.5), and with the pivot in the middle
/// Centre is where the middle comes to. The angle is in degrees, counterclockwise, measured where
/// pixels are square; Aspect stretches the width alone, before turning. The data window follows the
/// picture, at most half a frame beyond the display window on each side. A value that is not finite
/// leaves nothing of the picture.
class Transform final : public Operator {
public:
    explicit Transform(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
