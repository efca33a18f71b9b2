#pragma once

#include "controls/inspector/SliderControl.h"
#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomSlider.h"

#include <memory>

#include <QEvent>
#include <QRegion>

namespace Marlox {

/// One number input of a tool with its slider control.
struct StagedInput {
    const char* id;
    std::vector<TagPair> attributes; // besides name and control
};

/// A document with one tool, whose inputs are shown by slider controls on an open, active inspector
/// page.
class SliderStage {
public:
    explicit SliderStage(std::vector<StagedInput> inputs, int width = 380);
    ~SliderStage();

    Input& InputOf(const char* id) const { return *tool->FindInput(id); }
    SliderControl& ControlOf(const char* id) const;
    CustomSlider& SliderOf(const char* id) const;
    TimeCodeEdit& EditOf(const char* id) const;
    double ValueOf(const char* id) const { return InputOf(id).GetNumber(document->CurrentTime()); }
    int UndoEntries() const { return document->Undo().Stack().count(); }

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
void Wheel(QWidget& widget, int delta, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
           Qt::ScrollPhase phase = Qt::NoScrollPhase);
void Key(QWidget& widget, QEvent::Type type, int key,
         Qt::KeyboardModifiers modifiers = Qt::NoModifier, bool repeated = false);
} // namespace Pointer

/// The middle of the knob.
QPointF KnobOf(const CustomSlider& slider);

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
