// Colours picked from the viewer.

#include "system/document/MarloxDoc.h"
#include "system/resources/Resources.h"
#include "workbench/viewer/ColorSampling.h"
#include "workbench/viewer/ViewerPainter.h"
#include "workbench/viewer/ViewerWidget.h"

#include <QCursor>

namespace Marlox {

namespace {

/// How long a pick waits for what flows into a tool, ms. It is nearly always kept from the render
/// of the picture on view.
constexpr int patience = 200;

} // namespace

bool ViewerWidget::SampleColor(const Footprint& footprint, Sample& sample)
{
    const Ref<Image> picture = PictureToSample(footprint.inputOf);
    return picture &&
           ColorSampling::MeanOf(
               *picture, ColorSampling::PixelsOf(footprint, view_, devicePixelRatioF()), sample);
}

/// Null: there is none, or what flows into the tool is not done yet.
Ref<Image> ViewerWidget::PictureToSample(const Operator* inputOf)
{
    if (!shown_.image)
        return nullptr;
    Held now;
    Held& held = held_ ? *held_ : now;
    if (!inputOf) {
        if (!held.shown)
            held.shown = shown_.image;
        return held.shown;
    }
    const Input* input = inputOf->ImageInput();
    const Operator* feed = input ? document_.FeedOf(*input) : nullptr;
    if (!feed)
        return nullptr;
    const bool waited = held.tool == inputOf;
    if (!waited || !held.input) {
        held.tool = inputOf;
        held.input = document_.GetRenderer().ResultOf(*feed, waited ? 0 : patience);
    }
    return held.input;
}

void ViewerWidget::HoldPicture(bool held)
{
    if (!held)
        held_.reset();
    else if (!held_)
        held_.emplace();
}

void ViewerWidget::ShowFootprint(const Footprint* footprint)
{
    if (!footprint && !footprint_)
        return;
    if (!footprint_)
        overlays_.Leave(); // a press goes to none of them
    footprint_ = footprint ? std::optional(*footprint) : std::nullopt;
    if (footprint_)
        TrackPointer(footprint_->at);
    else if (!rect().contains(mapFromGlobal(QCursor::pos())))
        TrackPointer({-1.0, -1.0});
    update();
}

void ViewerWidget::DrawFootprint()
{
    if (!footprint_ || !shown_.image)
        return;
    const double ratio = devicePixelRatioF();
    const MxRect pixels =
        ColorSampling::PixelsIn(*shown_.image, ColorSampling::PixelsOf(*footprint_, view_, ratio));
    const QSizeF device = QSizeF(size()) * ratio;
    if (!pixels.IsEmpty())
        ViewerPainter::PaintFootprint(
            view_.ToView(pixels), device.toSize(),
            LookPack::Global().Color("Viewer.OverlayColour", {224, 224, 224}).ToQColor(), ratio);
}

} // namespace Marlox
