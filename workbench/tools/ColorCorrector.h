#pragma once

#include "system/document/Operator.h"

namespace Marlox {

/// Corrects the colours of a picture as a whole and, besides, those of its shadows, midtones and
/// highlights: hue, saturation, tint, and how much stays of six hues' saturation (see Corrector).
/// What counts as which is for the curves to say. Luminance stays as it is.
class ColorCorrector final : public Operator {
public:
    explicit ColorCorrector(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
