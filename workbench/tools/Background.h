#pragma once

#include "system/document/Operator.h"

namespace Marlox {

/// A picture of one colour, 1920 x 1080 pixels.
class Background final : public Operator {
public:
    explicit Background(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

} // namespace Marlox
