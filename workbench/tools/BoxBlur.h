#pragma once

#include "system/evaluation/Process.h"

namespace Marlox {

/// How far and how a picture is softened.
struct BlurSize {
    double deviationX = 0.0; // standard deviations in the image's own pixels; at most 1000
    double deviationY = 0.0;
    int passes = 3;           // 1 averages over a box, three come close to a Gaussian
    bool repeatEdges = false; // else the data window grows by what the blur spreads
};

/// The image softened, or itself where there is nothing to do. Values that are not finite count as
/// 0. The work counts as the part `from` to `to` of the tool's. Null when cancelled.
Ref<Image> Blurred(const Ref<Image>& image, const BlurSize& size, RenderContext& context,
                   double from = 0.0, double to = 1.0);

} // namespace Marlox
