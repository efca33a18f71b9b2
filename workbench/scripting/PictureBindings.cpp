// Screenshots, pixels, renders and waiting.

#include "system/document/MarloxDoc.h"
#include "system/evaluation/Renderer.h"
#include "workbench/images/ImageFile.h"
#include "workbench/scripting/Bindings.h"
#include "workbench/ui/MainWindow.h"
#include "workbench/viewer/ViewerWidget.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <future>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPainter>

namespace Marlox {

namespace {

constexpr double renderPatience = 30.0; // seconds

/// A grabbed picture of a widget.
class Grab final : public Object {
public:
    explicit Grab(QImage image) : image_(std::move(image)) {}
    const QImage& Picture() const { return image_; }

private:
    QImage image_;
};

/// The widget as it looks on the screen, with the viewer's OpenGL content in its place.
QImage pictureOf(QWidget& widget)
{
    if (auto* viewer = qobject_cast<ViewerWidget*>(&widget))
        return viewer->Screenshot();
    QImage picture = widget.grab().toImage();
    for (ViewerWidget* viewer : widget.findChildren<ViewerWidget*>()) {
        if (viewer->isVisibleTo(&widget) && viewer->window() == widget.window()) {
            QPainter painter(&picture);
            painter.drawImage(viewer->mapTo(&widget, QPoint()), viewer->Screenshot());
        }
    }
    return picture;
}

ScriptVal colorTable(double r, double g, double b)
{
    ScriptVal list = ScriptVal::MakeTable();
    for (const double part : {r, g, b})
        list.Append(part);
    return list;
}

/// The pixel that holds a position.
QPoint pixelAt(const ScriptCall& call)
{
    return {int(std::floor(call.Number(1))), int(std::floor(call.Number(2)))};
}

/// `pixelUp` counts at full resolution from the bottom left, also in a proxy.
ScriptVal pixelOf(const Image& image, QPoint pixelUp)
{
    const Image::Format& format = image.GetFormat();
    const MxRect& data = format.dataWindow;
    const MxRect& shown = format.displayWindow;
    const auto scaled = [&format](int pixel) {
        return int(std::floor((pixel + 0.5) * format.scale));
    };
    const MxPoint at(shown.left + scaled(pixelUp.x()), shown.bottom - 1 - scaled(pixelUp.y()));
    if (!data.Contains(at))
        return {};
    const float* pixel = image.Row(at.y - data.top) + std::size_t(at.x - data.left) * 4;
    ScriptVal list = colorTable(double(pixel[0]), double(pixel[1]), double(pixel[2]));
    list.Append(double(pixel[3]));
    return list;
}

void screenshot(ScriptCall& call)
{
    const QString path = call.String(1);
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (!pictureOf(call.Self<QWidget>()).save(path))
        throw ScriptError(QString("%1 can't be written").arg(path));
}

void addGrab(ScriptEngine& engine)
{
    ScriptClass& grab = engine.AddClass<Grab>("Picture");
    grab.Method("width", [](ScriptCall& c) { c.Return(c.Self<Grab>().Picture().width()); });
    grab.Method("height", [](ScriptCall& c) { c.Return(c.Self<Grab>().Picture().height()); });
    grab.Method("pixel", [](ScriptCall& call) {
        const QImage& picture = call.Self<Grab>().Picture();
        const QPoint at = pixelAt(call);
        if (!picture.valid(at))
            throw ScriptError("pixel: outside the picture");
        const QColor color = picture.pixelColor(at);
        call.Return(colorTable(color.red(), color.green(), color.blue()));
    });
    ScriptClass& image = engine.AddClass<Image>("Image");
    image.Method("width", [](ScriptCall& call) {
        call.Return(call.Self<Image>().GetFormat().displayWindow.Width());
    });
    image.Method("height", [](ScriptCall& call) {
        call.Return(call.Self<Image>().GetFormat().displayWindow.Height());
    });
    image.Method("pixel",
                 [](ScriptCall& call) { call.Return(pixelOf(call.Self<Image>(), pixelAt(call))); });
    engine.AddFunction("readimage", [](ScriptCall& call) {
        QString error;
        Ref<Image> read = ReadImage(call.String(1), &error);
        if (!read)
            throw ScriptError(error);
        call.ReturnOwned(read.Release());
    });
}

/// An exact place of the viewer's widget. The third argument: so many pixels of the picture across
/// and down, or the width and height of a rectangle of the widget.
ColorSource::Footprint footprintOf(const ScriptCall& call)
{
    ColorSource::Footprint footprint{{call.Number(1), call.Number(2)}};
    if (call.IsTable(3)) {
        const ScriptVal extent = call.Table(3);
        const QSizeF size(extent.At(1).ToNumber(), extent.At(2).ToNumber());
        if (!(size.width() >= 0.0 && size.height() >= 0.0))
            throw ScriptError("sample: a rectangle is {width, height}");
        footprint.area = QRectF(footprint.at, size);
    } else {
        footprint.size = call.Integer(3, 1);
        if (footprint.size < 1 || footprint.size % 2 == 0)
            throw ScriptError("sample: an odd number of pixels is expected, or {width, height}");
    }
    if (call.Has(4))
        footprint.inputOf = &call.Object<Operator>(4);
    return footprint;
}

bool areSettled(MainWindow& window)
{
    const std::vector<ViewerWidget*> viewers = window.Viewers();
    return std::all_of(viewers.begin(), viewers.end(),
                       [](const ViewerWidget* viewer) { return viewer->IsSettled(); });
}

void waitForRender(ScriptContext& context, double seconds)
{
    Renderer& renderer = context.session.Document().GetRenderer();
    QElapsedTimer clock;
    clock.start();
    do {
        if (double(clock.elapsed()) > seconds * 1000.0)
            throw ScriptError(
                QString("the picture was not done after %1 s").arg(seconds));
        RunEvents(context, 0.005);
    } while (renderer.IsBusy() || !areSettled(context.window));
}

void addViewer(ScriptContext& context)
{
    ScriptClass& viewer = context.engine.AddClass<ViewerWidget>("Viewer");
    viewer.Method("color", [](ScriptCall& call) {
        const Ref<Image>& shown = call.Self<ViewerWidget>().ShownImage();
        call.Return(shown ? pixelOf(*shown, pixelAt(call)) : ScriptVal());
    });
    viewer.Method("sample", [&context](ScriptCall& call) {
        waitForRender(context, renderPatience);
        ColorSource::Sample sample;
        constexpr int patience = int(renderPatience * 1000.0);
        if (!call.Self<ViewerWidget>().SampleColor(footprintOf(call), sample, patience))
            return call.Return(ScriptVal());
        const auto& [red, green, blue, alpha] = sample.rgba;
        ScriptVal list = colorTable(red, green, blue);
        list.Append(alpha);
        call.Return(list);
    });
}

void renderFrame(ScriptContext& context, ScriptCall& call)
{
    const MarloxDoc& document = context.session.Document();
    const QString path = call.String(1);
    const auto job = RenderJob::Take(document, call.Number(2, document.CurrentTime()), 1.0);
    auto done = std::async(std::launch::async, [&job] { return job->Run(); });
    while (done.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready)
        QCoreApplication::processEvents();
    const RenderResult result = done.get();
    QString error = result.error;
    if (!result.image || !WriteImage(*result.image, path, &error))
        throw ScriptError(error);
}

} // namespace

void AddPictureBindings(ScriptContext& context)
{
    ScriptEngine& engine = context.engine;
    addGrab(engine);
    addViewer(context);
    ScriptClass& widget = engine.AddClass<QWidget>("Widget");
    widget.Method("screenshot", screenshot);
    widget.Method("grab", [](ScriptCall& call) {
        call.ReturnOwned(new Grab(pictureOf(call.Self<QWidget>())));
    });
    engine.AddFunction("wait",
                       [&context](ScriptCall& call) { RunEvents(context, call.Number(1)); });
    engine.AddFunction("waitrender", [&context](ScriptCall& call) {
        waitForRender(context, call.Number(1, renderPatience));
    });
    engine.AddFunction("render", [&context](ScriptCall& call) { renderFrame(context, call); });
}

} // namespace Marlox
