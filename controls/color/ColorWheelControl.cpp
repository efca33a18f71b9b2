#include "controls/color/ColorWheelControl.h"

#include "framework/ControlClass.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomColorWheel.h"
#include "widgets/RangeSelector.h"

#include <algorithm>

namespace Marlox {

namespace {

constexpr char wheelLayout[] = "Controls.ColorWheel.Layout";

struct ChannelPlace {
    const char* text;
    const char* label;
    const char* edit;
    const char* expression;
};
constexpr std::array<ChannelPlace, ColorWheelControl::channels> places{{
    {"Hue", "huelabel", "edithue", "expressionhue"},
    {"Saturation", "saturationlabel", "editsaturation", "expressionsaturation"},
    {"Tint Angle", "tintanglelabel", "edittintangle", "expressiontintangle"},
    {"Strength", "tintlengthlabel", "edittintlength", "expressiontintlength"},
}};

constexpr std::array<u32, ColorWheelControl::ranges> nameTags{0, CWCCS_LowName, CWCCS_MidName,
                                                              CWCCS_HighName};

} // namespace

ColorWheelControl::ColorWheelControl(const Registry* record, const ScriptVal& creator,
                                     const TagList& attributes)
    : ChannelControl(record, creator, attributes, ranges * channels),
      wheel_(new CustomColorWheel(this)), selector_(new RangeSelector(this))
{
    wheel_->setObjectName(QStringLiteral("wheel"));
    selector_->setObjectName(QStringLiteral("ranges"));
    for (std::size_t i = 0; i < channels; ++i) {
        labels_[i] = new ElideLabel(this);
        labels_[i]->setObjectName(QLatin1String(places[i].label));
        labels_[i]->SetText(tr(places[i].text));
        edits_[i] = new TimeCodeEdit(this);
        edits_[i]->setObjectName(QLatin1String(places[i].edit));
        labels_[i]->setFocusProxy(edits_[i]);
    }
    connect(wheel_, &CustomColorWheel::dragWheel, this, &ColorWheelControl::OnWheel);
    connect(wheel_, &CustomColorWheel::resetPart, this, &ColorWheelControl::OnResetPart);
    connect(selector_, &RangeSelector::RangeChanged, this, &ColorWheelControl::OnRangeChanged);
    ReadTags(CreationTags());
}

ColorWheelControl::~ColorWheelControl()
{
    wheel_->SetOwner(nullptr);
}

std::size_t ColorWheelControl::SizeOf() const
{
    return sizeof(*this);
}

// Attributes -------------------------------------------------------------------------------------

bool ColorWheelControl::CopyAttr(u64 tag, void* out)
{
    const auto found = std::find(nameTags.begin() + 1, nameTags.end(), u32(tag));
    if (found == nameTags.end())
        return ChannelControl::CopyAttr(tag, out);
    *static_cast<const char**>(out) = names_[std::size_t(found - nameTags.begin())].c_str();
    return true;
}

void ColorWheelControl::ReadTags(const TagList& tags)
{
    const std::array<QString, ranges> usual{tr("Master"), tr("Shadows"), tr("Midtones"),
                                            tr("Highlights")};
    QStringList shown;
    for (std::size_t i = 0; i < ranges; ++i) {
        names_[i] = i > 0 ? tags.GetString(nameTags[i], "") : "";
        shown += names_[i].empty() ? usual[i] : QString::fromStdString(names_[i]);
    }
    selector_->SetNames(shown);
    wheel_->SetHelp(QString::fromUtf8(tags.GetString(IAS_Help, "")));
}

int ColorWheelControl::SlotOf(const Input& input) const
{
    const int64 range = input.GetAttr(IA_Range, 0);
    const int64 channel = input.GetAttr(IA_Channel, input.GetAttr(IA_ControlIndex, 0) % channels);
    const bool known = range >= 0 && range < ranges && channel >= 0 && channel < channels;
    return known ? SlotFor(int(range), int(channel)) : -1;
}

// Life cycle -------------------------------------------------------------------------------------

bool ColorWheelControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    for (int range = ranges; range-- > 0;) {
        if (HasRange(range) && !HasRange(ShownRange()))
            selector_->SetRange(range);
    }
    return ChannelControl::Open(window, rect, tags);
}

void ColorWheelControl::Close(TagList* tags)
{
    wheel_->SetOwner(nullptr); // ends a gesture
    ChannelControl::Close(tags);
}

const char* ColorWheelControl::LayoutName() const
{
    return wheelLayout;
}

const char* ColorWheelControl::ExpressionPlace(int slot) const
{
    return slot / channels == ShownRange() ? places[std::size_t(slot % channels)].expression
                                           : nullptr;
}

bool ColorWheelControl::HasRange(int range) const
{
    for (int channel = 0; channel < channels; ++channel) {
        if (InputOf(SlotFor(range, channel)))
            return true;
    }
    return false;
}

