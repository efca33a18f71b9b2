#include "workbench/tools/MaskBase.h"

#include "workbench/tools/ImageWindows.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Marlox {

namespace {

float joined(MaskCombine combine, float own, float base)
{
    switch (combine) {
    case MaskCombine::Subtract:
        return std::max(base - own, 0.0f);
    case MaskCombine::Intersect:
        return std::min(base, own);
    case MaskCombine::Difference:
        return std::abs(base - own);
    default:
        return std::max(base, own);
    }
}

} // namespace

MaskBase::MaskBase(const Ref<Image>& image, MaskCombine combine, bool hasOwn)
    : mask_(image), combine_(hasOwn ? combine : MaskCombine::Add)
{
}

MxRect MaskBase::Covered(const Image::Format& format, const MxRect& own) const
{
    if (!IsThere())
        return own;
    const MxRect base = mask_.Covered(format.displayWindow);
    switch (combine_) {
    case MaskCombine::Subtract:
        return base;
    case MaskCombine::Intersect:
        return Shared(base, own);
    default:
        return United(base, own);
    }
}

void MaskBase::Join(const Image::Format& format, int left, int y, float* strengths, int count) const
{
    if (!IsThere())
        return;
    std::array<float, 512> alphas;
    for (int done = 0; done < count; done += int(alphas.size())) {
        const int some = std::min(count - done, int(alphas.size()));
        mask_.Alphas(format.displayWindow, left + done, y, alphas.data(), some);
        for (int i = 0; i < some; ++i)
            strengths[done + i] = joined(combine_, strengths[done + i], alphas[std::size_t(i)]);
    }
}

} // namespace Marlox
