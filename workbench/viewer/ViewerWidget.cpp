#include "workbench/viewer/ViewerWidget.h"

#include "system/document/MarloxDoc.h"
#include "system/resources/Resources.h"
#include "system/viewer/OverlayPainter.h"
#include "workbench/images/ImageScale.h"
#include "workbench/viewer/ViewerBars.h"
#include "workbench/viewer/ViewerPainter.h"

#include <algorithm>
#include <cmath>

#include <QOpenGLContext>
#include <QPainter>

namespace Marlox {

namespace {

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
    : QOpenGLWidget(parent), document_(document), overlays_(document),
      painter_(std::make_unique<ViewerPainter>()), message_(new MessageBar(this)),
      progress_(new ProgressPlate(this))
{
    setObjectName("viewer");
    setAccessibleName(tr("Viewer"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(64, 64);
    overlays_.View().widget = this;
    setUpdateBehavior(PartialUpdate); // each frame covers all of the view: it needs no clearing
    connect(&overlays_, &OverlayStage::Changed, this, QOverload<>::of(&QWidget::update));
    connect(&overlays_, &OverlayStage::CursorChanged, this, &ViewerWidget::ShowCursor);
    connect(&overlays_, &OverlayStage::KeyboardWanted, this,
            [this] { setFocus(Qt::OtherFocusReason); });
    connect(&converter_, &DisplayConverter::Converted, this, &ViewerWidget::OnConverted);
    connect(&converter_, &DisplayConverter::Failed, this, &ViewerWidget::SetMessage);
    ConnectRenderer();
    connect(&document_, &MarloxDoc::Cleared, this, [this] {
        view_.Fit();
        DropImage();
    });
    connect(&document_, &MarloxDoc::ToolAdded, this, QOverload<>::of(&QWidget::update));
    connect(&document_, &MarloxDoc::ToolRemoved, this, QOverload<>::of(&QWidget::update));
    OnFinished(document_.GetRenderer().LastResult()); // a further viewer of the same picture
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
        SetMessage(tr("The render was cancelled: the picture is not up to date."));
    });
}

// What is shown

void ViewerWidget::OnFinished(const RenderResult& result)
{
    progress_->hide();
    SetMessage(result.error);
    followsPick_ = followsPick_ && document_.GetRenderer().IsBusy();
    if (result.image) {
        wanted_ = result.image;
        converter_.Request(wanted_, settings_);
    } else if (result.error.isEmpty()) { // nothing to render
        DropImage();
    }
}

/// A picture of another document, or of tools that are gone, would be taken for the present one's.
void ViewerWidget::DropImage()
{
    progress_->hide();
    SetMessage({});
    wanted_ = nullptr;
    converter_.Cancel();
    if (held_)
        held_.emplace(); // of none
    overlays_.EndDrag(); // its values are measured by the picture
    overlays_.KeyUpAll();
    overlays_.Leave();
    OnConverted({});
}

void ViewerWidget::OnConverted(const DisplayedImage& displayed)
{
    if (displayed.image && !wanted_)
        return; // converted for a picture that is not wanted any more
    shown_ = displayed;
    isLoaded_ = false;
    if (shown_.image) {
        const Image::Format& format = shown_.image->GetFormat();
        view_.SetImage(FullDisplayWindow(format, view_.DisplayWindow()), format.pixelAspect);
    }
    emit ImageShown();
    ChangeView();
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

void ViewerWidget::ShowOverlays(bool shown)
{
    overlays_.SetShown(shown);
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
    view_.Place(overlays_.View(), devicePixelRatioF());
    if (!shown_.image)
        overlays_.View().pixelWidth = overlays_.View().pixelHeight = 0;
    overlays_.PlacementChanged();
    update();
    emit ViewChanged();
    emit ProbeChanged(ProbeAt(pointer_));
}

void ViewerWidget::SetZoom(double zoom)
{
    view_.ZoomTo(zoom, view_.Middle());
    ChangeView();
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

Probe ViewerWidget::ProbeAt(QPointF position) const
{
    Probe probe;
    if (!shown_.image || !QRectF(rect()).contains(position))
        return probe;
    const QPointF pixel = view_.ToImage(ToDevice(position));
    const Image::Format& format = shown_.image->GetFormat();
    probe.inView = true;
    probe.x = int(std::floor(pixel.x())) - view_.DisplayWindow().left;
    probe.y = view_.DisplayWindow().bottom - 1 - int(std::floor(pixel.y()));
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
    if (!isLoaded_ && shown_.image)
        painter_->SetPicture(shown_.picture, shown_.opaque,
                             fullDataWindow(shown_.image->GetFormat()));
    else if (!isLoaded_)
        painter_->Clear();
    isLoaded_ = true;
    ViewerPainter::Look look;
    look.background = lookColor("System.ViewerColour", {27, 27, 27});
    look.frame = lookColor("System.LineColour", {72, 72, 72});
    look.outline = lookColor("System.PlaceholderTextColour", {138, 138, 138});
    look.checkerDark = QColor(52, 52, 52);
    look.checkerLight = QColor(68, 68, 68);
    // A channel alone has no transparency: outside it is as black as within.
    look.checker = checker_ && shown_.channels == ChannelView::Color;
    look.windows = windows_;
    look.devicePixelRatio = devicePixelRatioF();
    const QSizeF device = QSizeF(size()) * devicePixelRatioF();
    painter_->Paint(view_, device.toSize(), look);
    if (shown_.image)
        DrawOverlays();
    else if (document_.Tools().empty())
        PaintHint();
    DrawFootprint();
    if (focusByKeys_ && !overlays_.Focus())
        PaintFocus();
}

void ViewerWidget::DrawOverlays()
{
    const PreviewInfo& view = overlays_.View();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0.0, view.viewWidth, 0.0, view.viewHeight, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    GLOverlayPainter painter(view, devicePixelRatioF());
    overlays_.Draw(painter);
}

/// Tells in an empty document how to begin.
void ViewerWidget::PaintHint()
{
    QPainter painter(this);
    painter.setPen(lookColor("System.PlaceholderTextColour", {138, 138, 138}));
    painter.drawText(rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap,
                     tr("Open a picture, a sequence or a document (Ctrl+O), or drop one here."));
}

void ViewerWidget::PaintFocus()
{
    QPainter painter(this);
    painter.setPen(QPen(lookColor("System.AccentColour", {92, 158, 220}), 1.0));
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
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

} // namespace Marlox