int ColorWheelControl::ShownRange() const
{
    return selector_->Range();
}

void ColorWheelControl::Populate()
{
    std::array<bool, ranges> offered{};
    for (int range = 0; range < ranges; ++range)
        offered[std::size_t(range)] = HasRange(range);
    selector_->SetOffered(offered);
    selector_->setVisible(std::count(offered.begin(), offered.end(), true) > 1);
    wheel_->SetOwner(this);
    wheel_->SetMode(ShownRange());
    const QString name = Inputs().empty() ? QString() : Inputs().front()->GetName();
    wheel_->setAccessibleName(name);
    for (int channel = 0; channel < channels; ++channel) {
        const auto at = std::size_t(channel);
        const Input* input = InputOf(SlotFor(ShownRange(), channel));
        AttachEdit(*edits_[at], SlotFor(ShownRange(), channel));
        edits_[at]->setAccessibleName(input ? input->GetName() : QString());
        edits_[at]->setVisible(input != nullptr);
        labels_[at]->setVisible(input != nullptr);
    }
}

int ColorWheelControl::SlotAt(const QWidget* widget) const
{
    const auto found = std::find(labels_.begin(), labels_.end(), widget);
    return found != labels_.end() ? SlotFor(ShownRange(), int(found - labels_.begin())) : -1;
}

// Values -----------------------------------------------------------------------------------------

WheelRecord ColorWheelControl::RecordOf(int range) const
{
    WheelRecord record;
    const auto value = [&](Channel channel, double otherwise) {
        const int slot = SlotFor(range, channel);
        return InputOf(slot) ? ValueOf(slot) : otherwise;
    };
    record.hue = value(Hue, record.hue);
    record.saturation = value(Saturation, record.saturation);
    record.tintAngle = value(TintAngle, record.tintAngle);
    record.tintLength = value(TintLength, record.tintLength);
    return record;
}

void ColorWheelControl::Show()
{
    ShowEdits();
    for (int range = 0; range < ranges; ++range)
        wheel_->SetRecord(range, RecordOf(range));
}

void ColorWheelControl::OnWheel()
{
    const auto alive = Ref<ColorWheelControl>::Share(this); // what follows may close the page
    const WheelRecord record = wheel_->Shown();
    const std::array<double, channels> values{record.hue, record.saturation, record.tintAngle,
                                              record.tintLength};
    {
        const Writing writing(*this);
        for (int channel = 0; channel < channels; ++channel) {
            if (const int slot = SlotFor(wheel_->Mode(), channel); IsEditable(slot))
                Write(slot, values[std::size_t(channel)]);
        }
    }
    UpdateDisplay(nullptr, nullptr);
}

void ColorWheelControl::OnRangeChanged(int)
{
    Rebuild();
}

void ColorWheelControl::OnResetPart(int part)
{
    const auto alive = Ref<ColorWheelControl>::Share(this);
    const bool tint = CustomColorWheel::Part(part) == CustomColorWheel::Part::Tint;
    StartUndo(tint ? "Reset Tint" : "Reset Hue/Saturation");
    {
        const Writing writing(*this);
        for (const Channel channel : {tint ? TintAngle : Hue, tint ? TintLength : Saturation}) {
            const int slot = SlotFor(ShownRange(), channel);
            const double value = SettingsOf(slot).defaultValue;
            if (IsEditable(slot) && value != SliderModel::none)
                Write(slot, value);
        }
    }
    ResetUndo(nullptr);
    UpdateDisplay(nullptr, nullptr);
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct ColorWheelFacts : InspectorFacts {
    using Class = ColorWheelControl;
    static constexpr char name[] = "ColorWheelControl";
    static constexpr RecordFacts records[] = {{"ColorWheelControl", "ColorWheelControl"}};
    static constexpr TagMapEntry tagNames[] = {{"CWCCS_LowName", CWCCS_LowName},
                                               {"CWCCS_MidName", CWCCS_MidName},
                                               {"CWCCS_HighName", CWCCS_HighName},
                                               {}};
    struct Resources {
        ResDIB knobs[5]{{"Controls.ColorWheel.Knob.1", 0},
                        {"Controls.ColorWheel.Knob.2", 0},
                        {"Controls.ColorWheel.Knob.3", 0},
                        {"Controls.ColorWheel.Knob.4", 0},
                        {"Controls.ColorWheel.Knob.5", 0}};
        ResDIB wheels[2]{{"Controls.ColorWheel.Wheel.1", 0}, {"Controls.ColorWheel.Wheel.2", 0}};
        ResColor textColour{"Controls.ColorWheel.TextColour", {208, 208, 208}};
        ResData layout{wheelLayout};
    };
};

} // namespace

template <>
ControlClass<ColorWheelFacts> controlClass<ColorWheelFacts>{};
MARLOX_SCRIPT_CASTS(ColorWheelControl)

} // namespace Marlox
