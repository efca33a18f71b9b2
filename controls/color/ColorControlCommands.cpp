// What a colour control does besides its sliders and its field: the colour dialog, copying to other
// controls, picking from a viewer, its menu.

#include "controls/color/ColorControl.h"
#include "controls/color/GradientControl.h"
#include "controls/color/PickButton.h"
#include "controls/color/SampleButton.h"
#include "system/color/ColorPreferences.h"
#include "system/color/ColorSource.h"
#include "system/controls/ColorDrag.h"
#include "system/controls/HostDialogs.h"
#include "system/document/Preferences.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/CustomSwatch.h"

#include <algorithm>
#include <cmath>

#include <QDragEnterEvent>

namespace Marlox {

namespace {

constexpr unsigned int firstSpaceEntry = InputControl::FirstOwnMenuId;
constexpr unsigned int resetEntry = InputControl::FirstOwnMenuId + 3;

/// Between light and the bytes of the colour dialog, with the display's gamma where the preferences
/// want it.
class DialogColors {
public:
    DialogColors()
    {
        const Preferences& preferences = Preferences::Global();
        if (!preferences.Get(PREF_GammaCorrectControls, false).toBool())
            return;
        const double gamma =
            preferences.Get(PREF_GammaCorrectDisplayGamma, usualDisplayGamma).toDouble();
        if (gamma > 0.0 && std::isfinite(gamma))
            gamma_ = gamma;
    }

