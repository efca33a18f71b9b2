#pragma once

#include "system/evaluation/Process.h"
#include "system/values/Image.h"

namespace Marlox {

/// The whole number of full-resolution pixels that one proxy pixel stands for at `scale`.
int ProxyDivisor(double scale);

/// The format of an image reduced `divisor` times: windows grow to whole pixels.
Image::Format ReducedFormat(const Image::Format& format, int divisor);

/// The image averaged over squares of `divisor` pixels (those that exist, at the edges). Divisor 1
/// gives the image itself. Null when cancelled.
Ref<Image> ReducedImage(const Ref<Image>& image, int divisor, RenderContext& context);

} // namespace Marlox
