#include "system/values/Gradient.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

namespace {

bool isBefore(const Gradient::Stop& a, const Gradient::Stop& b)
{
    return a.position < b.position;
}

} // namespace

Gradient::Gradient(std::vector<Stop> stops) : stops_(std::move(stops))
{
    std::erase_if(stops_, [](const Stop& stop) { return std::isnan(stop.position); });
    std::stable_sort(stops_.begin(), stops_.end(), isBefore);
}

GradientColor Gradient::QuickEvaluate(double position) const
{
    if (stops_.empty())
        return {};
    const auto above = std::upper_bound(stops_.begin(), stops_.end(), Stop{position, {}}, isBefore);
    if (above == stops_.begin())
        return above->color;
    const Stop& low = above[-1];
    if (above == stops_.end())
        return low.color;
    const double share = (position - low.position) / (above->position - low.position);
    const auto between = [share](double a, double b) { return a + (b - a) * share; };
    return {between(low.color.red, above->color.red), between(low.color.green, above->color.green),
            between(low.color.blue, above->color.blue),
            between(low.color.alpha, above->color.alpha)};
}

} // namespace Marlox
