#pragma once

#include "system/color/ColorSource.h"
#include "system/evaluation/Renderer.h"
#include "system/viewer/OverlayStage.h"
#include "workbench/viewer/DisplayConverter.h"
#include "workbench/viewer/ViewTransform.h"

#include <array>
#include <memory>
#include <optional>
#include <set>

#include <QColor>
#include <QOpenGLWidget>
#include <QPointer>

class QHelpEvent;
class QMenu;

namespace Marlox {

class MarloxDoc;
class MessageBar;
class ProgressPlate;
class ViewerPainter;

/// What lies under the cursor, from the image's floats.
struct Probe {
    bool inView = false;   // the cursor is over the viewer and there is an image
    bool hasPixel = false; // within the data window
    int x = 0; // full-resolution pixels, y up, from the display window's bottom left: as overlays
    int y = 0; // and scripts count
    std::array<float, 4> rgba{};
    QColor shown; // as it is on the screen, over black
};

/// The viewer: shows what the document's renderer made. The wheel zooms around the cursor (Ctrl in
/// finer, Shift in coarser steps), the middle button or Space with the left button moves the image,
/// F fits it, 1 shows actual pixels, a tap on Space plays. A failed render leaves the last good
/// image and shows the message above it; another document takes the image away. Widget positions
/// are device-independent pixels; everything else goes through View().
///
/// Overlays of the selected tool lie over the image and take the left button; a press beside them
/// is left alone. A second click at the same place goes on to the one below, Tab from one to the
/// next. The one that has the focus gets the keys first, arrow keys nudge it; Escape gives up a
/// drag. The right button opens the menu of what is under it.
///
/// Colours are picked from the floats of the image on show, also where channels, exposure and
/// display show it otherwise. What flows into a tool is sampled at the same place of its own
/// picture.
class ViewerWidget : public QOpenGLWidget, public ColorSource {
    Q_OBJECT
    Q_PROPERTY(double zoom READ Zoom WRITE SetZoom NOTIFY ViewChanged)
    Q_PROPERTY(double exposure READ Exposure WRITE SetExposure NOTIFY SettingsChanged)
    Q_PROPERTY(double gamma READ Gamma WRITE SetGamma NOTIFY SettingsChanged)
    Q_PROPERTY(QString message READ Message)
public:
    explicit ViewerWidget(MarloxDoc& document, QWidget* parent = nullptr);
    ~ViewerWidget() override;

    const ViewTransform& View() const { return view_; }
    double Zoom() const { return view_.Zoom(); } // device pixels for each image pixel
    void SetZoom(double zoom);                   // around the middle
    void ZoomBy(double factor);
    void Fit();
    /// Positions in the widget and in normalised image coordinates (0 to 1, y up).
    QPointF ImageToWidget(QPointF normalised) const;
    QPointF WidgetToImage(QPointF position) const;
    OverlayStage& Overlays() { return overlays_; }
    /// The context of the overlays, as the image is shown now.
    const PreviewInfo& GetPreviewInfo() const { return overlays_.View(); }
    bool AreOverlaysShown() const { return overlays_.IsShown(); }
    void ShowOverlays(bool shown);

    const DisplaySettings& Settings() const { return settings_; }
    void SetSettings(const DisplaySettings& settings);
    ChannelView Channels() const { return settings_.channels; }
    void SetChannelView(ChannelView channels);
    double Exposure() const { return settings_.exposure; } // stops
    void SetExposure(double stops);
    double Gamma() const { return settings_.gamma; }
    void SetGamma(double gamma);
    const DisplayTransform& Transform() const { return converter_.Transform(); }

    bool IsCheckerShown() const { return checker_; }
    void ShowChecker(bool shown); // behind transparent parts
    bool AreWindowsShown() const { return windows_; }
    void ShowWindows(bool shown); // frame of the display window, outline of the data window

