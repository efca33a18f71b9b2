#pragma once

#include "system/base/MxGeometry.h"
#include "widgets/CustomController.h"
#include "widgets/SliderDrag.h"
#include "widgets/SliderSkin.h"

#include <QVariant>

namespace Marlox {

/// The drawn slider: a knob on a track with tick marks, a mark at the default that resets to it,
/// and optionally a gradient along the track. Values are in the owner's units, pixels in this
/// widget.
///
/// Mouse, left button: drag the knob (Ctrl moves it a tenth as far), press the reset mark or
/// Alt+click anywhere to reset, press the track to step towards the pointer by tick steps (with
/// Ctrl by fine ones). A held track steps again every 70 milliseconds after three such ticks of
/// waiting, and rests while the knob is at the pointer. Keys and wheel: CustomController.
///
/// A value change repaints the knob's old and new rectangles and nothing else; what stands still is
/// kept as a picture.
class CustomSlider : public CustomController {
    Q_OBJECT
    Q_PROPERTY(double value READ Value WRITE SetValue NOTIFY ValueChanged USER true)
    Q_PROPERTY(double minValue READ MinValue)
    Q_PROPERTY(double maxValue READ MaxValue)
    Q_PROPERTY(double requestedLow READ RequestedLow)
    Q_PROPERTY(double requestedHigh READ RequestedHigh)
    Q_PROPERTY(double displayLow READ DisplayLow)
    Q_PROPERTY(double displayHigh READ DisplayHigh)
    Q_PROPERTY(double defaultValue READ DefaultValue)
    Q_PROPERTY(double snapValue READ SnapValue)
    Q_PROPERTY(double centre READ Centre)
    Q_PROPERTY(bool centred READ IsCentred)
    Q_PROPERTY(double gamma READ Gamma)
    Q_PROPERTY(double pixelLow READ PixelLow)
    Q_PROPERTY(double pixelHigh READ PixelHigh)
    Q_PROPERTY(double pixelCentre READ PixelCentre)
    Q_PROPERTY(double knobPixel READ KnobPixel)
    Q_PROPERTY(double tickCount READ TickCount)
    Q_PROPERTY(QVariantList stepBelow READ StepBelow)
    Q_PROPERTY(QVariantList stepAbove READ StepAbove)
    Q_PROPERTY(bool integer READ IsInteger)
    Q_PROPERTY(bool dragging READ IsDragging)
    Q_PROPERTY(bool knobGrabbed READ IsKnobGrabbed)
    Q_PROPERTY(bool hoverKnob READ IsKnobHovered)
    Q_PROPERTY(bool hoverReset READ IsResetHovered)
    Q_PROPERTY(bool hoverTrack READ IsTrackHovered)
public:
    using RelativeDrag = SliderModel::RelativeDrag;
    static constexpr double none = SliderModel::none; // default and snap value: there is none

    explicit CustomSlider(QWidget* parent = nullptr);
    ~CustomSlider() override;

    const SliderModel& Model() const { return model_; }
    double Value() const { return model_.value; }
    /// Stores a value, repaints and sends ValueChanged, if it differs from the present one or is
    /// the first of a drag. It may lie beyond the bounds; one that is not finite is ignored.
    void SetValue(double v);
    /// The forced set of a redisplay: stores and repaints, sends nothing.
    void ShowValue(double v);

    /// Sets the bounds; `notify` repaints: all where tick marks or the reset mark moved, else the
    /// knob's old and new place.
    void SetRange(double low, double high, bool notify);
    /// Number of tick marks (of each half while centred); 0 chooses a spacing and, where the range
    /// spans zero, the centre.
    void SetTickFreq(double count);
    /// Puts `c` in the middle of the track; false: it is an end, the track is not centred.
    bool SetCentre(double c);
    void SetCentred(bool on);
    void SetGamma(double gamma);
    void SetInteger(bool on);
    void SetSteps(double fine, double plain);
    void SetDefaultValue(double v);
    void SetSnapValue(double v) { model_.snapValue = v; }

    double ValueToPixel(double v) const { return model_.Scale().ValueToPixel(v); }
    double PixelToValue(double p) const { return model_.Scale().PixelToValue(p); }
    double GetPrecision(double v) const { return model_.Scale().GetPrecision(v); }

