// A drag of a transform's centre over a picture of 4096 x 2160 floats, sixty moves a second, in a
// viewer with all that belongs to it: rendering at proxy resolution, display conversion, painting.
// Tells how far the painted frames are apart, how long it takes from a move of the mouse to the
// overlay painted at its new place, and to the picture that was rendered for it or for a later one.
// Measured in one drag; the repetitions report the same figures.

#include "script/ScriptSystem.h"
#include "system/document/MarloxDoc.h"
#include "system/evaluation/Renderer.h"
#include "workbench/images/ImageFile.h"
#include "workbench/tools/Tools.h"
#include "workbench/viewer/ViewerWidget.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <dlfcn.h>
#include <map>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEventLoop>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTimer>

using namespace Marlox;

namespace {

constexpr int moves = 240; // four seconds
constexpr double frame = 1.0 / 60.0;

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

[[noreturn]] void Fail(const QString& why)
{
    std::fprintf(stderr, "drag: %s\n", qPrintable(why));
    std::exit(1);
}

/// Latencies in seconds.
struct Latencies {
    std::vector<double> painted;
    std::vector<double> updated;
    std::vector<double> between; // from one painted frame to the next
};

double Percentile(std::vector<double> values, double part)
{
    if (values.empty())
        Fail("nothing was painted");
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, std::size_t(part * double(values.size())))];
}

QString WritePicture(const QTemporaryDir& folder)
{
    Image::Format format;
    format.displayWindow = format.dataWindow = {0, 0, 4096, 2160};
    const auto image = MakeRef<Image>(format);
    for (int y = 0; y < image->Height(); ++y) {
        float* row = image->Row(y);
        for (int x = 0; x < image->Width(); ++x, row += 4) {
            row[0] = float(x) / 4096.0f;
            row[1] = float(y) / 2160.0f;
            row[2] = float((x ^ y) & 255) / 255.0f;
            row[3] = 1.0f;
        }
    }
    const QString path = folder.filePath("picture.exr");
    QString error;
    if (!WriteImage(*image, path, &error))
        Fail(error);
    return path;
}

/// One drag and what came of its moves when.
class Drag {
public:
    explicit Drag(const QString& picture)
    {
        Operator* source = Added("ImageSource");
        source->FindInput("File")->SetValue(*MakeRef<Text>(picture.toStdString()), 0.0);
        Operator* transform = Added("Transform");
        viewer_.resize(1280, 720);
        viewer_.show();
        viewer_.Overlays().SetOperator(transform);
        while (!viewer_.ShownImage() || !viewer_.IsSettled())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        Renderer& renderer = document_.GetRenderer();
        QObject::connect(&renderer, &Renderer::Started, &viewer_,
                         [this](quint64 serial) { started_[serial] = SecondsSince(start_); });
        QObject::connect(&renderer, &Renderer::Finished, &viewer_,
                         [this](const RenderResult& result) {
                             made_[result.image.Get()] = started_[result.serial];
                         });
        QObject::connect(&viewer_, &ViewerWidget::ImageShown, &viewer_,
                         [this] { shownFrom_ = made_[viewer_.ShownImage().Get()]; });
        QObject::connect(&viewer_, &QOpenGLWidget::frameSwapped, &viewer_, [this] { Swapped(); });
    }

    Latencies Run()
    {
        const QPointF from = viewer_.ImageToWidget({0.5, 0.5});
        Send(QEvent::MouseMove, from, Qt::NoButton);
        Send(QEvent::MouseButtonPress, from, Qt::LeftButton);
        start_ = Clock::now();
        for (int i = 0; i < moves; ++i) {
            const double turn = i * 0.1;
            const double now = SecondsSince(start_);
            unpainted_.push_back(now);
            withoutImage_.push_back(now);
            Send(QEvent::MouseMove, from + QPointF(150 * std::sin(turn), 90 * std::sin(turn * 1.3)),
                 Qt::LeftButton);
            QEventLoop wait; // sleeps while there is nothing to do, as the application does
            const double left = (i + 1) * frame - SecondsSince(start_);
            QTimer::singleShot(std::max(0, int(left * 1000.0)), Qt::PreciseTimer, &wait,
                               &QEventLoop::quit);
            wait.exec();
        }
        Send(QEvent::MouseButtonRelease, from, Qt::LeftButton);
        return latencies_;
    }

private:
    Operator* Added(const char* name)
    {
        QString error;
        Operator* tool = document_.AddTool(MxID(name), -1, &error);
        if (!tool)
            Fail(error);
        return tool;
    }

    void Send(QEvent::Type type, QPointF at, Qt::MouseButton button)
    {
        const bool moves = type == QEvent::MouseMove;
        const Qt::MouseButtons held =
            type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
        QMouseEvent event(type, at, moves ? Qt::NoButton : button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&viewer_, &event);
    }

    void Swapped()
    {
        const double now = SecondsSince(start_);
        latencies_.between.push_back(now - std::exchange(swapped_, now));
        for (; !unpainted_.empty(); unpainted_.pop_front())
            latencies_.painted.push_back(now - unpainted_.front());
        for (; !withoutImage_.empty() && withoutImage_.front() <= shownFrom_;
             withoutImage_.pop_front())
            latencies_.updated.push_back(now - withoutImage_.front());
    }

    MarloxDoc document_;
    ViewerWidget viewer_{document_};
    Clock::time_point start_ = Clock::now();
    std::map<quint64, double> started_;   // renders, by serial
    std::map<const Image*, double> made_; // when the render of an image began
    double swapped_ = 0.0;
    double shownFrom_ = -1.0;         // of the image on show
    std::deque<double> unpainted_;    // moves whose overlay is not painted yet
    std::deque<double> withoutImage_; // moves whose picture is not there yet
    Latencies latencies_;
};

const Latencies& Measured()
{
    static const Latencies latencies = [] {
        const QTemporaryDir folder;
        return Drag(WritePicture(folder)).Run();
    }();
    return latencies;
}

void Report(benchmark::State& state, double seconds)
{
    for (auto _ : state)
        state.SetIterationTime(seconds);
}

void Add(const char* name, std::vector<double> Latencies::*which, double part)
{
    benchmark::RegisterBenchmark(
        name, [=](benchmark::State& state) { Report(state, Percentile(Measured().*which, part)); })
        ->UseManualTime()
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    QSurfaceFormat format;
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    QSurfaceFormat::setDefaultFormat(format);
    QApplication application(argc, argv);
    InstallScripting();
    RegisterTools();
    if (!dlopen(MARLOX_BINARY_DIR "/lib/marloxcontrols.so", RTLD_NOW | RTLD_LOCAL))
        Fail(dlerror());
    Add("drag/painted-median", &Latencies::painted, 0.5);
    Add("drag/painted-99", &Latencies::painted, 0.99);
    Add("drag/frames", &Latencies::between, 0.5);
    Add("drag/image-median", &Latencies::updated, 0.5);
    Add("drag/image-99", &Latencies::updated, 0.99);
    benchmark::RunSpecifiedBenchmarks();
}
