#pragma once

#include "system/base/MxColor.h"
#include "system/base/Object.h"
#include "system/controls/ProxyGesture.h"
#include "widgets/PointerDrag.h"

#include <optional>

#include <QPointer>
#include <QWidget>

class QPainter;

namespace Marlox {

class InputControl;

/// A host object and a Qt widget at once, the host object first (as scripts have it), which Qt's
/// meta-object compiler allows for a class without slots only.
class _CustomControl : public Object, public QWidget {
public:
    using Reuser::operator new;
    using Reuser::operator delete;

protected:
    explicit _CustomControl(QWidget* parent) : QWidget(parent) {}
};

/// Base of the drawn widgets that inspector controls place: its owner, and the bracket around what
/// the user does to it in one go.
///
/// A gesture lasts from BeginGesture to FinishGesture; its values become one undo entry of the
/// owner's, closed by ResetUndo at the end. Gestures that asked for it switch the owner's tool to
/// automatic proxy rendering meanwhile and ask for a full render at the end. An end that gets lost
/// (focus or window gone, a dialog in the way, hidden, disabled, deleted) ends the gesture too.
///
/// Drags, for the widgets that override Grab: with the left button; the press takes the keyboard
/// focus, what it grabs is dragged until the release, and Escape brings back what was there before.
/// Ctrl makes a drag fine (see PointerDrag), Shift keeps it to one axis. The widget opens the undo
/// entry with its first change (OpenUndo). Without one, nothing is rendered anew at the end.
///
/// Keys, for the widgets that have parts: Page Up and Page Down go from one part to the next, the
/// arrow keys move it, with Shift coarsely, with Ctrl finely. What is done until a key is released
/// is one undo entry.
class CustomControl : public _CustomControl {
    Q_OBJECT
    Q_PROPERTY(bool locked READ IsLocked WRITE SetLocked)
public:
    explicit CustomControl(QWidget* parent = nullptr);
    ~CustomControl() override;

    /// Not owned. Null, before the owner goes, ends a gesture and cuts the widget off from it.
    void SetOwner(InputControl* owner);
    InputControl* Owner() const;
    /// While locked, presses and keys go to nobody.
    bool IsLocked() const { return locked_; }
    virtual void SetLocked(bool locked);
    /// One sentence on what is edited, for the tooltip, above how the widget is used; empty: none.
    void SetHelp(const QString& help);
    const QString& Help() const { return help_; }
    bool InGesture() const { return inGesture_; }
    /// Ends what the user is doing to it, and keeps what it wrote: there is nothing left to edit.
    void EndGesture() { LoseGesture(); }
    bool IsDragged() const { return drag_.has_value(); }
    /// Parts that keys move and screen readers tell; without any, neither does anything.
    virtual int PartCount() const { return 0; }
    /// One of them in words, with its value: "Hue 0.25".
    virtual QString DescribePart(int) const { return {}; }
    /// The part that the keys move, from 0.
    int ActivePart() const { return activePart_; }
    void SetActivePart(int part);
    /// As Page Down (1) and Page Up (-1).
    void StepActivePart(int by);
    /// As one stroke of an arrow key (y upwards), one undo entry. Nothing while locked or disabled.
    void NudgeActivePart(QPoint way);

    // Object
    MarloxDoc* GetDoc() const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

protected:
    /// How the widget is used, in words, for the tooltip.
    void SetUse(const QString& use);

    /// Starts a gesture, or goes on with the one that is running.
    void BeginGesture(bool withProxy);
    /// Ends it, if there is one. The owner may delete the widget meanwhile.
    void FinishGesture();
    /// Ends it and undoes what it wrote; it leaves no undo entry.
    void GiveUpGesture();
    /// The end of a gesture got lost: overridden to clear what was held, then passed on.
    virtual void LoseGesture();
    /// The gesture makes a change: opens its undo entry, unless it is open.
    void OpenUndo(const char* text);
    /// The same where it is the owner that opens the entry, with its first write.
    void MarkChanged() { changes_ = true; }

    // Drags. Pixels of the widget.
    /// What is at the place of a press becomes the one that is dragged; false: there is nothing.
    virtual bool Grab(QPoint) { return false; }
    /// After a press that grabbed something. Usually the press is a move.
    virtual void PressOn(const PointerDrag::Step& step) { DragTo(step); }
    /// The pointer has moved on; false ends the drag.
    virtual bool DragTo(const PointerDrag::Step&) { return false; }
    /// Escape: writes what was there before the drag, while it still goes on. Undo, which follows,
    /// brings back only what it keeps: nothing without an owner, or of passive inputs.
    virtual void BringBack() {}
    /// Nothing is dragged any more: the drag has ended, one way or another.
    virtual void Drop() {}
    /// The pointer moves without dragging; without a value it has left.
    virtual void HoverAt(std::optional<QPoint>) {}
    /// An Alt+click: what is there goes back to its default. False: the widget knows no defaults,
    /// and the press is like any other.
    virtual bool ResetAt(QPoint) { return false; }
    /// Of the pointer's way in fine mode.
    virtual double FineShare() const { return 0.1; }

    /// Keys: moves the active part: x to the right and y upwards, -1 to 1; level 0 fine, 1 plain, 2
    /// coarse.
    virtual void Nudge(int, QPoint, int) {}
    /// Whether it is a key of the parts or of the drag that is going on; none is while locked.
    bool IsOwnKey(const QKeyEvent& event) const;
    /// The ring that tells the keyboard focus, just inside `around`, one crisp line wide.
    void PaintFocusRing(QPainter& painter, const QRectF& around, double radius = 2.0) const;

    /// What is behind the widget.
    MxColor BackgroundColor() const;
    /// During a paint event: the image that it goes to, for widgets that only copy pixels and are
    /// repainted for each step of a drag (opening a QPainter costs more than their pixels do). Null
    /// where it has to be a QPainter: another one is at work, or the target is none of 32-bit
    /// pixels, `ratio` whole ones for each of the widget's. `offset` is the image's pixel of the
    /// widget's origin. Only the event's region may be written.
    QImage* PaintedImage(QPoint& offset, int& ratio) const;

    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    bool EndsGesture(const QEvent& event) const;
    void Press(QPoint at, Qt::KeyboardModifiers modifiers);
    void EndDrag();

    QPointer<InputControl> owner_;
    QString help_;
    QString use_;
    bool locked_ = false;
    bool inGesture_ = false;
    bool changes_ = true; // what the gesture did has to be rendered at its end
    std::optional<PointerDrag> drag_;
    int activePart_ = 0;
    ProxyGesture proxy_;
};

} // namespace Marlox
