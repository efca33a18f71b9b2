#pragma once

#include "system/base/Types.h"

#include <QCheckBox>

namespace Marlox {

/// A check box drawn crisply at any pixel ratio: a box with a tick, or with a bar when it stands
/// for several values that differ (`setTristate`). The label shortens with an ellipsis when room is
/// short; the whole text is then the tooltip.
class MARLOXSYSTEM_EXPORT CustomCheckBox : public QCheckBox {
    Q_OBJECT
public:
    explicit CustomCheckBox(QWidget* parent = nullptr);
    explicit CustomCheckBox(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& at) const override;
    bool event(QEvent* event) override;

private:
    QRect BoxRect() const;
    QRect TextRect() const;
};

} // namespace Marlox
