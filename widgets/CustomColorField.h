#pragma once

#include "widgets/ColorFieldModel.h"
#include "widgets/CustomControl.h"
#include "widgets/ImageSlot.h"

#include <optional>

#include <QImage>

namespace Marlox {

/// The drawn colour field: a square of saturation and value, a strip of hues and, if wanted, one of
/// alpha. In other colour spaces than HSV their axes take these places (see ColorAxes). Colours are
/// scene-linear; the widget shows them as the viewer would.
///
/// A drag moves what is under the press (ColorFieldModel has the rules), Ctrl makes it fine, Shift
/// keeps it to one axis of the square. Values beyond 0 and 1 stay as they are until they are
/// dragged: their knob stands at the edge with an arrow that points outwards. Page Up and Page Down
/// go between the square and the strips, the arrow keys nudge.
///
/// Square and strips are kept as pictures. The square's goes with the hue (or the first axis of
/// another colour space), the alpha strip's with any component of the colour, the hue strip's with
/// none; all with the screen's colours, the pixel ratio and the widget's size.
class CustomColorField : public CustomControl {
    Q_OBJECT
    Q_PROPERTY(double hue READ Hue)
    Q_PROPERTY(double saturation READ Saturation)
    Q_PROPERTY(double value READ Value)
    Q_PROPERTY(double alpha READ Alpha WRITE SetAlpha)
    Q_PROPERTY(bool showsAlpha READ ShowsAlpha WRITE SetShowsAlpha)
    Q_PROPERTY(double valueExponent READ ValueExponent WRITE SetValueExponent)
    Q_PROPERTY(int colorSpace READ ColorSpace WRITE SetColorSpace)
    Q_PROPERTY(bool dragging READ IsDragged)
    Q_PROPERTY(bool saturationActive READ IsSaturationActive)
    Q_PROPERTY(bool valueActive READ IsValueActive)
    Q_PROPERTY(bool hueActive READ IsHueActive)
    Q_PROPERTY(bool alphaActive READ IsAlphaActive)
    Q_PROPERTY(int squareBuilds READ SquareBuilds)
    Q_PROPERTY(int stripBuilds READ StripBuilds)
public:
    using Zone = ColorFieldModel::Zone;

    explicit CustomColorField(QWidget* parent = nullptr);
    ~CustomColorField() override;

    const ColorFieldModel& Model() const { return model_; }
    const ColorRecord& Record() const { return values_.record; }
    /// What is shown; sends nothing. Without `redraw`, the caller sees to a repaint.
    void SetRecord(const ColorRecord& record, bool redraw = true);
    double Hue() const { return values_.record.hue; }
    double Saturation() const { return values_.record.saturation; }
    double Value() const { return values_.record.value; }
    double Alpha() const { return values_.alpha; }
    void SetAlpha(double alpha);
    bool ShowsAlpha() const { return model_.showsAlpha; }
    void SetShowsAlpha(bool on);
    /// Of the value axis (see ColorFieldModel); 1 is linear. Those that are not positive numbers
    /// are ignored.
    double ValueExponent() const { return model_.exponent; }
    void SetValueExponent(double exponent);
    /// Whether the colour and the alpha can be dragged; what can't takes no press and no keys.
    void SetMovable(bool color, bool alpha);
    /// 0 HSV, 1 HLS, 2 YUV. The record stays: it is for the caller to convert.
    int ColorSpace() const { return colorSpace_; }
    void SetColorSpace(int colorSpace);

    // Which components are being dragged.
    bool IsSaturationActive() const { return active_.saturation; }
    bool IsValueActive() const { return active_.value; }
    bool IsHueActive() const { return active_.hue; }
    bool IsAlphaActive() const { return active_.alpha; }
    /// How often the pictures of the square and of the strips were painted.
    int SquareBuilds() const { return squareBuilds_; }
    int StripBuilds() const { return stripBuilds_; }

    int PartCount() const override { return ShowsAlpha() ? 3 : 2; }
    QString DescribePart(int part) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void dragSatVal();
    void dragHue();
    void dragAlpha();

protected:
    bool Grab(QPoint at) override;
    bool DragTo(const PointerDrag::Step& step) override;
    void BringBack() override;
    void Drop() override;
    void HoverAt(std::optional<QPoint> at) override;
    void Nudge(int part, QPoint way, int level) override;

    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void Show(const ColorFieldValues& values, bool redraw);
    void Change(Zone zone, const ColorFieldValues& values);
    void DiscardPictures();
    bool IsMovable(Zone zone) const;
    void PaintPictures(QPainter& painter);
    void PaintFrames(QPainter& painter) const;
    void PaintStripKnob(QPainter& painter, Zone zone, const char* name, double number) const;
    void PaintSquareKnob(QPainter& painter) const;
    QImage MakeSquare() const;
    QImage MakeHueStrip() const;
    QImage MakeAlphaStrip() const;

    ColorFieldModel model_;
    ColorFieldValues values_;
    int colorSpace_ = 0;
    bool colorMoves_ = true;
    bool alphaMoves_ = true;
    ColorFieldModel::Drag held_;
    ColorFieldModel::Active active_;
    Zone hovered_ = Zone::None;
    bool byKeys_ = false; // what has the focus got it from the keyboard, or was moved by it
    ImageSlot<QImage> square_;
    ImageSlot<QImage> hueStrip_;
    ImageSlot<QImage> alphaStrip_;
    double squareHue_ = 0.0;   // of the picture
    double picturesRatio_ = 0; // that the pictures were made for
    unsigned picturesLook_ = 0;
    int squareBuilds_ = 0;
    int stripBuilds_ = 0;
};

} // namespace Marlox
