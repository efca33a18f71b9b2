#pragma once

#include "system/values/Animation.h"
#include "system/values/Parameter.h"

namespace Marlox {

/// An animation of numbers, given as time and value.
inline Animation keysOf(std::initializer_list<std::pair<double, double>> keys,
                        Interpolation interpolation = Interpolation::Smooth)
{
    Animation animation;
    for (const auto& [time, value] : keys)
        animation.SetKey(time, MakeRef<Number>(value), interpolation);
    return animation;
}

} // namespace Marlox
