#pragma once

#include "widgets/ColorAxes.h"

#include <functional>

#include <QImage>

namespace Marlox {

/// The light of a drawn colour wheel at a place: `turn` is the angle as a fraction of a turn,
/// counter-clockwise from the right, 0 to 1; `length` the distance from the centre, 1 on the rim.
using WheelLight = std::function<RgbColor(double turn, double length)>;

/// A disc of computed colours, as the screen shows them, with a smooth edge: up to the length
/// `outer` of a wheel that is `diameter` device-independent pixels wide. The picture is a square of
/// that width at the pixel ratio, transparent outside.
QImage PaintDisc(int diameter, double devicePixelRatio, double outer, const WheelLight& light);

/// How much of a pixel at that distance from the centre lies between two circles, 0 to 1; `inner` 0
/// is none. Pixels of the screen.
double RingCover(double distance, double inner, double outer);
/// A colour for a picture with an alpha that is multiplied in; `cover` up to 255.
QRgb Covering(QRgb code, int cover);

/// The light of a hue with the brightness of a grey: `strength` 0 is the grey, 1 the pure colour,
/// dimmed until no component is above `most`.
RgbColor MutedHue(double turn, double strength, double most);

} // namespace Marlox
