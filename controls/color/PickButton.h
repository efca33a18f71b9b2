#pragma once

#include "controls/color/PickArea.h"
#include "system/base/MxGeometry.h"
#include "system/widgets/CustomButton.h"

#include <optional>
#include <vector>

#include <QPointer>

class QKeyEvent;

namespace Marlox {

/// A button that picks colours from viewers (see ColorSource), in one of two ways:
///
/// - Pressed and dragged onto a viewer, it picks what is under the pointer with every move. A
///   release over a viewer keeps the colour, one elsewhere gives it up.
/// - Clicked, or pressed with Space, it is armed: the next press in a viewer picks, and dragged on
///   it picks the mean of a rectangle, until the release. A second click, a press elsewhere and a
///   button that hides disarm it.
///
/// While Ctrl is held, what flows into the tool is wanted rather than what is on view. Escape, and
/// whatever else ends a pick without its release, gives up the colour. The viewer shows what is
/// taken and keeps the picture that is picked from; of the pick's own events it gets none. It can
/// be zoomed, and moved with the middle button, until the pick begins.
///
/// The button only tells what to take: who has it samples the viewer, writes the colour, and
/// brackets what PickColor wrote from PickStarted to PickEnded.
class PickButton : public CustomButton {
    Q_OBJECT
    Q_PROPERTY(bool armed READ IsArmed)
    Q_PROPERTY(int sampleSize READ SampleSize WRITE SetSampleSize)
public:
    /// Resource names of the pair of bitmaps.
    PickButton(const QByteArray& normal, const QByteArray& highlighted, QWidget* parent = nullptr);
    ~PickButton() override; // gives up a pick

    /// Pixels of the picture across and down that a pick takes: 1, 3 or 5.
    int SampleSize() const { return size_; }
    void SetSampleSize(int size);
    /// While PickColor is sent: what it tells of, in the viewer's widget, and of no tool.
    const ColorSource::Footprint& LastFootprint() const { return footprint_; }
    /// Whether it is to be read from what flows into the tool.
    bool IsInputWanted() const { return inputWanted_; }
    bool IsArmed() const { return state_ == State::Armed; }
    /// Whether a colour is being picked: between PickStarted and PickEnded.
    bool IsPicking() const { return started_; }
    /// Disarms it, or gives up the pick.
    void Cancel() { End(false); }

signals:
    void PickStarted();
    /// With each move: what is to be taken is another one, or is to be taken from elsewhere. `at`
    /// is the viewer's pixel that holds LastFootprint's position.
    void PickColor(QWidget* viewer, const MxPoint& at);
    /// The last signal of a pick; `kept`: else its colour is to be as before the pick.
    void PickEnded(bool kept);

protected:
    void nextCheckState() override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    /// Pressed: on the button, and perhaps a click; Dragged: from there; Armed: waits for a press
    /// in a viewer, which becomes a Taken one.
    enum class State { Idle, Pressed, Dragged, Armed, Taken };
    void Enter(State state);
    void End(bool kept);
    void DragTo(const QMouseEvent& event);
    void PickAt(QWidget& viewer, QPointF at);
    void PickAgain();
    void ShowOver(QWidget* viewer);
    void WantInput(bool wanted);
    void OnViewerGone();
    bool FilterKey(QKeyEvent& event);
    bool FilterArmed(QWidget& widget, QEvent& event);
    bool FilterTaken(QWidget& widget, QEvent& event);

    State state_ = State::Idle;
    bool started_ = false;
    bool armsOnClick_ = true;
    bool inputWanted_ = false;
    bool crossShown_ = false; // the cursor of the whole application
    int size_ = 1;
    QPoint press_; // on the button
    std::optional<PickArea> area_;
    ColorSource::Footprint footprint_;
    QPointer<QWidget> viewer_;            // that shows the footprint
    std::vector<QPointer<QWidget>> held_; // viewers that keep their picture
};

/// The pick button of the colour control.
class CCPickButton final : public PickButton {
    Q_OBJECT
public:
    explicit CCPickButton(QWidget* parent = nullptr);
};

} // namespace Marlox
