#pragma once

#include <QColor>

namespace Marlox {

class CustomSlider;
class Input;
class TimeCodeEdit;
struct SliderSettings;

/// What controls with a drawn slider and a value edit do to them alike.
namespace SliderParts {

/// Bounds, steps, ticks, centre, default and snap value.
void Apply(const SliderSettings& settings, CustomSlider& slider);
/// The pair of knob bitmaps by number: 6 to 9 are the knobs of red, green, blue and alpha, any
/// other number the plain ones.
void ApplyKnobStyle(int style, CustomSlider& slider);
/// A drag in the edit drags the slider's value.
void DragThrough(TimeCodeEdit& edit, CustomSlider& slider);
/// Of the line along a slider that tells of an expression or keys; invalid for neither, or no
/// input.
QColor StateColor(const Input* input);

} // namespace SliderParts

} // namespace Marlox
