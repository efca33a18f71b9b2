#include "plugin/SliderStage.h"

#include "host/controls/Probe.h"
#include "script/ScriptSystem.h"
#include "system/base/HostClassIds.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QtTest>

namespace Marlox {

SliderStage::SliderStage(std::vector<StagedInput> inputs, int width)
    : document(std::make_unique<MarloxDoc>()), window(std::make_unique<QWidget>()),
      page(new ControlWnd(window.get()))
{
    InstallScripting();
    SetProbeInputs([inputs](Operator& added) {
        for (const StagedInput& input : inputs) {
            TagList tags({{IAS_Name, input.id}, {IAS_Control, CLSID_InputControl_Slider}});
            for (const TagPair& pair : input.attributes)
                tags.Set(u32(pair.tag), pair.value);
            added.AddInput(input.id, tags);
        }
    });
    tool = document->AddTool("ProbeTool");
    document->Undo().Clear();
    auto* column = new QVBoxLayout(window.get());
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(page);
    page->SetOperator(tool);
    window->resize(width, page->sizeHint().height());
    window->show();
    window->activateWindow();
    (void)QTest::qWaitForWindowActive(window.get());
    QCoreApplication::processEvents();
}

SliderStage::~SliderStage() = default;

SliderControl& SliderStage::ControlOf(const char* id) const
{
    return dynamic_cast<SliderControl&>(*page->ControlOf(InputOf(id)));
}

CustomSlider& SliderStage::SliderOf(const char* id) const
{
    return *ControlOf(id).findChild<CustomSlider*>("slider");
}

TimeCodeEdit& SliderStage::EditOf(const char* id) const
{
    return *ControlOf(id).findChild<TimeCodeEdit*>("edit");
}

namespace {

void sendMouse(QWidget& widget, QEvent::Type type, QPointF at, Qt::MouseButton button,
               Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    QMouseEvent event(type, at, QPointF(widget.mapToGlobal(QPoint())) + at, button, buttons,
                      modifiers);
    QApplication::sendEvent(&widget, &event);
}

} // namespace

void Pointer::Press(QWidget& widget, QPointF at, Qt::KeyboardModifiers modifiers,
                    Qt::MouseButton button)
{
    sendMouse(widget, QEvent::MouseButtonPress, at, button, button, modifiers);
}

void Pointer::Move(QWidget& widget, QPointF at, Qt::KeyboardModifiers modifiers,
                   Qt::MouseButtons buttons)
{
    sendMouse(widget, QEvent::MouseMove, at, Qt::NoButton, buttons, modifiers);
}

void Pointer::Release(QWidget& widget, QPointF at, Qt::KeyboardModifiers modifiers,
                      Qt::MouseButton button)
{
    sendMouse(widget, QEvent::MouseButtonRelease, at, button, Qt::NoButton, modifiers);
}

void Pointer::Wheel(QWidget& widget, int delta, Qt::KeyboardModifiers modifiers,
                    Qt::ScrollPhase phase)
{
    const QPointF at(4, 4);
    QWheelEvent event(at, QPointF(widget.mapToGlobal(QPoint())) + at, QPoint(), QPoint(0, delta),
                      Qt::NoButton, modifiers, phase, false);
    QApplication::sendEvent(&widget, &event);
}

void Pointer::Key(QWidget& widget, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
                  bool repeated)
{
    QKeyEvent event(type, key, modifiers, QString(), repeated);
    QApplication::sendEvent(&widget, &event);
}

QPointF KnobOf(const CustomSlider& slider)
{
    return {slider.KnobPixel(), slider.height() / 2.0};
}

PaintWatch::PaintWatch(QWidget& widget)
{
    widget.installEventFilter(this);
    QCoreApplication::processEvents();
    Take();
}

QRegion PaintWatch::Take()
{
    QCoreApplication::processEvents();
    return std::exchange(painted_, QRegion());
}

bool PaintWatch::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint)
        painted_ += static_cast<QPaintEvent*>(event)->region();
    return QObject::eventFilter(watched, event);
}

} // namespace Marlox
