#pragma once

#include "system/base/Types.h"

#include <QAbstractButton>

namespace Marlox {

/// The small button beside an input that shows whether its value is animated and, by a click, a
/// touch of Space or Enter, asks to set or remove the key at the current time. It never changes its
/// state itself: its owner sets what is true.
class MARLOXSYSTEM_EXPORT KeyFrameIndicator : public QAbstractButton {
    Q_OBJECT
    Q_PROPERTY(State state READ GetState WRITE SetState)
public:
    enum class State {
        None,       // no keys: an outlined diamond
        Animated,   // keys, but none at the current time: a diamond, half filled
        Keyed,      // a key at the current time: a full diamond
        Expression, // driven by an expression: an italic "f"
    };
    Q_ENUM(State)

    explicit KeyFrameIndicator(QWidget* parent = nullptr);

    State GetState() const { return state_; }
    void SetState(State state);
    /// The state in a word, for tooltips and screen readers.
    static QString StateText(State state);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The user asks to set the key at the current time, or to remove it.
    void Toggled();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override; // a tooltip, where its owner gave none

private:
    State state_ = State::None;
};

} // namespace Marlox
