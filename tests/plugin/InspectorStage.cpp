#include "plugin/InspectorStage.h"

#include "host/controls/Probe.h"
#include "script/ScriptSystem.h"
#include "system/resources/Resources.h"

#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QToolTip>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QtTest>

namespace Marlox {

InspectorStage::InspectorStage(const std::vector<StagedInput>& inputs, int width)
    : document(std::make_unique<MarloxDoc>()), window(std::make_unique<QWidget>()),
      page(new ControlWnd(window.get()))
{
    InstallScripting();
    SetProbeInputs([inputs](Operator& added) {
        for (const StagedInput& input : inputs) {
            TagList tags({{IAS_Name, input.id}, {IAS_Control, input.control}});
            for (const TagPair& pair : input.attributes)
                tags.Add(u32(pair.tag), pair.value); // some repeat
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

InspectorStage::~InspectorStage() = default;

Input& InspectorStage::InputOf(const char* id) const
{
    return id ? *tool->FindInput(id) : *tool->Inputs().front();
}

double InspectorStage::ValueOf(const char* id) const
{
    return InputOf(id).GetNumber(document->CurrentTime());
}

QString InspectorStage::Outcome(const char* id) const
{
    return QStringLiteral("%1 (%2)").arg(ValueOf(id), 0, 'g', 15).arg(UndoEntries());
}

CustomSlider& InspectorStage::SliderOf(const char* id) const
{
    return *PartOf<CustomSlider>("slider", id);
}

TimeCodeEdit& InspectorStage::EditOf(const char* id) const
{
    return *PartOf<TimeCodeEdit>("edit", id);
}

QStringList InspectorStage::UndoTexts() const
{
    QStringList texts;
    for (int i = 0; i < UndoEntries(); ++i)
        texts += document->Undo().Stack().text(i);
    return texts;
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

void Pointer::Click(QWidget& widget, QPointF at, Qt::KeyboardModifiers modifiers)
{
    Press(widget, at, modifiers);
    Release(widget, at, modifiers);
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

void Pointer::Stroke(QWidget& widget, int key, Qt::KeyboardModifiers modifiers)
{
    Key(widget, QEvent::KeyPress, key, modifiers);
    Key(widget, QEvent::KeyRelease, key, modifiers);
}

bool Pointer::IsWanted(QWidget& widget, int key, Qt::KeyboardModifiers modifiers,
                       const QString& text)
{
    QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, text);
    event.ignore();
    QApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

QPointF KnobOf(const CustomSlider& slider)
{
    return {slider.KnobPixel(), slider.height() / 2.0};
}

void DragKnob(CustomSlider& slider, std::initializer_list<int> distances)
{
    const QPointF start = KnobOf(slider);
    Pointer::Press(slider, start);
    for (const int x : distances)
        Pointer::Move(slider, start + QPointF(x, 0));
}

QString ToolTipOf(QWidget& widget)
{
    QToolTip::hideText();
    QHelpEvent asks(QEvent::ToolTip, {5, 5}, widget.mapToGlobal({5, 5}));
    QApplication::sendEvent(&widget, &asks);
    return QToolTip::text();
}

QColor LookColor(const char* name)
{
    return LookPack::Global().Color(name, {1, 2, 3}).ToQColor();
}

int PixelsOf(QWidget& widget, const QColor& color)
{
    const QImage image = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) == color.rgb() ? 1 : 0;
    }
    return count;
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
