// The drawn slider: what one step of a drag costs from the event to the repaint, and what a value
// change costs over a gradient. Everything happens in one shown window of the offscreen platform.

#include "script/ScriptSystem.h"
#include "widgets/CustomSlider.h"

#include <cstdio>
#include <cstdlib>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QSlider>
#include <QStyleFactory>

using namespace Marlox;

namespace {

constexpr QRect place(10, 10, 200, 24);
constexpr int firstX = 30;
constexpr int lastX = 170;

/// Repaints as often as a slider, and paints nothing.
class Nothing : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void mouseMoveEvent(QMouseEvent*) override { update(); }
    void paintEvent(QPaintEvent*) override {}
};

/// Draws its gradient column by column whenever its value changes.
class PlainTrack : public QWidget {
public:
    using QWidget::QWidget;
    Gradient gradient;
    int knob = 0;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().window());
        for (int x = 2; x < width() - 2; ++x) {
            const GradientColor c = gradient.QuickEvaluate((x - 2.0) / (width() - 4));
            painter.fillRect(x, 6, 1, height() - 12,
                             MxColor::FromDoubles(c.red, c.green, c.blue, c.alpha).ToQColor());
        }
        painter.fillRect(knob - 4, 4, 9, height() - 8, Qt::gray);
    }
};

template <class Widget>
struct Stage {
    Stage() : widget(new Widget(&window))
    {
        window.resize(220, 44);
        widget->setGeometry(place);
        window.show();
        window.activateWindow();
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
    }
    QWidget window;
    Widget* widget;
};

void send(QWidget& widget, QEvent::Type type, int x, Qt::MouseButton button = Qt::LeftButton)
{
    QMouseEvent event(type, QPointF(x, 12), QPointF(x + 10, 22),
                      type == QEvent::MouseMove ? Qt::NoButton : button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

/// Pointer positions of a drag to and fro, three pixels at a time.
class Sweep {
public:
    int Next()
    {
        if (x_ + step_ > lastX || x_ + step_ < firstX)
            step_ = -step_;
        return x_ += step_;
    }

private:
    int x_ = firstX;
    int step_ = 3;
};

void drag(benchmark::State& state, QWidget& widget, int grabX)
{
    send(widget, QEvent::MouseButtonPress, grabX);
    QCoreApplication::processEvents();
    Sweep sweep;
    for (auto _ : state) {
        send(widget, QEvent::MouseMove, sweep.Next());
        QCoreApplication::sendPostedEvents();
    }
    send(widget, QEvent::MouseButtonRelease, lastX);
    QCoreApplication::processEvents();
}

void DragSlider(benchmark::State& state)
{
    Stage<CustomSlider> stage;
    stage.widget->SetDefaultValue(0.5);
    stage.widget->SetTickFreq(11);
    drag(state, *stage.widget, int(stage.widget->KnobPixel()));
}

void DragQSlider(benchmark::State& state)
{
    Stage<QSlider> stage;
    stage.widget->setOrientation(Qt::Horizontal);
    stage.widget->setRange(0, 1000);
    drag(state, *stage.widget, 5);
}

void EmptyRepaint(benchmark::State& state)
{
    Stage<Nothing> stage;
    stage.widget->setAttribute(Qt::WA_OpaquePaintEvent);
    drag(state, *stage.widget, firstX);
}

Gradient rainbow()
{
    return Gradient(
        {{0.0, {1, 0, 0, 1}}, {0.3, {1, 1, 0, 1}}, {0.6, {0, 1, 1, 1}}, {1.0, {0, 0, 1, 1}}});
}

void GradientSlider(benchmark::State& state)
{
    Stage<CustomSlider> stage;
    const Gradient gradient = rainbow();
    stage.widget->SetGradients(&gradient);
    QCoreApplication::processEvents();
    bool high = false;
    for (auto _ : state) {
        stage.widget->SetValue((high = !high) ? 0.8 : 0.2);
        QCoreApplication::sendPostedEvents();
    }
}

void GradientRepaint(benchmark::State& state)
{
    Stage<PlainTrack> stage;
    stage.widget->setAttribute(Qt::WA_OpaquePaintEvent);
    stage.widget->gradient = rainbow();
    bool high = false;
    for (auto _ : state) {
        stage.widget->knob = (high = !high) ? 160 : 40;
        stage.widget->update();
        QCoreApplication::sendPostedEvents();
    }
}

BENCHMARK(DragSlider)->Name("slider/drag");
BENCHMARK(DragQSlider)->Name("slider/drag-qslider");
BENCHMARK(EmptyRepaint)->Name("slider/empty-repaint");
BENCHMARK(GradientSlider)->Name("slider/gradient");
BENCHMARK(GradientRepaint)->Name("slider/gradient-every-column");

/// Counts the rectangles that a value change paints.
class RectangleCount : public QObject {
public:
    int rectangles = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            rectangles += static_cast<QPaintEvent*>(event)->region().rectCount();
        return false;
    }
};

bool paintsTwoRectangles()
{
    Stage<CustomSlider> stage;
    const Gradient gradient = rainbow();
    stage.widget->SetGradients(&gradient);
    QCoreApplication::processEvents();
    RectangleCount count;
    stage.widget->installEventFilter(&count);
    stage.widget->SetValue(0.9);
    QCoreApplication::processEvents();
    return count.rectangles == 2;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    InstallScripting();
    if (!paintsTwoRectangles()) {
        std::fprintf(stderr, "a value change does not paint exactly two rectangles\n");
        return EXIT_FAILURE;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
