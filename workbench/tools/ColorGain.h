#pragma once

#include "system/document/Operator.h"

namespace Marlox {

/// Multiplies the channels of a picture. With u and v from 0 to 1 across the picture's width and
/// height (v upwards, at the middle of each pixel, in the display window) and a its alpha, a
/// pixel's red, green and blue are multiplied by
///
///     1 + (gain * max(1 + U (u - 1/2), 0) * max(1 + V (v - 1/2), 0) - 1) * (1 - C + C a)
///
/// so that U and V let the gain rise across the picture (2 from nothing at one side to twice as
/// much at the other), and the coverage C takes it back where the picture covers little. Alpha is
/// multiplied by its gain in the same way, but for U and V, up to 1 at most; what it covers goes
/// with it.
class ColorGain final : public Operator {
public:
    explicit ColorGain(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
