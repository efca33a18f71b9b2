#include "system/values/Animation.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Marlox {

namespace {

using Keys = std::map<double, Animation::Key>;

/// Keys closer than this many frames are the same key: times that come from arithmetic on frame
/// rates miss a whole frame by less.
constexpr double timeTolerance = 1e-6;

template <class Map>
auto findKey(Map& keys, double time)
{
    auto found = keys.lower_bound(time - timeTolerance);
    return found != keys.end() && found->first <= time + timeTolerance ? found : keys.end();
}

/// The tangents at a key, component by component, in value per frame. Flat at the ends and beside a
/// stepped segment, where the value holds, and at turning points; otherwise the three-point slope,
/// limited to three times the flatter neighbouring secant. That is the square region of F. N.
/// Fritsch and R. E. Carlson, "Monotone piecewise cubic interpolation", SIAM J. Numer. Anal. 17
/// (1980): within it a segment stays between its two keys.
class Tangents {
public:
    Tangents(const Keys& keys, const Keys::const_iterator& key)
    {
        const auto next = std::next(key);
        if (key == keys.begin() || next == keys.end())
            return;
        const auto previous = std::prev(key);
        if (previous->second.interpolation == Interpolation::Step ||
            key->second.interpolation == Interpolation::Step)
            return;
        before_ = previous->second.value->Components();
        at_ = key->second.value->Components();
        behind_ = next->second.value->Components();
        isFlat_ = before_.size() != at_.size() || behind_.size() != at_.size();
        lengthBefore_ = key->first - previous->first;
        lengthBehind_ = next->first - key->first;
    }

    double operator[](std::size_t index) const
    {
        if (isFlat_)
            return 0.0;
        const double before = (at_[index] - before_[index]) / lengthBefore_;
        const double behind = (behind_[index] - at_[index]) / lengthBehind_;
        if (!(before * behind > 0.0))
            return 0.0;
        const double average =
            (before * lengthBehind_ + behind * lengthBefore_) / (lengthBefore_ + lengthBehind_);
        const double limit = 3.0 * std::min(std::abs(before), std::abs(behind));
        return std::clamp(average, -limit, limit);
    }

private:
    std::span<const double> before_;
    std::span<const double> at_;
    std::span<const double> behind_;
    double lengthBefore_ = 1.0; // frames
    double lengthBehind_ = 1.0;
    bool isFlat_ = true;
};

double hermite(double from, double to, double tangentFrom, double tangentTo, double length,
               double t)
{
    const double t2 = t * t;
    const double t3 = t2 * t;
    return (2 * t3 - 3 * t2 + 1) * from + (t3 - 2 * t2 + t) * length * tangentFrom +
           (3 * t2 - 2 * t3) * to + (t3 - t2) * length * tangentTo;
}

Ref<Parameter> between(const Keys& keys, const Keys::const_iterator& from,
                       const Keys::const_iterator& to, double time)
{
    const auto a = from->second.value->Components();
    const auto b = to->second.value->Components();
    const auto isFinite = [](double number) { return std::isfinite(number); };
    if (from->second.interpolation == Interpolation::Step || a.empty() || a.size() != b.size() ||
        !std::all_of(a.begin(), a.end(), isFinite) || !std::all_of(b.begin(), b.end(), isFinite))
        return from->second.value;
    const double length = to->first - from->first;
    const double t = (time - from->first) / length;
    std::vector<double> components(a.size());
    const Tangents tangentsFrom(keys, from);
    const Tangents tangentsTo(keys, to);
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double value = from->second.interpolation == Interpolation::Linear
                                 ? std::lerp(a[i], b[i], t)
                                 : hermite(a[i], b[i], tangentsFrom[i], tangentsTo[i], length, t);
        // Rounding in the last place must not leave the interval of the two keys either.
        components[i] = std::clamp(value, std::min(a[i], b[i]), std::max(a[i], b[i]));
    }
    return from->second.value->WithComponents(components);
}

} // namespace

void Animation::SetKey(double time, Ref<Parameter> value,
                       std::optional<Interpolation> interpolation)
{
    if (!std::isfinite(time) || !value)
        return;
    const auto found = findKey(keys_, time);
    if (found == keys_.end()) {
        keys_[time] = {std::move(value), interpolation.value_or(Interpolation::Smooth)};
        return;
    }
    found->second.value = std::move(value);
    if (interpolation)
        found->second.interpolation = *interpolation;
}

bool Animation::RemoveKey(double time)
{
    const auto found = findKey(keys_, time);
    if (found == keys_.end())
        return false;
    keys_.erase(found);
    return true;
}

bool Animation::MoveKey(double from, double to)
{
    const auto found = findKey(keys_, from);
    if (found == keys_.end() || !std::isfinite(to))
        return false;
    const auto taken = findKey(keys_, to);
    if (taken != keys_.end() && taken != found)
        return false;
    auto node = keys_.extract(found);
    node.key() = to;
    keys_.insert(std::move(node));
    return true;
}

bool Animation::HasKeyAt(double time) const
{
    return findKey(keys_, time) != keys_.end();
}

std::optional<double> Animation::KeyBefore(double time) const
{
    const auto found = keys_.lower_bound(time - timeTolerance);
    return found != keys_.begin() ? std::optional(std::prev(found)->first) : std::nullopt;
}

std::optional<double> Animation::KeyAfter(double time) const
{
    const auto found = keys_.upper_bound(time + timeTolerance);
    return found != keys_.end() ? std::optional(found->first) : std::nullopt;
}

Ref<Parameter> Animation::Evaluate(double time) const
{
    if (keys_.empty())
        return nullptr;
    if (const auto key = findKey(keys_, time); key != keys_.end())
        return key->second.value;
    const auto next = keys_.upper_bound(time);
    if (next == keys_.begin())
        return next->second.value;
    const auto previous = std::prev(next);
    return next == keys_.end() ? previous->second.value : between(keys_, previous, next, time);
}

bool operator==(const Animation& a, const Animation& b)
{
    return std::equal(a.keys_.begin(), a.keys_.end(), b.keys_.begin(), b.keys_.end(),
                      [](const auto& left, const auto& right) {
                          return left.first == right.first &&
                                 left.second.interpolation == right.second.interpolation &&
                                 left.second.value->IsEqual(*right.second.value);
                      });
}

} // namespace Marlox
