#pragma once

#include "system/values/Image.h"

namespace Marlox {

/// The alpha of an image as a mask for pictures that may have another frame and resolution: their
/// frames (display windows) lie on each other. Clamped to 0 to 1; beyond the data window it is 0.
class MARLOXSYSTEM_EXPORT FramedMask {
public:
    explicit FramedMask(const Ref<Image>& image); // null: none

    /// False: there is no image, or it has no frame.
    bool IsThere() const { return image_ != nullptr; }
    /// Where it may be more than 0, in the pixels of a picture with this frame, pixels with y down.
    MxRect Covered(const MxRect& frame) const;
    /// For `count` pixels of a picture with this frame, from (left, y) on. Where sizes
    /// differ, it is that between the middles of four pixels of the mask.
    void Alphas(const MxRect& frame, int left, int y, float* alphas, int count) const;

private:
    const float* AlphasOf(int y) const;

    Ref<Image> image_;
};

} // namespace Marlox
