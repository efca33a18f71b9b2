#include "workbench/viewer/ViewerWidget.h"

#include "system/document/MarloxDoc.h"
#include "system/resources/Resources.h"
#include "workbench/images/ImageScale.h"
#include "workbench/viewer/ViewerBars.h"
#include "workbench/viewer/ViewerPainter.h"

#include <algorithm>
#include <cmath>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QPainter>
#include <QWheelEvent>

namespace Marlox {

namespace {

constexpr int plateWidth = 420;
constexpr int plateHeight = 40;
constexpr int plateMargin = 16;

QColor lookColor(const char* name, MxColor fallback)
{
    return LookPack::Global().Color(name, fallback).ToQColor();
}

QRectF fullDataWindow(const Image::Format& format)
{
    const MxRect& window = format.dataWindow;
    return {window.left / format.scale, window.top / format.scale, window.Width() / format.scale,
            window.Height() / format.scale};
}

/// Zooming across actual pixels stops there: people want exactly that one.
double stoppedAtOne(double from, double to)
{
    const bool crosses = (from < 1.0 && to > 1.0) || (from > 1.0 && to < 1.0);
    return crosses ? 1.0 : to;
}

} // namespace

MxRect FullDisplayWindow(const Image::Format& format, const MxRect& known)
{
    const int divisor = ProxyDivisor(format.scale);
    if (divisor <= 1)
        return format.displayWindow;
    Image::Format whole;
    whole.displayWindow = known;
    if (ReducedFormat(whole, divisor).displayWindow == format.displayWindow)
        return known;
    const MxRect& window = format.displayWindow;
    return {window.left * divisor, window.top * divisor, window.right * divisor,
            window.bottom * divisor};
}

ViewerWidget::ViewerWidget(MarloxDoc& document, QWidget* parent)
    : QOpenGLWidget(parent), document_(document), painter_(std::make_unique<ViewerPainter>()),
      message_(new MessageBar(this)), progress_(new ProgressPlate(this))
{
    setObjectName("viewer");
    setAccessibleName(tr("Viewer"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(64, 64);
    connect(&converter_, &DisplayConverter::Converted, this, &ViewerWidget::OnConverted);
    connect(&converter_, &DisplayConverter::Failed, this, &ViewerWidget::SetMessage);
    ConnectRenderer();
    if (!converter_.Transform().Problem().isEmpty())
        SetMessage(converter_.Transform().Problem());
}

ViewerWidget::~ViewerWidget()
{
    ReleasePainter();
    if (context()) // goes with the base, when there is nothing left here to release
        context()->disconnect(this);
}

void ViewerWidget::ConnectRenderer()
{
    Renderer& renderer = document_.GetRenderer();
    connect(&renderer, &Renderer::Finished, this, &ViewerWidget::OnFinished);
    connect(&renderer, &Renderer::Started, progress_, &QWidget::hide);
    connect(&renderer, &Renderer::Progress, this, [this](const QString& tool, double fraction) {
        progress_->Show(tool, fraction);
        PlaceBars();
    });
    connect(progress_, &ProgressPlate::Cancelled, this, [this] {
        document_.GetRenderer().Cancel();
        progress_->hide();
        SetMessage(tr("The render was cancelled."));
    });
}

// What is shown

void ViewerWidget::OnFinished(const RenderResult& result)
{
    progress_->hide();
    SetMessage(result.error);
    if (result.image) {
        wanted_ = result.image;
        converter_.Request(wanted_, settings_);
    } else if (result.error.isEmpty()) { // nothing to render
        wanted_ = nullptr;
        OnConverted({});
    }
}

void ViewerWidget::OnConverted(const DisplayedImage& displayed)
{
    shown_ = displayed;
    isLoaded_ = false;
    if (shown_.image) {
        const Image::Format& format = shown_.image->GetFormat();
        view_.SetImage(FullDisplayWindow(format, view_.DisplayWindow()), format.pixelAspect);
    }
    update();
    emit ImageShown();
    emit ViewChanged();
    emit ProbeChanged(ProbeAt(pointer_));
}

void ViewerWidget::SetMessage(const QString& text)
{
    message_->SetText(text);
    PlaceBars();
}

QString ViewerWidget::Message() const
{
    return message_->Text();
}

bool ViewerWidget::IsSettled() const
{
    return !document_.GetRenderer().IsBusy() && !converter_.IsBusy() && shown_.image == wanted_;
}

void ViewerWidget::SetSettings(const DisplaySettings& settings)
{
    if (settings_ == settings)
        return;
    settings_ = settings;
    if (wanted_)
        converter_.Request(wanted_, settings_);
    emit SettingsChanged();
}

void ViewerWidget::SetChannelView(ChannelView channels)
{
    DisplaySettings settings = settings_;
    settings.channels = channels;
    SetSettings(settings);
}

void ViewerWidget::SetExposure(double stops)
{
    DisplaySettings settings = settings_;
    settings.exposure = std::clamp(stops, -30.0, 30.0);
    SetSettings(settings);
}

void ViewerWidget::SetGamma(double gamma)
{
    DisplaySettings settings = settings_;
    settings.gamma = std::clamp(gamma, 0.05, 20.0);
    SetSettings(settings);
}

void ViewerWidget::ShowChecker(bool shown)
{
    checker_ = shown;
    update();
    emit SettingsChanged();
}

void ViewerWidget::ShowWindows(bool shown)
{
    windows_ = shown;
    update();
    emit SettingsChanged();
}

// Where it is shown

void ViewerWidget::ChangeView()
{
    update();
    emit ViewChanged();
    emit ProbeChanged(ProbeAt(pointer_));
}

void ViewerWidget::SetZoom(double zoom)
{
    view_.ZoomTo(zoom, view_.Middle());
    ChangeView();
}

void ViewerWidget::ZoomBy(double factor)
{
    SetZoom(stoppedAtOne(view_.Zoom(), view_.Zoom() * factor));
}

void ViewerWidget::Fit()
{
    view_.Fit();
    ChangeView();
}

QPointF ViewerWidget::ImageToWidget(QPointF normalised) const
{
    const MxRect& window = view_.DisplayWindow();
    return view_.ToView(QPointF(window.left + normalised.x() * window.Width(),
                                window.top + (1.0 - normalised.y()) * window.Height())) /
           devicePixelRatioF();
}

QPointF ViewerWidget::WidgetToImage(QPointF position) const
{
    const MxRect& window = view_.DisplayWindow();
    const QPointF pixel = view_.ToImage(ToDevice(position));
    return {(pixel.x() - window.left) / window.Width(),
            1.0 - (pixel.y() - window.top) / window.Height()};
}

PreviewInfo ViewerWidget::GetPreviewInfo() const
{
    return view_.Info(devicePixelRatioF());
}

Probe ViewerWidget::ProbeAt(QPointF position) const
{
    Probe probe;
    if (!shown_.image || !QRectF(rect()).contains(position))
        return probe;
    const QPointF pixel = view_.ToImage(ToDevice(position));
    const Image::Format& format = shown_.image->GetFormat();
    probe.inView = true;
    probe.x = int(std::floor(pixel.x())) - view_.DisplayWindow().left;
    probe.y = int(std::floor(pixel.y())) - view_.DisplayWindow().top;
    const MxPoint stored(int(std::floor(pixel.x() * format.scale)),
                         int(std::floor(pixel.y() * format.scale)));
    if (!format.dataWindow.Contains(stored))
        return probe;
    probe.hasPixel = true;
    const int column = stored.x - format.dataWindow.left;
    const int row = stored.y - format.dataWindow.top;
    std::copy_n(shown_.image->Row(row) + std::ptrdiff_t(column) * 4, 4, probe.rgba.begin());
    const uchar* bytes = shown_.picture.constScanLine(row) + column * 4;
    probe.shown = QColor(bytes[0], bytes[1], bytes[2]);
    return probe;
}

// Drawing

void ViewerWidget::initializeGL()
{
    isLoaded_ = false;
    // The context goes when the widget moves to another window.
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &ViewerWidget::ReleasePainter,
            Qt::UniqueConnection);
}

void ViewerWidget::ReleasePainter()
{
    if (!context())
        return;
    makeCurrent();
    painter_->Release();
    isLoaded_ = false;
    doneCurrent();
}

void ViewerWidget::paintGL()
{
    if (!isLoaded_ && shown_.image) {
        painter_->SetPicture(shown_.picture, fullDataWindow(shown_.image->GetFormat()));
        isLoaded_ = true;
    }
    ViewerPainter::Look look;
    look.background = lookColor("System.ViewerColour", {27, 27, 27});
    look.frame = lookColor("System.LineColour", {72, 72, 72});
    look.outline = lookColor("System.PlaceholderTextColour", {138, 138, 138});
    look.checkerDark = QColor(52, 52, 52);
    look.checkerLight = QColor(68, 68, 68);
    look.checker = checker_;
    look.windows = windows_;
    look.devicePixelRatio = devicePixelRatioF();
    const QSizeF device = QSizeF(size()) * devicePixelRatioF();
    painter_->Paint(view_, device.toSize(), look);
}

QImage ViewerWidget::Screenshot()
{
    QImage picture = grabFramebuffer();
    picture.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&picture);
    for (QWidget* bar : {static_cast<QWidget*>(message_), static_cast<QWidget*>(progress_)}) {
        if (bar->isVisible())
            bar->render(&painter, bar->pos(), QRegion(), DrawChildren);
    }
    painter.end();
    return picture;
}

// Hands

void ViewerWidget::SetViewSize()
{
    const QSizeF device = QSizeF(size()) * devicePixelRatioF();
    view_.SetView(std::round(device.width()), std::round(device.height()));
    PlaceBars();
    ChangeView();
}

bool ViewerWidget::event(QEvent* event)
{
    if (event->type() == QEvent::ScreenChangeInternal || event->type() == QEvent::Show)
        SetViewSize(); // the pixel ratio may be another one
    // Keys of the viewer that are also shortcuts elsewhere are its own while it has the focus.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space)
        event->accept();
    return QOpenGLWidget::event(event);
}

void ViewerWidget::resizeEvent(QResizeEvent* event)
{
    QOpenGLWidget::resizeEvent(event);
    SetViewSize();
}

void ViewerWidget::PlaceBars()
{
    message_->setGeometry(0, 0, width(), message_->HeightFor(width()));
    const int wide = std::min(plateWidth, width() - 2 * plateMargin);
    progress_->setGeometry((width() - wide) / 2, height() - plateHeight - plateMargin, wide,
                           plateHeight);
}

void ViewerWidget::TrackPointer(QPointF position)
{
    pointer_ = position;
    emit ProbeChanged(ProbeAt(pointer_));
}

void ViewerWidget::mousePressEvent(QMouseEvent* event)
{
    const bool pans =
        event->button() == Qt::MiddleButton || (event->button() == Qt::LeftButton && spaceHeld_);
    if (!pans) {
        event->ignore();
        return;
    }
    panning_ = true;
    panFrom_ = event->localPos();
    ShowPanCursor();
}

void ViewerWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (panning_) {
        // The view keeps whole device pixels; what a fractional ratio leaves over waits.
        const QPointF moved = ToDevice(event->localPos() - panFrom_);
        const QPointF whole(std::round(moved.x()), std::round(moved.y()));
        view_.PanBy(whole);
        panFrom_ += whole / devicePixelRatioF();
        ChangeView();
    }
    TrackPointer(event->localPos());
}

void ViewerWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton || event->button() == Qt::LeftButton)
        EndPan();
}

void ViewerWidget::EndPan()
{
    panning_ = false;
    ShowPanCursor();
}

void ViewerWidget::ShowPanCursor()
{
    if (panning_)
        setCursor(Qt::ClosedHandCursor);
    else if (spaceHeld_)
        setCursor(Qt::OpenHandCursor);
    else
        unsetCursor();
}

void ViewerWidget::wheelEvent(QWheelEvent* event)
{
    const QPoint delta = event->angleDelta();
    // Some systems turn a wheel with Shift or Alt sideways.
    const double notches = (delta.y() != 0 ? delta.y() : delta.x()) / 120.0;
    double step = 1.25;
    if (event->modifiers() & Qt::ControlModifier)
        step = 1.05;
    else if (event->modifiers() & Qt::ShiftModifier)
        step = 2.0;
    const double zoom = view_.Zoom();
    view_.ZoomTo(stoppedAtOne(zoom, zoom * std::pow(step, notches)), ToDevice(event->position()));
    pointer_ = event->position();
    ChangeView();
    event->accept();
}

void ViewerWidget::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_F:
        Fit();
        return;
    case Qt::Key_1:
        view_.ZoomTo(1.0,
                     rect().contains(pointer_.toPoint()) ? ToDevice(pointer_) : view_.Middle());
        ChangeView();
        return;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        ZoomBy(1.25);
        return;
    case Qt::Key_Minus:
        ZoomBy(0.8);
        return;
    case Qt::Key_Space:
        spaceHeld_ = true;
        ShowPanCursor();
        return;
    default:
        QOpenGLWidget::keyPressEvent(event);
    }
}

void ViewerWidget::keyReleaseEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
        spaceHeld_ = false;
        ShowPanCursor();
        return;
    }
    QOpenGLWidget::keyReleaseEvent(event);
}

void ViewerWidget::focusOutEvent(QFocusEvent* event)
{
    spaceHeld_ = false;
    EndPan();
    QOpenGLWidget::focusOutEvent(event);
}

void ViewerWidget::leaveEvent(QEvent* event)
{
    TrackPointer({-1.0, -1.0});
    QOpenGLWidget::leaveEvent(event);
}

} // namespace Marlox