    /// The image on show; null before the first. It stays when a render fails.
    const Ref<Image>& ShownImage() const { return shown_.image; }
    QString Message() const;               // the error on show; empty: none
    Probe ProbeAt(QPointF position) const; // in the widget
    /// Whether everything that was rendered is also on show.
    bool IsSettled() const;
    QSize sizeHint() const override { return {960, 540}; }
    /// What the viewer shows, pixel by pixel at the screen's ratio, with the bars over it.
    QImage Screenshot();

    // ColorSource
    bool SampleColor(const Footprint& footprint, Sample& sample) override;
    /// The same, but waits so many ms for the picture if it has to be rendered.
    bool SampleColor(const Footprint& footprint, Sample& sample, int patience);
    void ShowFootprint(const Footprint* footprint) override;
    void HoldPicture(bool held) override;

signals:
    void ViewChanged();     // zoom or position
    void SettingsChanged(); // exposure, gamma, channels, display, checker, windows, overlays
    void ImageShown();
    void ProbeChanged(const Marlox::Probe& probe);
    void SpaceTapped(); // pressed and released without moving the image

protected:
    void initializeGL() override;
    void paintGL() override;
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void tabletEvent(QTabletEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void ConnectRenderer();
    void OnFinished(const RenderResult& result);
    void OnConverted(const DisplayedImage& displayed);
    void SetMessage(const QString& text);
    void DropImage();
    void PaintHint();
    void PaintFocus();
    void ChangeView();
    void SetViewSize();
    void TrackPointer(QPointF position);
    void EndPan();
    void ShowCursor();
    void ShowTip(const QHelpEvent& event);
    bool HandleViewKey(int key);
    bool IsOwnKey(const QKeyEvent& event);
    void TrackModifiers(const QKeyEvent& event);
    TagList PointerTags(const QMouseEvent& event);
    MxPoint ToOverlays(QPointF position) const;
    void PlaceBars();
    void ReleasePainter();
    void DrawOverlays();
    void DrawFootprint();
    SideRender::Result PictureOnShow() const;
    SideRender::Result PictureToSample(const Operator* inputOf);
    QPointF ToDevice(QPointF position) const { return position * devicePixelRatioF(); }

    MarloxDoc& document_;
    DisplayConverter converter_;
    OverlayStage overlays_;
    DisplaySettings settings_;
    ViewTransform view_;
    DisplayedImage shown_;
    Ref<Image> wanted_; // rendered last, perhaps still being converted
    std::unique_ptr<ViewerPainter> painter_;
    MessageBar* message_;
    ProgressPlate* progress_;
    bool isLoaded_ = false; // the shown picture is in the textures
    bool checker_ = true;
    bool windows_ = true;
    bool spaceHeld_ = false;
    bool spaceUsed_ = false;     // the image was moved with it
    std::set<quint32> keysDown_; // of those that overlays took
    bool panning_ = false;
    bool focusByKeys_ = false; // shown by a frame while no overlay has it
    QPointF panFrom_;          // widget position of the last move
    QPointF pointer_{-1.0, -1.0};
    TagList pen_{{PVD_Pressure, 1.0}}; // of the mouse event that comes next
    QPointer<QMenu> menu_;             // while it is open
    std::optional<Footprint> footprint_;
    /// What is sampled while the picture is held.
    struct Held {
        SideRender::Result shown;
        const Operator* tool = nullptr; // whose input it is; null: was not asked for yet
        SideRender::Result input{};
    };
    std::optional<Held> held_;
    bool followsPick_ = false; // the picture does not show yet what the last pick has left
};

/// Full-resolution display window of an image, which may be a proxy of an image shown before with
/// display window `known` (empty: none): a proxy's windows are rounded to its larger pixels.
MxRect FullDisplayWindow(const Image::Format& format, const MxRect& known);

} // namespace Marlox

Q_DECLARE_METATYPE(Marlox::Probe)
