#pragma once

#include "system/base/HostClassIds.h"
#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomSlider.h"

#include <memory>

#include <QEvent>
#include <QRegion>

namespace Marlox {

/// One input of a tool, and the control that shows it.
struct StagedInput {
    const char* id;                  // its name too
    std::vector<TagPair> attributes; // besides name and control
    const char* control = CLSID_InputControl_Slider;
};

/// A document with one tool, whose inputs stand on an open, active inspector page. What takes an id
/// means the first input unless it is given one.
class InspectorStage {
public:
    explicit InspectorStage(const std::vector<StagedInput>& inputs, int width = 380);
    ~InspectorStage();

    Input& InputOf(const char* id = nullptr) const;
    double ValueOf(const char* id = nullptr) const;
    template <class Control = InputControl>
    Control& ControlOf(const char* id = nullptr) const
    {
        return dynamic_cast<Control&>(*page->ControlOf(InputOf(id)));
    }
    /// A widget of the input's control, by the name of its place; null if there is none.
    template <class Widget>
    Widget* PartOf(const char* name, const char* id = nullptr) const
    {
        return ControlOf(id).template findChild<Widget*>(name);
    }
    CustomSlider& SliderOf(const char* id = nullptr) const;
    TimeCodeEdit& EditOf(const char* id = nullptr) const;

    QStringList UndoTexts() const; // oldest first
    int UndoEntries() const { return document->Undo().Stack().count(); }
    /// The value and, in brackets, how many undo entries there are: "0.5 (1)".
    QString Outcome(const char* id = nullptr) const;
    /// No gesture has left anything open: neither an undo group nor proxy rendering.
    bool IsIdle() const { return document->Undo().Depth() == 0 && !document->IsAutoProxy(); }

    std::unique_ptr<MarloxDoc> document;
    std::unique_ptr<QWidget> window;
    ControlWnd* page = nullptr; // a child of the window
    Operator* tool = nullptr;
};

/// Mouse, wheel and keys as the system would send them, in pixels of the widget.
namespace Pointer {
void Press(QWidget& widget, QPointF at, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
           Qt::MouseButton button = Qt::LeftButton);
void Move(QWidget& widget, QPointF at, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
          Qt::MouseButtons buttons = Qt::LeftButton);
void Release(QWidget& widget, QPointF at, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
             Qt::MouseButton button = Qt::LeftButton);
void Click(QWidget& widget, QPointF at, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
void Wheel(QWidget& widget, int delta, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
           Qt::ScrollPhase phase = Qt::NoScrollPhase);
void Key(QWidget& widget, QEvent::Type type, int key,
         Qt::KeyboardModifiers modifiers = Qt::NoModifier, bool repeated = false);
/// Presses a key and lets it go.
void Stroke(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
/// Whether a widget wants the key before any shortcut gets it.
bool IsWanted(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
              const QString& text = {});
} // namespace Pointer

/// The middle of the knob.
QPointF KnobOf(const CustomSlider& slider);
/// Presses the knob and moves it to these distances from there.
void DragKnob(CustomSlider& slider, std::initializer_list<int> distances);

/// What the tooltip of a widget says.
QString ToolTipOf(QWidget& widget);
QColor LookColor(const char* name);
/// Pixels of a colour in what a widget draws.
int PixelsOf(QWidget& widget, const QColor& color);

/// Collects what a widget was asked to paint since the last call of Take.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(QWidget& widget);
    QRegion Take();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QRegion painted_;
};

} // namespace Marlox
