#pragma once

#include "system/evaluation/FramedMask.h"

namespace Marlox {

/// How the mask of a shape joins the one it lies on. Both strengths are 0 to 1.
enum class MaskCombine {
    Add,        // the stronger one
    Subtract,   // the one it lies on, less its own
    Intersect,  // the weaker one
    Difference, // how far they differ
};

/// The mask that another one lies on: the alpha of an image.
class MaskBase {
public:
    /// Without an image it is nothing to lie on. `hasOwn`: there is a mask to join it; else the
    /// base stays as it is.
    MaskBase(const Ref<Image>& image, MaskCombine combine, bool hasOwn);

    bool IsThere() const { return mask_.IsThere(); }
    /// Where the result may be more than 0, in the pixels of `format`; `own` is where the mask is.
    MxRect Covered(const Image::Format& format, const MxRect& own) const;
    /// Joins a row's strengths, from column `left` on, to the base in place.
    void Join(const Image::Format& format, int left, int y, float* strengths, int count) const;

private:
    FramedMask mask_;
    MaskCombine combine_;
};

} // namespace Marlox
