// The rows of a colour control's channels: sliders, edits and buttons to the default.

#include "controls/color/ColorChannelRow.h"
#include "controls/color/ColorControl.h"
#include "framework/SliderParts.h"
#include "system/controls/ControlWnd.h"
#include "system/widgets/CustomButton.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomSlider.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace Marlox {

void ColorControl::PopulateRows()
{
    LayoutObj* place = parts_.sliders ? FindLayoutObj("sliders") : nullptr;
    for (int channel = 0; place && channel < ColorChannels::count; ++channel) {
        if (InputOf(channel))
            AddRow(channel, *place);
    }
}

void ColorControl::AddRow(int channel, LayoutObj& place)
{
    auto* row = new ColorChannelRow(channel, this);
    rows_.push_back(row);
    if (!row->Build()) {
        row->hide();
        return Report(tr("The look pack's layout of a colour's channel is missing or broken"));
    }
    AddPartLayout(row->Layout());
    const char* known = ColorChannels::names[std::size_t(channel)];
    const QString name = known ? tr(known) : InputOf(channel)->GetName();
    const QString full = InputOf(channel)->GetName();
    row->Label().SetText(name);
    row->Slider().SetOwner(this);
    row->Slider().setAccessibleName(full);
    row->Edit().setAccessibleName(full);
    row->Reset().setAccessibleName(tr("Default of %1").arg(full));
    row->Apply(SettingsOf(channel), *InputOf(channel));
    AttachEdit(row->Edit(), channel);
    connect(&row->Slider(), SIGNAL(ValueChanged(float64)), this, SLOT(OnColorSlider(float64)));
    connect(&row->Reset(), &CustomButton::clicked, this,
            [this, channel] { ButtonPressed(uint64(channel)); });
    place.AddWidget(row);
    row->show();
}

void ColorControl::Depopulate()
{
    dragged_ = nullptr;
    for (ColorChannelRow* row : std::exchange(rows_, {})) {
        DetachEdit(row->Edit());
        row->Slider().SetOwner(nullptr); // ends a gesture
        row->Slider().disconnect(this);
        row->hide();
        row->setParent(this); // the container it stands in goes
        for (QWidget* part : row->findChildren<QWidget*>())
            part->setObjectName({}); // the next row has these names
        row->deleteLater();          // perhaps from within one of its own handlers
    }
}

void ColorControl::ShowRow(const ColorChannelRow& row)
{
    const double value = ValueOf(row.Channel());
    const SliderSettings& settings = SettingsOf(row.Channel());
    row.Slider().ShowValue(value);
    row.Slider().SetStateColor(SliderParts::StateColor(InputOf(row.Channel())));
    row.Reset().setEnabled(
        IsEditable(row.Channel()) && settings.defaultValue != SliderModel::none &&
        HasValueChanged(settings.IsWhole(), value, settings.defaultValue, settings.Tolerance()));
}

ColorChannelRow* ColorControl::RowOf(const QObject* part) const
{
    const auto found = std::find_if(rows_.begin(), rows_.end(), [part](ColorChannelRow* row) {
        return part == row || part == &row->Slider() || part == &row->Edit() ||
               part == &row->Label() || part == &row->Reset();
    });
    return found != rows_.end() ? *found : nullptr;
}

int ColorControl::SlotAt(const QWidget* widget) const
{
    const ColorChannelRow* row = RowOf(widget);
    return row ? row->Channel() : -1;
}

bool ColorControl::IsViewPart(const QWidget* part) const
{
    return part == expand_;
}

void ColorControl::OnColorSlider(float64 v)
{
    const auto alive = Ref<ColorControl>::Share(this); // what follows may close the page
    const ColorChannelRow* row = RowOf(sender());
    if (!row)
        return;
    const int channel = row->Channel();
    const SliderSettings& settings = SettingsOf(channel);
    if (!settings.time)
        v = settings.OnGrid(v);
    if (HasValueChanged(settings.IsWhole(), v, ValueOf(channel), settings.Tolerance())) {
        // Within a gesture the undo entry is opened here, at its first real change, and closed by
        // whoever ends the gesture.
        if (row->Slider().InGesture() || dragged_ == row)
            SetUndo(IndexOf(channel), nullptr);
        Write(channel, v);
    }
    UpdateDisplay(nullptr, nullptr);
}

void ColorControl::OnEditStartDrag()
{
    if (sender() == hue_.edit)
        StartUndo("Adjust Hue");
    else if (sender() == saturation_.edit || sender() == value_.edit)
        StartUndo("Adjust Saturation/Value");
    dragged_ = RowOf(sender());
    ChannelControl::OnEditStartDrag();
    if (dragged_)
        dragged_->Slider().StartDrag();
}

void ColorControl::OnEditEndDrag()
{
    const auto alive = Ref<ColorControl>::Share(this);
    if (ColorChannelRow* row = std::exchange(dragged_, nullptr))
        row->Slider().EndDrag();
    ChannelControl::OnEditEndDrag();
}

void ColorControl::ButtonPressed(uint64 channel)
{
    std::vector<int> which(std::size_t(ColorChannels::count));
    std::iota(which.begin(), which.end(), 0);
    QString what = Label();
    if (channel < which.size()) {
        which = {int(channel)};
        what = InputOf(int(channel)) ? InputOf(int(channel))->GetName() : QString();
    }
    WriteDefaults(which, tr("Reset %1").arg(what));
}

} // namespace Marlox
