#pragma once

#include "system/controls/InputControl.h"

#include <QWidget>

namespace Marlox {

/// The page of the inspector that holds the controls of one tool, one below the other. It drives the
/// life cycle of its controls: makes them from the inputs' attributes (IAS_Control, IAS_SharedWith),
/// attaches, opens, sizes, notifies them on changes of values and time, closes and releases them. A
/// host puts it in a scroll area.
class MARLOXSYSTEM_EXPORT ControlWnd : public QWidget {
    Q_OBJECT
public:
    explicit ControlWnd(QWidget* parent = nullptr);
    ~ControlWnd() override;

    /// Shows the controls of `tool` (null: none). Inputs whose control class is not registered show
    /// a line that says so.
    void SetOperator(Operator* tool);
    Operator* GetOperator() const { return operator_; }
    const std::vector<Ref<InputControl>>& Controls() const { return controls_; }
    InputControl* ControlOf(const Input& input) const;
    /// The control's wish was changed: layout is redone at the next turn of the event loop.
    void RecalcSizes();
    /// Controls in the middle of a gesture end it (the page goes away, the plug-in is unloaded).
    void EndGestures();
    /// The keyframe button, name for messages, and the row's place are the page's own.
    MxColor BackgroundColor() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// A problem for the status line: a missing class, a broken layout.
    void Problem(const QString& text);
    /// The content's height changed.
    void HeightChanged(int height);

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    class Private;
    Operator* operator_ = nullptr;
    std::vector<Ref<InputControl>> controls_;
    std::unique_ptr<Private> d_;
};

} // namespace Marlox
