#pragma once

#include "widgets/ColorAxes.h"

#include <functional>

#include <QImage>

namespace Marlox {

/// The light of a drawn colour wheel at a place: `turn` is the angle as a fraction of a turn,
/// counter-clockwise from the right, 0 to 1; `length` the distance from the centre, 1 on the rim.
using WheelLight = std::function<RgbColor(double turn, double length)>;

/// A disc or ring of computed colours, as the screen shows them, with smooth edges: between the
/// lengths `inner` (0: a disc) and `outer` of a wheel that is `diameter` device-independent pixels
/// wide. The picture is a square of that width at the pixel ratio, transparent outside.
QImage PaintWheel(int diameter, double devicePixelRatio, double inner, double outer,
                  const WheelLight& light);

/// The light of a hue with the brightness of a grey: `strength` 0 is the grey, 1 the pure colour,
/// dimmed until no component is above `most`.
RgbColor MutedHue(double turn, double strength, double most);

} // namespace Marlox
