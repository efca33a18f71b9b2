#pragma once

#include "system/color/ColorCurves.h"
#include "widgets/ColorRangesModel.h"
#include "widgets/CustomControl.h"

#include <array>

#include <QColor>
#include <QImage>

class QPainterPath;

namespace Marlox {

/// The drawn tonal ranges: the curves of shadows and highlights over a ramp of the brightness, with
/// what they leave to the midtones, their eight nodes, and the names of the ranges below. The ramp
/// goes through the viewer's display, so that a place on it looks as a pixel of that brightness
/// does.
///
/// A press on a node picks it up and moves nothing; the drag then brings it to the pointer, Shift
/// keeps it to one axis. Starts and ends move along the brightness only and take their handle
/// along, unless SetTakesHandles says otherwise. Every step begins from the curves as they were at
/// the press. The undo entry "Adjust Ranges" is opened by the press and vanishes if nothing comes
/// of it. Alt+click puts a node back to where the default has it ("Reset Ranges").
///
/// What the user does is told by dragNode; curves that are shown are not.
class CustomColorRanges : public CustomControl {
    Q_OBJECT
    Q_PROPERTY(int draggedNode READ DraggedNode)
    Q_PROPERTY(int hoveredNode READ HoveredNode)
    Q_PROPERTY(bool dragging READ IsDragged)
    Q_PROPERTY(QRect plot READ Plot)
    Q_PROPERTY(bool showMidtones READ ShowsMidtones WRITE SetShowMidtones)
public:
    static constexpr int none = ColorRangesModel::none;
    /// Names of shadows, midtones and highlights.
    using Names = std::array<QString, 3>;

    static constexpr char nodeBitmap[] = "Controls.ColorRanges.Node";

    explicit CustomColorRanges(QWidget* parent = nullptr);

    const ColorCurves& Curves() const { return *curves_; }
    void ShowCurves(const ColorCurves& curves);
    /// What Alt+click goes back to.
    void SetDefaultCurves(const ColorCurves& curves);
    void SetShowMidtones(bool on);
    bool ShowsMidtones() const { return showMidtones_; }
    void SetTakesHandles(bool on) { takesHandles_ = on; }
    void SetNames(const Names& names);
    const Names& RangeNames() const { return names_; }
    /// Of the frame, unless that tells the keyboard focus: there are keys or an expression.
    /// Invalid: neither.
    void SetStateColor(const QColor& color);

    int DraggedNode() const { return node_; }
    int HoveredNode() const { return hovered_; }
    /// In pixels of the widget; positions 0 and 1 are its first and last ones.
    QRect Plot() const { return model_.Plot(); }
    QPoint NodePixel(int node) const;
    /// The tone in which a range is drawn: 0 shadows, 1 midtones, 2 highlights.
    static QColor ToneOf(std::size_t range);

    // CustomControl
    int PartCount() const override { return ColorCurves::nodeCount; }
    QString DescribePart(int part) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The user moved this node: Curves has other curves.
    void dragNode(int node);

protected:
    bool Grab(QPoint at) override;
    void PressOn(const PointerDrag::Step& step) override;
    bool DragTo(const PointerDrag::Step& step) override;
    void BringBack() override;
    void Drop() override;
    bool ResetAt(QPoint at) override;
    void HoverAt(std::optional<QPoint> at) override;
    void Nudge(int part, QPoint way, int level) override;

    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QPointF PositionOf(int node) const { return PositionIn(*curves_, node); }
    static QPointF PositionIn(const ColorCurves& curves, int node);
    int NodeAt(QPoint at) const;
    void Store(Ref<ColorCurves> curves);
    void Change(int node, const Ref<ColorCurves>& curves, const char* undoText);
    void ResetNode(int node);
    void RepaintPlot();
    void FollowSize();
    int RampTop() const;
    QFont NamesFont() const;
    std::array<int, 3> NameWidths(const QFont& font) const;

    void PaintGround(QPainter& painter) const;
    void PaintRamp(QPainter& painter);
    void PaintNames(QPainter& painter) const;
    void PaintRanges(QPainter& painter) const;
    QPainterPath MidtonesPath() const;
    void PaintHandles(QPainter& painter) const;
    void PaintNodes(QPainter& painter) const;
    void PaintReadout(QPainter& painter) const;

    ColorRangesModel model_;
    Ref<ColorCurves> curves_;   // never null
    Ref<ColorCurves> held_;     // as they were at the press; null: nothing is dragged
    Ref<ColorCurves> defaults_; // never null
    int node_ = none;           // the one dragged
    int hovered_ = none;
    bool takesHandles_ = true;
    bool showMidtones_ = true;
    Names names_;
    QColor stateColor_;
    QImage ramp_; // one row of the screen's pixels
    unsigned rampGeneration_ = 0;
};

} // namespace Marlox
