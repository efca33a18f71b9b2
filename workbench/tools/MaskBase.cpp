#include "workbench/tools/MaskBase.h"

#include "workbench/tools/ImageWindows.h"

#include <algorithm>
#include <cmath>
#include <vector>

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
    std::vector<float> alphas(std::size_t(std::max(count, 0)));
    mask_.Alphas(format.displayWindow, left, y, alphas.data(), count);
    for (int i = 0; i < count; ++i)
        strengths[i] = joined(combine_, strengths[i], alphas[std::size_t(i)]);
}

} // namespace Marlox
