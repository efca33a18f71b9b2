// What one step of a drag in the drawn wheels and in the tonal ranges costs, from the event to the
// repaint, in one shown window of the offscreen platform.

#include "script/ScriptSystem.h"
#include "widgets/CustomColorRanges.h"
#include "widgets/CustomColorSuppression.h"
#include "widgets/CustomColorWheel.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>

using namespace Marlox;

namespace {

constexpr QRect place(10, 10, 220, 220);
constexpr double reach = 40.0; // pixels of the way there and back
constexpr double step = 3.0;

/// In pixels of the widget.
void send(QWidget& widget, QEvent::Type type, QPointF at)
{
    const bool moves = type == QEvent::MouseMove;
    const bool released = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, at, at + QPointF(place.topLeft()),
                      moves ? Qt::NoButton : Qt::LeftButton,
                      released ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

/// Drags what lies at `from` to and fro, in steps to the right and back.
void drag(benchmark::State& state, QWidget& widget, QPointF from)
{
    send(widget, QEvent::MouseButtonPress, from);
    QCoreApplication::processEvents();
    double way = 0.0;
    double next = step;
    for (auto _ : state) {
        if (way + next < 0.0 || way + next > reach)
            next = -next;
        way += next;
        send(widget, QEvent::MouseMove, from + QPointF(way, 0.0));
        QCoreApplication::sendPostedEvents();
    }
    send(widget, QEvent::MouseButtonRelease, from);
    QCoreApplication::processEvents();
}

/// A window with one of them.
template <class Widget>
struct Stage {
    Stage() : widget(*new Widget(&window))
    {
        window.resize(240, 240);
        widget.setGeometry(place);
        window.show();
        window.activateWindow();
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
    }
    QWidget window;
    Widget& widget;
};

void DragSuppression(benchmark::State& state)
{
    const Stage<CustomColorSuppression> stage;
    stage.widget.SetRecord(0, {0.0, {0.3, 0.8, 0.6, 1.0, 0.4, 0.7}});
    drag(state, stage.widget, stage.widget.Model().KnobPosition(0));
}

void DragRing(benchmark::State& state)
{
    const Stage<CustomColorWheel> stage;
    stage.widget.SetRecord(0, {.saturation = 0.5}); // the band pales
    drag(state, stage.widget, stage.widget.Model().PlaceOf(0.5 * M_PI, 0.8));
}

void DragTint(benchmark::State& state)
{
    const Stage<CustomColorWheel> stage;
    drag(state, stage.widget, stage.widget.Model().PlaceOf(1.2 * M_PI, 0.3));
}

/// The end of the shadows' handle, which moves a curve and the midtones.
void DragRanges(benchmark::State& state)
{
    const Stage<CustomColorRanges> stage;
    drag(state, stage.widget, stage.widget.NodePixel(2));
}

/// A wheel that is shown for the first time: its colours are computed.
template <class Wheel>
void Show(benchmark::State& state)
{
    QImage image(place.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        Wheel wheel;
        wheel.resize(place.size());
        wheel.render(&image);
    }
}

BENCHMARK(DragSuppression)->Name("color/suppression-drag");
BENCHMARK(DragRing)->Name("color/wheel-drag-ring");
BENCHMARK(DragTint)->Name("color/wheel-drag-tint");
BENCHMARK(DragRanges)->Name("color/ranges-drag");
BENCHMARK(Show<CustomColorWheel>)->Name("color/wheel-show");
BENCHMARK(Show<CustomColorSuppression>)->Name("color/suppression-show");

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    InstallScripting();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
