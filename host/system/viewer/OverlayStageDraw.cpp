// Drawing the overlays of a view.

#include "system/document/MarloxDoc.h"
#include "system/resources/Resources.h"
#include "system/viewer/OverlayPainter.h"
#include "system/viewer/OverlayStage.h"

#include <utility>

#include <QTimer>

namespace Marlox {

namespace {

constexpr int fadeStep = 16; // ms

} // namespace

void OverlayStage::ReadColors()
{
    const auto look = [](const char* name, MxColor fallback) {
        return LookPack::Global().Color(name, fallback);
    };
    const MxColor normal = look("Viewer.OverlayColour", {224, 224, 224});
    const MxColor key = look("System.KeyColour", {124, 192, 148});
    const MxColor quiet = look("Viewer.OverlayLockedColour", {132, 132, 132});
    view_.colors = {normal,
                    look("Viewer.OverlayHighlightColour", {255, 196, 92}),
                    look("Viewer.OverlayOriginColour", {196, 144, 96}),
                    MxColor(160, 160, 160, 160),
                    look("Viewer.OverlayPathColour", {124, 192, 148, 200}),
                    key};
    normalColors_ = {normal, look("Viewer.OverlayAnimatedColour", {186, 220, 198}),
                     key,    look("Controls.ExpressionColour", {230, 215, 135}),
                     quiet,  look("System.AccentColour", {92, 158, 220})};
}

MxColor OverlayStage::NormalColor(const PreviewControl& overlay) const
{
    // What draws in one colour alone would not show that the pointer is on it.
    if (&overlay == view_.currentControl && !overlay.MarksHover() && overlay.IsEditable())
        return view_.Color(OverlayColor::Highlight);
    return focusShows_ && &overlay == focus_ ? normalColors_.back()
                                             : normalColors_[std::size_t(overlay.Condition())];
}

void OverlayStage::Draw(OverlayPainter& painter)
{
    if (!IsShown())
        return;
    ReadColors();
    view_.painter = &painter;
    view_.isFading = false;
    painter.SetView(view_);
    const std::vector<PreviewControl*> order = PickOrder();
    for (auto overlay = order.rbegin(); overlay != order.rend(); ++overlay) {
        const OverlayPainter::Saved saved(painter);
        view_.colors[std::size_t(OverlayColor::Normal)] = NormalColor(**overlay);
        (*overlay)->GLDrawControls(&view_, nullptr);
    }
    view_.painter = nullptr;
    if (view_.isFading && !std::exchange(fades_, true))
        QTimer::singleShot(fadeStep, this, &OverlayStage::StepFade);
}

void OverlayStage::StepFade()
{
    fades_ = false;
    if (!IsDragging())
        TestHover();
    emit Changed();
}

} // namespace Marlox
