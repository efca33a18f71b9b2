#pragma once

#include "system/values/Parameter.h"

#include <map>
#include <optional>
#include <vector>

namespace Marlox {

enum class Interpolation { Step, Linear, Smooth };

/// The keys of one input over time and the spline through them. A value type. Times are frames
/// (fractions allowed; two times closer than a millionth of a frame are one); a key rules the
/// segment up to the next key. Before the first and behind the last key the value holds.
class MARLOXSYSTEM_EXPORT Animation {
public:
    struct Key {
        Ref<Parameter> value;
        Interpolation interpolation = Interpolation::Smooth;
    };

    bool IsEmpty() const { return keys_.empty(); }
    const std::map<double, Key>& Keys() const { return keys_; }
    /// Sets or replaces the key at `time`; a replaced key keeps its interpolation unless one is
    /// given. A time that is not finite is ignored.
    void SetKey(double time, Ref<Parameter> value, std::optional<Interpolation> interpolation = {});
    bool RemoveKey(double time);
    bool MoveKey(double from, double to); // false: no key at `from`, or `to` taken
    bool HasKeyAt(double time) const;
    std::optional<double> KeyBefore(double time) const; // the nearest one, not the key at `time`
    std::optional<double> KeyAfter(double time) const;

    /// The value at `time`; null without keys. Smooth segments are cubic Hermite splines with
    /// tangents limited so that no segment overshoots its keys (Fritsch and Carlson 1980); they
    /// start and end flat where the value holds: at the first and last key and beside a stepped
    /// segment. Values without components, or with a component that is not finite, hold to the next
    /// key.
    Ref<Parameter> Evaluate(double time) const;

    friend MARLOXSYSTEM_EXPORT bool operator==(const Animation&, const Animation&);

private:
    std::map<double, Key> keys_;
};

} // namespace Marlox
