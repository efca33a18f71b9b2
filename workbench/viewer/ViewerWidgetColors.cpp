// Colours picked from the viewer.

#include "system/document/MarloxDoc.h"
#include "system/resources/Resources.h"
#include "workbench/viewer/ColorSampling.h"
#include "workbench/viewer/ViewerPainter.h"
#include "workbench/viewer/ViewerWidget.h"

#include <QCursor>

namespace Marlox {

namespace {

/// How long a pick waits for a picture that is not on view, ms. It is nearly always kept from the
/// render of one that was. What takes longer is there for a later move, or for the release.
constexpr int usualPatience = 200;

} // namespace

bool ViewerWidget::SampleColor(const Footprint& footprint, Sample& sample)
{
    return SampleColor(footprint, sample, usualPatience);
}

bool ViewerWidget::SampleColor(const Footprint& footprint, Sample& sample, int patience)
{
    if (!shown_.image)
        return false;
    const SideRender::Result result = PictureToSample(footprint.inputOf);
    const Ref<Image> picture = result.Within(patience);
    sample.isDue = result.IsPending();
    return picture &&
           ColorSampling::MeanOf(
               *picture, ColorSampling::PixelsOf(footprint, view_, devicePixelRatioF()), sample);
}

/// What is on show, also a proxy, or what a render that failed has left there: it is what the
/// pointer points at. Not so as long as it may be of values that a pick tried or gave up.
SideRender::Result ViewerWidget::PictureOnShow() const
{
    if (!wanted_)
        return {};
    return followsPick_ ? document_.GetRenderer().ResultOf() : wanted_;
}

SideRender::Result ViewerWidget::PictureToSample(const Operator* inputOf)
{
    if (!inputOf) {
        if (held_ && !held_->shown)
            held_->shown = PictureOnShow();
        return held_ ? held_->shown : PictureOnShow();
    }
    if (held_ && held_->tool == inputOf)
        return held_->input;
    const Input* input = inputOf->ImageInput();
    const Operator* feed = input ? document_.FeedOf(*input) : nullptr;
    if (!feed)
        return {};
    const SideRender::Result result = document_.GetRenderer().ResultOf(feed);
    if (held_) {
        held_->tool = inputOf;
        held_->input = result;
    }
    return result;
}

void ViewerWidget::HoldPicture(bool held)
{
    followsPick_ = document_.GetRenderer().IsBusy() && (followsPick_ || !held);
    if (!held)
        held_.reset();
    else if (!held_)
        held_ = Held{PictureOnShow()};
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
