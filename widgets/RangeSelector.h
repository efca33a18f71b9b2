#pragma once

#include <array>
#include <optional>

#include <QStringList>
#include <QWidget>

class QPainter;

namespace Marlox {

/// Picks one of the four tonal ranges (0 master, 1 low, 2 mid, 3 high): segments side by side, the
/// chosen one raised. The widths follow the names, which are elided, with the whole name in the
/// tooltip, where they have too little room.
///
/// Left and Right (Home and End) choose the next segment while it has the keyboard focus. A screen
/// reader hears the name of the chosen range.
class RangeSelector final : public QWidget {
    Q_OBJECT
public:
    static constexpr int count = 4;

    explicit RangeSelector(QWidget* parent = nullptr);

    /// Of the ranges, in their order; those that are missing stay as they were.
    void SetNames(const QStringList& fourNames);
    const QString& NameOf(int range) const { return names_[std::size_t(range)]; }
    /// The other ranges have no segment. It does not change the chosen one.
    void SetOffered(const std::array<bool, 4>& offered);
    bool IsOffered(int range) const { return offered_[std::size_t(range)]; }
    int Range() const { return range_; }
    /// Sends nothing. Out of bounds: stays as it is.
    void SetRange(int range);
    /// As Left (-1) and Right (1).
    void ChooseNext(int by);

    /// Of its segment, in the widget's pixels; empty without one.
    QRect SegmentOf(int range) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void RangeChanged(int range); ///< the user chose another one

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::optional<int> RangeAt(QPoint at) const;
    int NextOffered(int from, int by) const;
    int WidthFor(int range) const;
    std::array<double, count> Widths() const;
    void Choose(int range);
    void SetHovered(std::optional<int> range);
    void PaintSegment(QPainter& painter, int range) const;
    void TellRange();

    std::array<QString, count> names_;
    std::array<bool, count> offered_{true, true, true, true};
    int range_ = 0;
    std::optional<int> hovered_;
    std::optional<int> pressed_; // chosen when the button is released over it
};

} // namespace Marlox
