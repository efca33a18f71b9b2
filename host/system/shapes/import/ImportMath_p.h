#pragma once

#include "system/shapes/import/ImportJob_p.h"

namespace Marlox {

/// A projective map of the plane, as its matrix for column vectors.
struct PlaneMap {
    double m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    static PlaneMap Move(double x, double y) { return {{{1, 0, x}, {0, 1, y}, {0, 0, 1}}}; }
    static PlaneMap Scale(double x, double y) { return {{{x, 0, 0}, {0, y, 0}, {0, 0, 1}}}; }
    /// From the x axis to the y axis.
    static PlaneMap Turn(double degrees);

    /// Not finite where the place goes to infinity.
    ShapePlace Apply(ShapePlace place) const;
    /// The right one first.
    friend PlaneMap operator*(const PlaneMap& a, const PlaneMap& b);
};

/// A number over time, as curves of other programs have it; constant without keys.
class AnimatedNumber {
public:
    struct Key {
        double time = 0.0;
        double value = 0.0;
        double slopeIn = 0.0; // by frame; of smooth segments
        double slopeOut = 0.0;
        Interpolation interpolation = Interpolation::Linear; // up to the next key
    };

    AnimatedNumber() = default;
    explicit AnimatedNumber(double constant) : constant_(constant) {}
    /// Keys in any order; of two at one time the later one counts.
    explicit AnimatedNumber(std::vector<Key> keys);

    const std::vector<Key>& Keys() const { return keys_; }
    bool IsAnimated() const { return keys_.size() > 1; }
    /// Holds before the first key and behind the last one. Smooth segments are cubic Hermite ones.
    double At(double time) const;
    /// The same value at all times.
    bool Is(double value) const;

private:
    double constant_ = 0.0;
    std::vector<Key> keys_;
};

/// Times gathered from many curves, most of which have the same ones.
class KeyTimes {
public:
    void Add(double time);
    void Add(const AnimatedNumber& number);
    /// All whole frames from the first to the last time of these.
    void AddFramesOf(const AnimatedNumber& number);
    /// Ascending, each once; throws when there are more than a shape may have.
    std::vector<double> Take(int line);

private:
    void Settle();

    std::vector<double> times_;
    std::size_t settled_ = 0;
};

} // namespace Marlox
