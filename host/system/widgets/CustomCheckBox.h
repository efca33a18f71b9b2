#pragma once

#include "system/base/Types.h"

#include <QCheckBox>
#include <QColor>

namespace Marlox {

/// A check box drawn crisply at any pixel ratio: a box with a tick, or with a bar when it is
/// neither on nor off (`setTristate`). The label shortens with an ellipsis when room is short; the
/// whole text then stands in the tooltip, above the help of the box or its parent. A click on the
/// box or the label changes it; the room right of them is nobody's.
class MARLOXSYSTEM_EXPORT CustomCheckBox : public QCheckBox {
    Q_OBJECT
public:
    explicit CustomCheckBox(QWidget* parent = nullptr);
    explicit CustomCheckBox(const QString& text, QWidget* parent = nullptr);

    /// A frame around the box that tells of keys, or of an expression, which `ruled` the box then
    /// follows: it shows flat, and the label has the colour too. An invalid colour takes it away.
    void SetStateColor(const QColor& color, bool ruled = false);

    /// A number of its owner's that goes with CheckChanged; 0 at first.
    void SetId(u64 id) { id_ = id; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// It has another state (Qt::CheckState), whoever changed it.
    void CheckChanged(int32 state, uint64 id);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& at) const override;
    bool event(QEvent* event) override;

private:
    QRect BoxRect() const;
    QRect TextRect() const;
    QString ToolTipText() const; // empty: none of its own

    QColor stateColor_;
    u64 id_ = 0;
    bool ruled_ = false;
};

} // namespace Marlox
