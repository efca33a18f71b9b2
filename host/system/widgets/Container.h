#pragma once

#include "system/base/Types.h"

#include <QWidget>

namespace Marlox {

/// A plain widget that stacks the widgets added to it one below the other, each at its full width
/// and its own height. Hidden ones take no room; with nothing visible it is 0 pixels high.
class MARLOXSYSTEM_EXPORT Container : public QWidget {
    Q_OBJECT
public:
    explicit Container(QWidget* parent = nullptr);

    /// Appends `widget`, which becomes a child (and is owned as such). Null is ignored; a widget
    /// added again moves to the end.
    void AddWidget(QWidget* widget);
    /// Takes `widget` out: it stays a child, hidden, until somebody else takes it.
    void RemoveWidget(QWidget* widget);
    /// The gap between two widgets in pixels; 0 at first.
    void SetSpacing(int pixels);

signals:
    /// The height wanted changed, because a widget came, went, or wants another height.
    void HeightChanged(int height);

protected:
    bool event(QEvent* event) override;

private:
    int lastHeight_ = 0;
};

} // namespace Marlox
