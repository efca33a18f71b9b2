#pragma once

#include "system/base/Types.h"

#include <vector>

namespace Marlox {

/// At which resolution a picture is rendered while it is being changed: the finest that keeps up
/// with the hand, told from how long the renders before took. A resolution is a whole divisor of
/// the full one: 1, 2, 4 ... up to the coarsest allowed.
///
/// A gesture begins with what the last full render took and then trusts its own renders. A first
/// slow render at a resolution is forgiven, as nothing was kept from before at it; a resolution
/// that was too slow twice is left for the rest of the gesture, so that the picture does not
/// change between sharp and blurred under the hand.
class MARLOXSYSTEM_EXPORT ProxyChoice {
public:
    ProxyChoice();

    void SetCoarsest(int divisor); // 1 or more
    int Coarsest() const { return sizes_.back().divisor; }
    /// How long a render may take, seconds; 0: always the coarsest resolution.
    void SetGoal(double seconds) { goal_ = seconds; }
    /// A gesture begins: renders of the one before tell nothing of it.
    void Begin();
    /// For the next render of the gesture.
    int Divisor() const;
    /// A render, of a gesture or before it, took so long (a cancelled one: until it was
    /// cancelled).
    void Took(int divisor, double seconds, bool inGesture);

private:
    struct Size {
        int divisor;
        int renders = 0; // in this gesture
        double seconds = 0.0;
    };
    double Estimate(const Size& size) const;
    bool KeepsUp(const Size& size) const;

    std::vector<Size> sizes_; // from the finest to the coarsest
    double goal_ = 1.0 / 30.0;
    double full_ = -1.0; // of the last full render, seconds; negative: unknown
};

} // namespace Marlox
