#pragma once

#include <cstdint>
#include <vector>

#include <QImage>

namespace Marlox {

/// A ring of all hues, as the screen shows them, that turns at little cost: what each of its pixels
/// is called around the ring is known, and which colour that is, is looked up.
class HueRing {
public:
    HueRing() = default; // of no size
    /// Between the lengths `inner` and `outer` of a wheel that is `diameter` device-independent
    /// pixels wide (1 is its rim); hues of no more light than `most`.
    HueRing(int diameter, double devicePixelRatio, double inner, double outer, double most);

    /// A square as wide as the wheel, transparent beside the ring. Unturned, red lies at the right
    /// and hues follow counter-clockwise; `turns` takes them further that way.
    const QImage& Turned(double turns);

private:
    /// Pixels beside each other.
    struct Run {
        int row;
        int first;
        int count;
    };
    void AddRow(int row, double inner, double outer);

    QImage picture_;
    std::vector<Run> runs_;
    // Of the pixels of all runs, one after the other:
    std::vector<std::uint16_t> places_; // around the ring, 65536 a turn
    std::vector<std::uint8_t> covers_;  // less than 255 where an edge runs through
    std::vector<QRgb> codes_;           // of the hues around the ring
    int shown_ = -1;                    // the turn of the picture, 65536 a turn; -1: none yet
};

} // namespace Marlox
