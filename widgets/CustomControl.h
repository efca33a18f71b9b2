#pragma once

#include "system/base/MxColor.h"
#include "system/base/Object.h"
#include "system/document/MarloxDoc.h"

#include <QPointer>
#include <QWidget>

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
    bool InGesture() const { return inGesture_; }

    // Object
    MarloxDoc* GetDoc() const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

protected:
    /// Starts a gesture, or goes on with the one that is running.
    void BeginGesture(bool withProxy);
    /// Ends it, if there is one. The owner may delete the widget meanwhile.
    void FinishGesture();
    /// The end of a gesture got lost: overridden to clear what was held, then passed on.
    virtual void LoseGesture() { FinishGesture(); }
    /// What is behind the widget.
    MxColor BackgroundColor() const;
    /// During a paint event: the image that it goes to, for widgets that only copy pixels and are
    /// repainted for each step of a drag (opening a QPainter costs more than their pixels do). Null
    /// where it has to be a QPainter: another one is at work, or the target is none of 32-bit
    /// pixels, `ratio` whole ones for each of the widget's. `offset` is the image's pixel of the
    /// widget's origin. Only the event's region may be written.
    QImage* PaintedImage(QPoint& offset, int& ratio) const;

    bool event(QEvent* event) override;

private:
    bool EndsGesture(const QEvent& event) const;

    QPointer<InputControl> owner_;
    bool locked_ = false;
    bool inGesture_ = false;
    QPointer<MarloxDoc> proxyDoc_; // where proxy rendering was switched on
    Ref<Operator> proxyTool_;
};

} // namespace Marlox
