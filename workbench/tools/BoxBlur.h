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

/// One channel of a picture, a float a pixel.
struct AlphaPlane {
    MxRect window;   // as a data window
    Ref<Image> rows; // four neighbours of a row as the channels of a pixel; null when cancelled

    /// Row `y` of the window, from 0 at the top: Width() floats.
    const float* Row(int y) const { return rows->Row(y); }
};

/// Zeroed rows for a plane with this window.
Ref<Image> PlaneRows(const MxRect& window);

/// A plane softened. The window grows by what the blur spreads; edges are not repeated. Values that
/// are not within 0 and 1 are limited, not a number is 0.
AlphaPlane Blurred(const AlphaPlane& plane, const BlurSize& size, RenderContext& context,
                   double from, double to);

/// The alpha of an image alone, limited to 0 and 1 (not a number is 0) and softened, in a quarter
/// of the time. The window grows by what the blur spreads; edges are not repeated.
AlphaPlane BlurredAlpha(const Image& image, const BlurSize& size, RenderContext& context,
                        double from, double to);

} // namespace Marlox
