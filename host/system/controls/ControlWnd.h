#pragma once

#include "system/controls/InputControl.h"

#include <QWidget>

namespace Marlox {

/// The page of the inspector that holds the controls of one tool, one below the other. It drives
/// the life cycle of its controls: makes them from the inputs' attributes (IAS_Control,
/// IAS_SharedWith), attaches, opens, sizes, notifies them on changes of values and time, closes and
/// releases them. A host puts it in a scroll area. It keeps its tool alive while it shows it, and
/// lets go of it when the document removes it.
///
/// A row, from the left: a mark of the state of its inputs, the control, the keyframe button of its
/// first input. Pixels.
///
/// Headings fold the rows below them: such rows take no room and no keyboard focus, whatever hides
/// them besides. A row's control is made when the row is first unfolded, but for headings: those of
/// the class CLSID_InputControl_Nest and of classes that inherit from it are there from the start.
class MARLOXSYSTEM_EXPORT ControlWnd : public QWidget {
    Q_OBJECT
public:
    explicit ControlWnd(QWidget* parent = nullptr);
    ~ControlWnd() override;

    /// Shows the controls of `tool` (null: none). Inputs whose control class is not registered show
    /// a line that says so.
    void SetOperator(Operator* tool);
    Operator* GetOperator() const { return operator_; }
    /// From top to bottom, without those of rows that were never unfolded.
    const std::vector<Ref<InputControl>>& Controls() const { return controls_; }
    /// Makes that of a row which was never unfolded (and stays folded). Null: there is none.
    InputControl* ControlOf(const Input& input) const;
    /// The wish of `changed` (null: of all) is another now: the rows are placed anew, in one pass
    /// at the next turn of the event loop.
    void RecalcSizes(const InputControl* changed = nullptr);
    /// Shows the state of a control's inputs (animated, keyed, expression) beside it.
    void UpdateState(const InputControl& control);
    /// A place below a control for the expression lines of one whose layout has none.
    Container* PlaceBelow(const InputControl& control);
    /// Makes a control the heading of rows below it, or tells that it has changed; controls call it
    /// from their Open on. It folds, while not `open`, the rows of the next `inputs` inputs of the
    /// page; 0: all up to the next heading. A heading among the rows that another one counts stands
    /// inside it and reaches no further than that one does. Rows that get folded end their gestures
    /// and hand the focus to the heading.
    void SetHeading(InputControl& control, int inputs, bool open);
    /// Whether a heading above the control's row has it folded.
    bool IsFolded(const InputControl& control) const;
    /// When the rows are placed: scrolls the area that the page stands in, if any, as far as is
    /// needed and possible to show the heading and what it has unfolded.
    void Reveal(const InputControl& heading);
    /// Controls in the middle of a gesture end it (the page goes away, the plug-in is unloaded).
    void EndGestures();
    MxColor BackgroundColor() const;

    /// Before a library with control classes is unloaded: every page lets go of its controls at
    /// once, and makes them anew, from what is registered then, when ReopenAll is called.
    static void ReleaseAll();
    static void ReopenAll();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// A problem for the status line: a missing class, a broken layout.
    void Problem(const QString& text);
    /// The content's height changed.
    void HeightChanged(int height);
    /// Another tool is shown, also when the shown one was removed from its document (null then).
    void OperatorChanged(Marlox::Operator* tool);
    /// A control wrote `value` (as accepted) at `time`; `final`: its gesture is over.
    void ValueWritten(Marlox::Input* input, Marlox::Parameter* value, double time, bool final);

protected:
    bool event(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    friend class InputControl;
    class Private;
    // A scroll of the page that goes on stays the page's, whatever comes below the cursor.
    bool IsScrolling() const;
    void ForgetScrolling();

    Operator* operator_ = nullptr;
    std::vector<Ref<InputControl>> controls_;
    std::unique_ptr<Private> d_;
};

} // namespace Marlox
