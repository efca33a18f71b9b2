#pragma once

#include "system/document/Operator.h"

namespace Marlox {

/// Softens a picture. The sizes are those of the blur's spot at full resolution, in pixels: twice
/// the standard deviation. One pass averages over a box, three come close to a Gaussian, at the
/// same standard deviation. The data window grows by what the blur spreads, unless edges are
/// repeated. Values that are no finite numbers count as 0: one of them would spread over the whole
/// line.
class Blur final : public Operator {
public:
    explicit Blur(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
