#pragma once

#include "widgets/CustomControl.h"

#include <optional>

#include <QBasicTimer>
#include <QElapsedTimer>

namespace Marlox {

/// Base of the drawn widgets that hold one number on a scale or more, or one of several entries:
/// keys, wheel and what they have in common.
///
/// Step keys: Left and Page Down go down, Right and Page Up go up, Home and End to the ends (of a
/// scale; others say what theirs are). They step with level 1, with Ctrl 0 (fine), else with Shift
/// 2 (coarse), before any shortcut of the window gets them. What is done until a key is released is
/// one undo entry. Up and Down are left to others. Escape, while the pointer holds something that
/// began a gesture, brings back what was there before.
///
/// Wheel: steps with the same levels, in the widget with keyboard focus only, and never takes a
/// scroll that began elsewhere. Deltas of touchpads add up to steps of 120. What is done until a
/// pause is one undo entry.
class CustomController : public CustomControl {
    Q_OBJECT
public:
    /// How long the wheel rests, in milliseconds, until its gesture ends, or until a scroll that
    /// began elsewhere has ended.
    static constexpr int wheelPause = 400;

    explicit CustomController(QWidget* parent = nullptr);
    ~CustomController() override;

protected:
    enum class Way { Down, Up, Low, High };
    /// One step (`level` as above) or a jump to an end.
    virtual void StepBy(Way way, int level) = 0;
    virtual std::optional<Way> WayOf(int key) const;                     // of a step key
    virtual int LevelOf(int key, Qt::KeyboardModifiers modifiers) const; // key 0: the wheel's
    /// The pointer holds something: keys and wheel must wait.
    virtual bool IsHeld() const = 0;
    /// Ctrl went down or up.
    virtual void SetFine(bool fine) = 0;

    void LoseGesture() override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    bool GivesUp(const QKeyEvent& event) const;
    bool IsForeign(const QWheelEvent& event);
    void StepByWheel(int steps, int level);

    bool shiftHeld_ = false;
    bool ownScroll_ = false; // a scroll with phases began here
    int wheelRest_ = 0;      // eighths of a degree short of a step
    QBasicTimer wheelEnd_;
    QElapsedTimer foreignWheel_; // since another widget got a wheel event
};

} // namespace Marlox
