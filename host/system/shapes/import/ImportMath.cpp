#include "system/shapes/import/ImportMath_p.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

PlaneMap PlaneMap::Turn(double degrees)
{
    const double angle = degrees * M_PI / 180.0;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    return {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
}

ShapePlace PlaneMap::Apply(ShapePlace place) const
{
    const auto row = [&](int r) { return m[r][0] * place.x + m[r][1] * place.y + m[r][2]; };
    const double w = row(2);
    return {row(0) / w, row(1) / w};
}

PlaneMap operator*(const PlaneMap& a, const PlaneMap& b)
{
    PlaneMap out;
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c)
            out.m[r][c] = a.m[r][0] * b.m[0][c] + a.m[r][1] * b.m[1][c] + a.m[r][2] * b.m[2][c];
    }
    return out;
}

AnimatedNumber::AnimatedNumber(std::vector<Key> keys) : keys_(std::move(keys))
{
    std::stable_sort(keys_.begin(), keys_.end(),
                     [](const Key& a, const Key& b) { return a.time < b.time; });
    std::size_t count = 0;
    for (const Key& key : keys_) {
        if (count > 0 && keys_[count - 1].time == key.time)
            keys_[count - 1] = key;
        else
            keys_[count++] = key;
    }
    keys_.resize(count);
}

double AnimatedNumber::At(double time) const
{
    if (keys_.empty())
        return constant_;
    const auto next =
        std::upper_bound(keys_.begin(), keys_.end(), time,
                         [](double wanted, const Key& key) { return wanted < key.time; });
    if (next == keys_.begin())
        return next->value;
    const Key& last = *(next - 1);
    if (next == keys_.end() || last.time == time || last.interpolation == Interpolation::Step)
        return last.value;
    const double span = next->time - last.time;
    const double t = (time - last.time) / span;
    if (last.interpolation == Interpolation::Linear)
        return std::lerp(last.value, next->value, t);
    const double s = 1.0 - t;
    return last.value * s * s * (1.0 + 2.0 * t) + next->value * t * t * (3.0 - 2.0 * t) +
           span * s * t * (last.slopeOut * s - next->slopeIn * t);
}

bool AnimatedNumber::Is(double value) const
{
    if (keys_.empty())
        return constant_ == value;
    return std::all_of(keys_.begin(), keys_.end(), [&](const Key& key) {
        const bool isFlat = key.interpolation != Interpolation::Smooth ||
                            (key.slopeIn == 0.0 && key.slopeOut == 0.0);
        return key.value == value && isFlat;
    });
}

void KeyTimes::Add(double time)
{
    times_.push_back(time);
    if (times_.size() > 2 * settled_ + 100'000)
        Settle();
}

void KeyTimes::Add(const AnimatedNumber& number)
{
    for (const AnimatedNumber::Key& key : number.Keys())
        Add(key.time);
}

void KeyTimes::AddFramesOf(const AnimatedNumber& number)
{
    if (!number.IsAnimated())
        return;
    const double first = std::ceil(number.Keys().front().time);
    const double last = std::floor(number.Keys().back().time);
    for (double frame = first; frame <= std::min(last, first + maxImportedPoints); ++frame)
        Add(frame);
}

void KeyTimes::Settle()
{
    std::sort(times_.begin(), times_.end());
    times_.erase(std::unique(times_.begin(), times_.end()), times_.end());
    settled_ = times_.size();
}

std::vector<double> KeyTimes::Take(int line)
{
    Settle();
    if (times_.size() > std::size_t(maxImportedPoints)) {
        throw ImportFailure{line,
                            "a shape has more than " + std::to_string(maxImportedPoints) + " keys"};
    }
    settled_ = 0;
    return std::move(times_);
}

} // namespace Marlox
