#pragma once

#include "controls/viewer/TransformControl.h"

namespace Marlox {

/// The camera of a scene: a transformation with a viewing frustum.
class CameraControl final : public TransformControl {
public:
    using TransformControl::TransformControl;
    std::size_t SizeOf() const override;
};

} // namespace Marlox
