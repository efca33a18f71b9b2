#pragma once

#include "system/document/Operator.h"

namespace Marlox {

/// Moves, scales and turns a picture. The middle of the source's frame comes to (Centre X, Centre
/// Y), normalised image coordinates with y up; the angle is in degrees, counterclockwise; Aspect
/// stretches the width alone. The data window follows the picture, at most half a frame beyond the
/// display window on each side.
class Transform final : public Operator {
public:
    explicit Transform(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

enum class TransformFilter { Nearest, Bilinear, Bicubic };

} // namespace Marlox
