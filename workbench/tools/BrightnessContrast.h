#pragma once

#include "system/document/Operator.h"

namespace Marlox {

/// Grades a picture: for the colours without alpha, in this order,
///
///     v * (gain - lift) + lift          lift raises black and leaves 1 where gain puts it
///     v ^ (1 / gamma)                   above 0
///     (v - pivot) * (1 + contrast) + pivot
///     luma + (v - luma) * saturation    luma of Rec. 709
///     rounded to steps                  posterise; values above 1 get further steps
///     cut at 0 or 1                     where asked for
///
/// Where alpha is 0 light without cover is only multiplied by gain. With all values at their
/// defaults the picture passes through untouched.
class BrightnessContrast final : public Operator {
public:
    explicit BrightnessContrast(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
