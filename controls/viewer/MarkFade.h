#pragma once

#include "system/viewer/PreviewInfo.h"

#include <algorithm>

namespace Marlox {

/// How much a mark stands out: fully (1) while the pointer is on it or it is being dragged, and
/// then less with each hit test, in steps of 0.05, until it is at rest (0.5). A view tests and
/// draws a fading mark every 16 ms, so that it comes to rest within a sixth of a second.
class MarkFade {
public:
    /// For every hit test.
    void Step(bool hit)
    {
        if (!hit)
            factor_ = std::max(rest, factor_ - step);
    }

    /// For every drawing: the brightness of colours, 0.8 at rest so that a mark stays well visible
    /// on any picture. `lit`: the pointer is on the mark, or it is being dragged.
    double Brightness(PreviewInfo& view, bool lit)
    {
        if (lit)
            factor_ = 1.0F;
        else if (factor_ > rest && view.drawMode == DrawIdle) // drags hold the hit tests up
            view.isFading = true;
        return 0.6 + 0.4 * double(factor_);
    }

private:
    static constexpr float rest = 0.5F;
    static constexpr float step = 0.05F;

    float factor_ = rest;
};

} // namespace Marlox
