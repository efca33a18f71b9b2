// The colour field: its square beside two gradients of Qt's painter, and what one step of a drag
// costs from the event to the repaint. Everything happens in one shown window of the offscreen
// platform.

#include "script/ScriptSystem.h"
#include "system/color/DisplayColors.h"
#include "widgets/ColorSquare.h"
#include "widgets/CustomColorField.h"

#include <cstdio>
#include <cstdlib>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

using namespace Marlox;

namespace {

constexpr QRect place(10, 10, 400, 160);
constexpr int hueSteps = 359;

std::vector<double> evenly(int count, double from, double to)
{
    std::vector<double> numbers;
    for (int i = 0; i < count; ++i)
        numbers.push_back(from + (to - from) * i / (count - 1));
    return numbers;
}

ColorSquare squareOf(int pixels)
{
    return {evenly(pixels, 0.0, 1.0), evenly(pixels, 1.0, 0.0)};
}

/// Hues of a drag along the strip, round and round.
double nextHue()
{
    static int step = 0;
    return double(step = (step + 1) % hueSteps) / hueSteps;
}

void Square(benchmark::State& state)
{
    const ColorSquare square = squareOf(int(state.range()));
    QImage image;
    for (auto _ : state) {
        square.Paint(image, 0, nextHue(), DisplayColors::Global());
        benchmark::DoNotOptimize(image.constBits());
    }
}

void SquareOfGradients(benchmark::State& state)
{
    const int pixels = int(state.range());
    QImage image(pixels, pixels, QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&image);
        QLinearGradient across(0, 0, pixels, 0);
        across.setColorAt(0, Qt::white);
        across.setColorAt(1, QColor::fromHsvF(nextHue(), 1.0, 1.0));
        painter.fillRect(image.rect(), across);
        QLinearGradient down(0, 0, 0, pixels);
        down.setColorAt(0, Qt::transparent);
        down.setColorAt(1, Qt::black);
        painter.fillRect(image.rect(), down);
        painter.end();
        benchmark::DoNotOptimize(image.constBits());
    }
}

BENCHMARK(Square)->Name("color/square")->Arg(256)->Arg(512);
BENCHMARK(SquareOfGradients)->Name("color/square-gradients")->Arg(256)->Arg(512);

struct Stage {
    Stage() : field(new CustomColorField(&window))
    {
        window.resize(420, 180);
        field->setGeometry(place);
        field->SetShowsAlpha(true);
        field->SetRecord({0.58, 0.5, {}, 0.5});
        window.show();
        window.activateWindow();
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
    }
    void Send(QEvent::Type type, QPointF at) const
    {
        const bool moves = type == QEvent::MouseMove;
        const bool released = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, at + QPointF(place.topLeft()),
                          moves ? Qt::NoButton : Qt::LeftButton,
                          released ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(field, &event);
    }
    QWidget window;
    CustomColorField* field;
};

/// To and fro from `from`, by three pixels up or down.
void drag(benchmark::State& state, const Stage& stage, QPointF from)
{
    stage.Send(QEvent::MouseButtonPress, from);
    QCoreApplication::processEvents();
    double way = 0.0;
    double step = 3.0;
    for (auto _ : state) {
        if (way + step < 0.0 || way + step > place.height() / 2.0)
            step = -step;
        way += step;
        stage.Send(QEvent::MouseMove, from + QPointF(0.0, way));
        QCoreApplication::sendPostedEvents();
    }
    stage.Send(QEvent::MouseButtonRelease, from);
    QCoreApplication::processEvents();
}

void DragInSquare(benchmark::State& state)
{
    const Stage stage;
    drag(state, stage, {100.0, 40.0});
}

void DragHue(benchmark::State& state)
{
    const Stage stage;
    drag(state, stage, stage.field->Model().HueStrip().topLeft() + QPointF(5.0, 20.0));
}

BENCHMARK(DragInSquare)->Name("color/field-drag");
BENCHMARK(DragHue)->Name("color/field-drag-hue");

/// Whether the square has the very pixels of QColor's, set one by one.
bool isExact(int pixels)
{
    const ColorSquare square = squareOf(pixels);
    const std::vector<double> saturations = evenly(pixels, 0.0, 1.0);
    const std::vector<double> values = evenly(pixels, 1.0, 0.0);
    QImage image;
    QImage plain(pixels, pixels, QImage::Format_RGB32);
    for (const double hue : {0.0, 0.1234, 0.3, 0.5, 0.71, 0.9999}) {
        square.Paint(image, 0, hue, DisplayColors::Global());
        for (int y = 0; y < pixels; ++y) {
            for (int x = 0; x < pixels; ++x)
                plain.setPixelColor(
                    x, y,
                    QColor::fromHsvF(hue, saturations[std::size_t(x)], values[std::size_t(y)]));
        }
        if (image != plain)
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    InstallScripting();
    if (!isExact(256) || !isExact(512)) {
        std::fprintf(stderr, "the square differs from QColor::fromHsvF\n");
        return EXIT_FAILURE;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
