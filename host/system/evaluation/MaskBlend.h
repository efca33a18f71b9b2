#pragma once

#include "system/evaluation/Process.h"

namespace Marlox {

/// Limits an effect: `effect` where the alpha of `mask` is 1, `before` where it is 0, mixed in
/// between. The frame of the mask lies on that of the effect (FramedMask). The data windows may
/// differ; pixels that an image lacks count as transparent black. A null `before` mixes with
/// nothing.
Ref<Image> BlendByMask(const Ref<Image>& before, const Ref<Image>& effect, const Ref<Image>& mask,
                       RenderContext& context);

} // namespace Marlox
