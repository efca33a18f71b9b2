#pragma once

#include "system/document/Operator.h"

namespace Marlox {

enum class GradientShape { Linear, Radial };

/// Lays a gradient between two colours over the picture or behind it; without one it is a source of
/// 1920 x 1080 pixels. Linear runs from Start to End; radial is the start's colour at
/// Start and the end's from a circle through End on. Points are normalised image coordinates with y
/// up; distances are measured where pixels are square. Colours blend with alpha multiplied in. The
/// gradient fills the display window and the picture's data window.
class ColorGradient final : public Operator {
public:
    explicit ColorGradient(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
