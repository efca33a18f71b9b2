#pragma once

#include "controls/viewer/TransformControl.h"

namespace Marlox {

/// A light of a scene: a transformation with a cone.
class LightControl final : public TransformControl {
public:
    using TransformControl::TransformControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