    /// One step: level 0 fine, 1 plain, 2 to the next tick mark. Without `force` none is taken
    /// while a press on the track has brought the knob to the pointer.
    void StepDown(int level, bool force);
    void StepUp(int level, bool force);

    /// A drag of this widget or of one that drives it: its values are one undo entry, and the first
    /// of them is signalled in any case.
    void StartDrag();
    void EndDrag();
    /// A relative drag from the value at StartDrag: `units` are thousandths of the power of ten at
    /// or below the requested range.
    void DragBy(double units, RelativeDrag& state);

    // Looks.
    void SetLocked(bool locked) override;
    void SetKnobImages(const char* normal, const char* highlighted);
    void SetGradients(const Gradient* first, const Gradient* second = nullptr);
    void SetResetPosition(MxPoint position);
    /// A line along the track that tells of an expression or keys; an invalid colour takes it away.
    void SetStateColor(const QColor& color);

    double MinValue() const { return model_.Scale().minValue; }
    double MaxValue() const { return model_.Scale().maxValue; }
    double RequestedLow() const { return model_.RequestedLow(); }
    double RequestedHigh() const { return model_.RequestedHigh(); }
    double DisplayLow() const { return model_.DisplayLow(); }
    double DisplayHigh() const { return model_.DisplayHigh(); }
    double DefaultValue() const { return model_.defaultValue; }
    double SnapValue() const { return model_.snapValue; }
    double Centre() const { return model_.Scale().centre; }
    bool IsCentred() const { return model_.Scale().centred; }
    double Gamma() const { return model_.Scale().gamma; }
    double PixelLow() const { return model_.Scale().pixelLow; }
    double PixelHigh() const { return model_.Scale().pixelHigh; }
    double PixelCentre() const { return model_.Scale().PixelCentre(); }
    double KnobPixel() const { return SliderGeometry::KnobPixel(model_); }
    double TickCount() const { return model_.TickCount(); }
    /// By level: fine, plain, to the next tick mark.
    QVariantList StepBelow() const { return Steps(&SliderModel::StepBelow); }
    QVariantList StepAbove() const { return Steps(&SliderModel::StepAbove); }
    bool IsInteger() const { return model_.IsInteger(); }
    bool IsDragging() const { return dragging_; }
    bool IsKnobGrabbed() const { return drag_.GetKind() == SliderDrag::Kind::Knob; }
    bool IsKnobHovered() const { return hover_ == SliderPart::Knob; }
    bool IsResetHovered() const { return hover_ == SliderPart::Reset; }
    bool IsTrackHovered() const
    {
        return hover_ == SliderPart::TrackBelow || hover_ == SliderPart::TrackAbove;
    }

    std::size_t SizeOf() const override { return sizeof(*this); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void ValueChanged(float64 value);

protected:
    void StepBy(Way way, int level) override;
    bool IsHeld() const override { return drag_.GetKind() != SliderDrag::Kind::Idle; }
    void SetFine(bool fine) override;
    void BringBack() override;
    void LoseGesture() override;

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void Press(QPoint at, double x, Qt::KeyboardModifiers modifiers);
    void StepOnTrack();
    void StepTo(double v);
    void ClearDrag();
    void Store(double v);
    void RepaintKnob();
    void RepaintAll(); // the picture of what stands still is made anew
    void Hover(SliderPart part);
    void FollowLayout();
    SliderTrackState TrackState() const;
    void PaintTo(QPainter& painter) const;
    void CopyTo(QImage& image, QPoint offset, int ratio, const QRegion& region) const;
    const QImage& ShownKnob() const;
    QVariantList Steps(double (SliderModel::*step)(int) const) const;

    SliderModel model_;
    SliderDrag drag_;
    SliderSkin skin_;
    SliderGeometry geometry_;
    SliderPart hover_ = SliderPart::None;
    QImage track_; // what stands still; null: to be made
    QColor stateColor_;
    QBasicTimer repeat_;
    double dragStart_ = 0.0;
    int shownPixel_ = 0; // where the knob was last painted or is going to be
    bool dragging_ = false;
    bool firstOfDrag_ = false;
    bool trackFine_ = false;  // a held track steps finely
    bool trackOpaque_ = true; // track_ was made with a ground
};

} // namespace Marlox
