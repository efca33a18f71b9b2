#pragma once

#include "system/values/Gradient.h"
#include "widgets/SliderDrag.h"

#include <string>

#include <QColor>
#include <QImage>
#include <QMargins>
#include <QPixmap>

namespace Marlox {

/// What the parts of a slider that stand still look like at present.
struct SliderTrackState {
    std::vector<int> ticks; // pixels along x
    int centreTick = -1;    // drawn longer; below 0: none
    int resetPixel = -1;    // of the default; below 0: no reset mark
    QColor background;      // invalid: transparent, what is behind shows through
    QColor stateColor;      // of a line that marks expression or animation; invalid: none
    bool resetLit = false;
    bool focused = false;
    bool enabled = true;
};

/// The bitmaps of a slider and how they are put together. Device-independent pixels of the widget;
/// the pictures are made for one device pixel ratio at a time and stay crisp at any.
///
/// A knob's last row is left alone: it is not repainted when the knob moves.
class SliderSkin {
public:
    /// Bitmap names of the knob; highlighted is for a hovered or dragged one.
    void SetKnob(const char* normal, const char* highlighted);
    /// Fills the track; with a second gradient each has one half. Null: none. True if it differs.
    bool SetGradients(const Gradient* first, const Gradient* second);
    bool HasGradient() const { return !first_.IsEmpty() || !second_.IsEmpty(); }
    /// Offset of the reset mark: x from the default's pixel, y from the track's top.
    void SetResetPosition(QPoint position) { resetPosition_ = position; }

    /// Loads the bitmaps for a ratio, unless they are. True if it did.
    bool Load(double devicePixelRatio);

    /// The track within a widget: its whole width but for the margin that a knob's dirty rectangle
    /// takes, in the middle of its height.
    QRect TrackRect(QSize widget) const;
    SliderGeometry GeometryIn(QSize widget) const;
    /// Pixels of the lowest and of the highest value: there the knob is flush with the track.
    double PixelLow(QSize widget) const;
    double PixelHigh(QSize widget) const;
    QSize MinimumSize() const;

    /// Pictures of 32-bit premultiplied pixels.
    const QImage& Knob(bool highlighted) const { return highlighted ? knobLit_ : knob_; }
    /// Everything but the knob.
    QImage PaintTrack(QSize widget, const SliderTrackState& state) const;

private:
    QColor GradientColorAt(double position) const; // 0 to 1 along the inner track
    void FillWithGradients(QPainter& painter, const QRect& inner) const;
    void PaintMarks(QPainter& painter, const QRect& track, const SliderTrackState& state) const;

    std::string knobName_ = "Controls.Slider.Knob.1";
    std::string knobLitName_ = "Controls.Slider.Knob.2";
    Gradient first_;
    Gradient second_;
    QPoint resetPosition_{-3, 3};

    double ratio_ = 0.0; // 0: nothing loaded
    unsigned generation_ = 0;
    QImage knob_;
    QImage knobLit_;
    QPixmap track_;
    QPixmap reset_;
    QSize knobSize_;
    QSize trackSize_;
    QSize resetSize_;
    QMargins trackMargins_;
};

} // namespace Marlox
