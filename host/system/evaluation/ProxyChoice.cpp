#include "system/evaluation/ProxyChoice.h"

#include <algorithm>

namespace Marlox {

namespace {

constexpr double forgiven = 4.0; // times the goal, for the first render at a resolution

/// Rendering takes time for each pixel.
double scaledTime(double seconds, int from, int to)
{
    const double ratio = double(from) / to;
    return seconds * ratio * ratio;
}

} // namespace

ProxyChoice::ProxyChoice()
{
    SetCoarsest(4);
}

void ProxyChoice::SetCoarsest(int divisor)
{
    sizes_.clear();
    for (int finer = 1; finer < divisor; finer *= 2)
        sizes_.push_back({finer});
    sizes_.push_back({std::max(1, divisor)});
}

void ProxyChoice::Begin()
{
    for (Size& size : sizes_)
        size.renders = 0;
}

int ProxyChoice::Divisor() const
{
    const auto found = std::find_if(sizes_.begin(), sizes_.end() - 1,
                                    [this](const Size& size) { return KeepsUp(size); });
    return found->divisor;
}

bool ProxyChoice::KeepsUp(const Size& size) const
{
    const double seconds = size.renders > 0 ? size.seconds : Estimate(size);
    return seconds >= 0.0 && seconds <= goal_ * (size.renders == 1 ? forgiven : 1.0);
}

/// From the next coarser resolution rendered at in this gesture, else the next finer, else the last
/// full render; negative: unknown.
double ProxyChoice::Estimate(const Size& size) const
{
    const auto isKnown = [](const Size& other) { return other.renders > 0; };
    const auto at = sizes_.begin() + (&size - sizes_.data());
    auto known = std::find_if(at, sizes_.end(), isKnown);
    if (known == sizes_.end()) {
        const auto finer = std::find_if(std::make_reverse_iterator(at), sizes_.rend(), isKnown);
        if (finer == sizes_.rend())
            return full_ < 0.0 ? -1.0 : scaledTime(full_, 1, size.divisor);
        known = finer.base() - 1;
    }
    return scaledTime(known->seconds, known->divisor, size.divisor);
}

void ProxyChoice::Took(int divisor, double seconds, bool inGesture)
{
    if (divisor == 1)
        full_ = seconds;
    const auto found = std::find_if(sizes_.begin(), sizes_.end(), [divisor](const Size& size) {
        return size.divisor == divisor;
    });
    if (!inGesture || found == sizes_.end())
        return;
    switch (found->renders++) {
    case 0:
        found->seconds = seconds;
        break;
    case 1:
        found->seconds = std::min(found->seconds, seconds);
        break;
    default:
        found->seconds = (found->seconds + seconds) / 2.0;
    }
}

} // namespace Marlox
