#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>
#include <QProxyStyle>

class QComboBox;
class QStyleOptionButton;
class QStyleOptionHeader;
class QStyleOptionMenuItem;
class QStyleOptionProgressBar;
class QStyleOptionSlider;
class QStyleOptionTab;

namespace Marlox {

/// The colours of the chrome by role, from the look pack ("System.<Role>Colour") or, for those it
/// lacks, neutral ones of our own.
struct LookColors {
    QColor border, field, fieldAlternate, window, header;
    QColor button, buttonHover, buttonPressed, popup, tooltip;
    QColor line, scroll, scrollHover;
    QColor text, brightText, fieldText, placeholderText, disabledText, linkText;
    QColor accent, accentText, selection, selectionText;

    static LookColors FromPack();
    QPalette Palette() const;
};

/// Flat, neutral chrome on top of Qt's Fusion: one-pixel edges, no shading, the accent only where
/// the keyboard, a check or a selection is. Sizes in device-independent pixels on a grid of eight.
class LookStyle : public QProxyStyle {
public:
    explicit LookStyle(const LookColors& colors);

    void polish(QWidget* widget) override;
    using QProxyStyle::polish;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                         SubControl subControl, const QWidget* widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                       const QWidget* widget) const override;
    QPixmap standardPixmap(StandardPixmap icon, const QStyleOption* option,
                           const QWidget* widget) const override;
    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                const QStyleOption* option) const override;

private:
    // Primitives.
    void DrawButtonPanel(const QStyleOption& option, QPainter& painter) const;
    void DrawToolPanel(const QStyleOption& option, QPainter& painter) const;
    void DrawCheck(const QStyleOption& option, QPainter& painter, bool round) const;
    void DrawItemGround(const QStyleOption& option, QPainter& painter) const;
    void DrawBranch(const QStyleOption& option, QPainter& painter) const;
    void DrawTabClose(const QStyleOption& option, QPainter& painter) const;
    // Controls.
    void DrawMenuItem(const QStyleOptionMenuItem& item, QPainter& painter,
                      const QWidget* widget) const;
    void DrawMenuBarItem(const QStyleOptionMenuItem& item, QPainter& painter,
                         const QWidget* widget) const;
    void DrawTab(const QStyleOptionTab& tab, QPainter& painter) const;
    void DrawHeaderSection(const QStyleOption& option, QPainter& painter) const;
    void DrawProgress(const QStyleOptionProgressBar& bar, QPainter& painter,
                      const QWidget* widget) const;
    void DrawDockTitle(const QStyleOption& option, QPainter& painter) const;
    // Complex controls.
    void DrawScrollBar(const QStyleOptionSlider& bar, QPainter& painter,
                       const QWidget* widget) const;
    void DrawComboBox(const QStyleOptionComplex& option, QPainter& painter,
                      const QWidget* widget) const;
    void DrawSpinBox(const QStyleOptionComplex& option, QPainter& painter,
                     const QWidget* widget) const;
    void DrawGroupBox(const QStyleOptionComplex& option, QPainter& painter,
                      const QWidget* widget) const;
    void DrawSlider(const QStyleOptionSlider& slider, QPainter& painter,
                    const QWidget* widget) const;

    LookColors colors_;
};

/// A named bitmap of the look pack as an icon, at 1x and 2x.
QIcon LookIcon(const char* name);

/// Pieces that the parts of the style share. Lines are one device-independent pixel wide and lie on
/// whole pixels, so that they are crisp at every whole ratio.
namespace LookPaint {

constexpr int radius = 2; // of the corners of buttons and fields

void Plate(QPainter& painter, const QRect& rect, const QColor& fill, const QColor& edge,
           int cornerRadius = radius);
void Line(QPainter& painter, const QRect& rect, Qt::Edge edge, const QColor& color);
/// A small triangle in the middle of `rect` that points up, down, left or right.
void Arrow(QPainter& painter, const QRect& rect, Qt::ArrowType direction, const QColor& color);
void Tick(QPainter& painter, const QRect& rect, const QColor& color);
/// Gives the list of a combo box rows as high as other lists', unless it has a delegate of its own.
void UseRoomyRows(QComboBox& combo);

} // namespace LookPaint

} // namespace Marlox