    int ByteOf(double light) const
    {
        const double value = std::isnan(light) ? 0.0 : std::clamp(light, 0.0, 1.0);
        return int(std::lround(Raised(value, 1.0 / gamma_) * 255.0));
    }
    double LightOf(int byte) const { return Raised(byte / 255.0, gamma_); }

private:
    static double Raised(double value, double exponent)
    {
        return exponent == 1.0 ? value : std::copysign(std::pow(std::abs(value), exponent), value);
    }
    double gamma_ = 1.0;
};

std::array<int, 3> bytesOf(const MxColor& color)
{
    return {color.red, color.green, color.blue};
}

} // namespace

// Colour dialog ----------------------------------------------------------------------------------

void ColorControl::OnColorSwatch()
{
    if (!IsColorEditable())
        return;
    const auto alive = Ref<ColorControl>::Share(this); // while it is open the page may be closed
    const DialogColors convert;
    const RgbColor rgb = Color();
    const MxColor shown(convert.ByteOf(rgb[0]), convert.ByteOf(rgb[1]), convert.ByteOf(rgb[2]));
    const std::optional<MxColor> chosen =
        HostDialogs::Get().ChooseColor({tr("Select Color"), shown});
    if (!chosen || !IsOpen())
        return;
    StartUndo("Select Color");
    {
        const Writing writing(*this);
        for (int channel = 0; channel < 3; ++channel) {
            // What the dialog gives back as it got it stays exact.
            const auto at = std::size_t(channel);
            const int byte = bytesOf(*chosen)[at];
            if (byte != bytesOf(shown)[at] && IsEditable(channel))
                Write(channel, convert.LightOf(byte));
        }
    }
    ResetUndo(nullptr);
    UpdateDisplay(nullptr, nullptr);
}

// Copying ----------------------------------------------------------------------------------------

void ColorControl::OnDragAway()
{
    const auto alive = Ref<ColorControl>::Share(this);
    ColorDrag::Run(*this, *swatch_, swatch_->DragPicture());
}

void ColorControl::dragEnterEvent(QDragEnterEvent* event)
{
    const InputControl* source = ColorDrag::SourceOf(event->mimeData());
    bool takes = false;
    for (int channel = 0; channel < ColorChannels::count; ++channel)
        takes = takes || IsEditable(channel);
    if (source && source != this && takes)
        event->acceptProposedAction();
}

void ColorControl::dropEvent(QDropEvent* event)
{
    if (ColorDrag::Drop(event->mimeData(), *this))
        event->acceptProposedAction();
}

void ColorControl::customEvent(QEvent* event)
{
    if (event->type() == CopyColorEvent::EventType)
        CopyTo(static_cast<const CopyColorEvent&>(*event));
    else
        ChannelControl::customEvent(event);
}

void ColorControl::CopyTo(const CopyColorEvent& event)
{
    const auto alive = Ref<ColorControl>::Share(this);
    std::vector<Ref<Input>> targets; // a value that is set may move others
    for (Input* target : event.Targets())
        targets.push_back(Ref<Input>::Share(target));
    StartUndo("Copy Color");
    {
        const Writing together(*this);
        for (const Ref<Input>& target : targets)
            CopyValueTo(*target);
    }
    ResetUndo(nullptr);
    UpdateDisplay(nullptr, nullptr);
}

bool ColorControl::CopyValueTo(Input& target)
{
    for (Object* shownBy : target.Controls()) {
        if (auto* gradient = dynamic_cast<GradientControl*>(shownBy)) {
            const RgbColor rgb = Color();
            return gradient->SetSelectedColor({rgb[0], rgb[1], rgb[2], Alpha().value_or(1.0)},
                                              CurrentTime());
        }
        auto* control = dynamic_cast<ColorControl*>(shownBy);
        if (control && !control->IsEditable(control->SlotOf(target)))
            return false;
    }
    const Input* source = InputOf(SlotOf(target));
    if (!source || source == &target || target.HasExpression() || !target.GetState().source.empty())
        return false;
    const Ref<Parameter> value = source->GetValue(CurrentTime());
    const Ref<Parameter> accepted = value ? target.Accepted(*value) : nullptr;
    return accepted && target.SetValue(*accepted, CurrentTime());
}

// Picking ----------------------------------------------------------------------------------------

void ColorControl::ConnectPick()
{
    connect(pick_, SIGNAL(PickColor(QWidget*, const MxPoint&)), this,
            SLOT(OnPickColor(QWidget*, const MxPoint&)));
    connect(pick_, &PickButton::PickStarted, this, &ColorControl::OnPickStarted);
    connect(pick_, &PickButton::PickEnded, this, &ColorControl::OnPickEnded);
    connect(sample_, &SampleButton::SampleSizeChanged, pick_, &PickButton::SetSampleSize);
    pick_->SetSampleSize(sample_->SampleSize());
}

void ColorControl::OnPickStarted()
{
    StartUndo(UndoText(tr("Pick Colour")).toUtf8().constData());
    pickProxy_.Begin(*this);
    pickIsDue_ = false;
}

void ColorControl::OnPickEnded(bool kept)
{
    const auto alive = Ref<ColorControl>::Share(this);
    EndUndo(kept);
    if (!kept)
        ShowSampled({});
    pickProxy_.End();
    if (kept && pickIsDue_ && IsOpen())
        Report(tr("Nothing was picked there: the picture is still being rendered."));
}

void ColorControl::ResetUndo(TagList* tags)
{
    if (pick_ && pick_->IsPicking())
        pick_->Cancel();
    else
        ChannelControl::ResetUndo(tags);
}

void ColorControl::OnPickColor(QWidget* viewer, const MxPoint&)
{
    const auto alive = Ref<ColorControl>::Share(this); // what follows may close the page
    ColorSource* source = ColorSource::Of(viewer);
    if (!source)
        return;
    ColorSource::Footprint footprint = pick_->LastFootprint();
    if (pick_->IsInputWanted())
        footprint.inputOf = Owner();
    ColorSource::Sample sample;
    const bool taken = source->SampleColor(footprint, sample);
    pickIsDue_ = sample.isDue;
    if (!taken)
        return;
    // Colours of tools with an alpha don't have it multiplied in.
    const double alpha = sample.rgba[std::size_t(ColorChannels::alpha)];
    if (Alpha() && alpha > 0.0) {
        for (std::size_t i = 0; i < 3; ++i)
            sample.rgba[i] /= alpha;
    }
    TakeSample(sample.rgba);
    ShowSampled(sample.pixels == 1 ? tr("Picked one pixel")
                                   : tr("Picked %1 pixels").arg(sample.pixels));
}

void ColorControl::TakeSample(const std::array<double, 4>& rgba)
{
    const auto alive = Ref<ColorControl>::Share(this);
    {
        const Writing writing(*this);
        for (int channel = 0; channel < ColorChannels::count; ++channel) {
            const int component = ColorChannels::ComponentOf(channel);
            if (component >= 0 && IsEditable(channel))
                Write(channel, rgba[std::size_t(component)]);
        }
    }
    UpdateDisplay(nullptr, nullptr);
}

// Menu -------------------------------------------------------------------------------------------

void ColorControl::AddToMenu(Menu* menu, TagList& tags)
{
    ChannelControl::AddToMenu(menu, tags);
    if (!HasColor())
        return;
    menu->AddSeparator();
    menu->Add(resetEntry, tr("&Reset %1").arg(Label()), IsColorEditable());
    if (!parts_.field)
        return;
    Menu spaces = menu->AddSubmenu(tr("Colour &Space"));
    for (unsigned int space = 0; space < 3; ++space)
        spaces.AddRadio(firstSpaceEntry + space, SpaceName(int(space)),
                        int(space) == parts_.colorSpace);
}

bool ColorControl::HandleMenu(unsigned int id, u64* data, TagList& tags)
{
    if (id == resetEntry) {
        ButtonPressed(ColorChannels::count);
        return true;
    }
    if (id < firstSpaceEntry || id >= resetEntry)
        return ChannelControl::HandleMenu(id, data, tags);
    ChooseView(CLRC_ColorSpace, int(id - firstSpaceEntry));
    return true;
}

} // namespace Marlox
