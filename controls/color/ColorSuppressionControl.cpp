#include "controls/color/ColorSuppressionControl.h"

#include "framework/ControlClass.h"
#include "framework/SliderParts.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomColorSuppression.h"
#include "widgets/RangeSelector.h"

#include <algorithm>
#include <utility>

namespace Marlox {

namespace {

constexpr char suppressionLayout[] = "Controls.ColorSuppression.Layout";
constexpr int besideGap = 8; // between wheel and edits

struct ChannelPlace {
    const char* label;
    const char* edit;
    const char* expression;
};
constexpr std::array<ChannelPlace, ColorSuppressionControl::channels> places{{
    {"editredlabel", "editred", "expressionred"},
    {"edityellowlabel", "edityellow", "expressionyellow"},
    {"editgreenlabel", "editgreen", "expressiongreen"},
    {"editcyanlabel", "editcyan", "expressioncyan"},
    {"editbluelabel", "editblue", "expressionblue"},
    {"editmagentalabel", "editmagenta", "expressionmagenta"},
}};

constexpr std::array<u32, ColorSuppressionControl::ranges> nameTags{0, CSCCS_LowName, CSCCS_MidName,
                                                                    CSCCS_HighName};
constexpr std::array<u32, ColorSuppressionControl::ranges> angleTags{
    CSCCD_AngleMaster, CSCCD_AngleLow, CSCCD_AngleMid, CSCCD_AngleHigh};

int minimumWidthOf(const LayoutObj* object)
{
    int width = 0;
    int height = 0;
    if (object)
        object->MinimumSize(width, height);
    return width;
}

} // namespace

ColorSuppressionControl::ColorSuppressionControl(const Registry* record, const ScriptVal& creator,
                                                 const TagList& attributes)
    : ChannelControl(record, creator, attributes, ranges * channels),
      wheel_(new CustomColorSuppression(this)), selector_(new RangeSelector(this))
{
    wheel_->setObjectName(QStringLiteral("wheel"));
    selector_->setObjectName(QStringLiteral("ranges"));
    for (std::size_t i = 0; i < channels; ++i) {
        labels_[i] = new ElideLabel(this);
        labels_[i]->setObjectName(QLatin1String(places[i].label));
        labels_[i]->SetText(CustomColorSuppression::NameOf(int(i)));
        edits_[i] = new TimeCodeEdit(this);
        edits_[i]->setObjectName(QLatin1String(places[i].edit));
        labels_[i]->setFocusProxy(edits_[i]);
    }
    connect(wheel_, SIGNAL(dragWheel(int)), this, SLOT(OnWheel(int)));
    connect(wheel_, &CustomColorSuppression::resetKnob, this,
            &ColorSuppressionControl::OnResetKnob);
    connect(selector_, &RangeSelector::RangeChanged, this,
            &ColorSuppressionControl::OnRangeChanged);
    ReadTags(CreationTags());
}

ColorSuppressionControl::~ColorSuppressionControl()
{
    wheel_->SetOwner(nullptr);
}

// Attributes -------------------------------------------------------------------------------------

bool ColorSuppressionControl::CopyAttr(u64 tag, void* out)
{
    for (std::size_t i = 0; i < ranges; ++i) {
        if (angleTags[i] == tag) {
            *static_cast<double*>(out) = angles_[i];
            return true;
        }
        if (i > 0 && nameTags[i] == tag) {
            *static_cast<const char**>(out) = names_[i].c_str();
            return true;
        }
    }
    return ChannelControl::CopyAttr(tag, out);
}

void ColorSuppressionControl::ReadTags(const TagList& tags)
{
    const std::array<QString, ranges> usual{tr("Master"), tr("Shadows"), tr("Midtones"),
                                            tr("Highlights")};
    QStringList shown;
    for (std::size_t i = 0; i < ranges; ++i) {
        names_[i] = i > 0 ? tags.GetString(nameTags[i], "") : "";
        shown += names_[i].empty() ? usual[i] : QString::fromStdString(names_[i]);
        angles_[i] = tags.GetDouble(angleTags[i], 0.0);
        wheel_->SetRotation(int(i), angles_[i]);
    }
    selector_->SetNames(shown);
    wheel_->SetHelp(QString::fromUtf8(tags.GetString(IAS_Help, "")));
    wheel_->SetLocked(tags.GetBool(IC_EditDisabled));
}

int ColorSuppressionControl::SlotOf(const Input& input) const
{
    const int64 range = input.GetAttr(IA_Range, 0);
    const int64 channel = input.GetAttr(IA_Channel, input.GetAttr(IA_ControlIndex, 0) % channels);
    const bool known = range >= 0 && range < ranges && channel >= 0 && channel < channels;
    return known ? SlotFor(int(range), int(channel)) : -1;
}

// Life cycle -------------------------------------------------------------------------------------

bool ColorSuppressionControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    for (int range = ranges; range-- > 0;) {
        if (HasRange(range) && !HasRange(ShownRange()))
            selector_->SetRange(range);
    }
    return ChannelControl::Open(window, rect, tags);
}

void ColorSuppressionControl::Close(TagList* tags)
{
    wheel_->SetOwner(nullptr); // ends a gesture
    ChannelControl::Close(tags);
}

const char* ColorSuppressionControl::LayoutName() const
{
    return suppressionLayout;
}

const char* ColorSuppressionControl::ExpressionPlace(int slot) const
{
    return slot / channels == ShownRange() ? places[std::size_t(slot % channels)].expression
                                           : nullptr;
}

bool ColorSuppressionControl::HasRange(int range) const
{
    for (int channel = 0; channel < channels; ++channel) {
        if (InputOf(SlotFor(range, channel)))
            return true;
    }
    return false;
}

int ColorSuppressionControl::ShownRange() const
{
    return selector_->Range();
}

void ColorSuppressionControl::Populate()
{
    std::array<bool, ranges> offered{};
    for (int range = 0; range < ranges; ++range)
        offered[std::size_t(range)] = HasRange(range);
    selector_->SetOffered(offered);
    selector_->setVisible(std::count(offered.begin(), offered.end(), true) > 1);
    wheel_->SetOwner(this);
    wheel_->SetMode(ShownRange());
    wheel_->setAccessibleName(Inputs().empty() ? QString() : Inputs().front()->GetName());
    for (int channel = 0; channel < channels; ++channel) {
        const auto at = std::size_t(channel);
        const int slot = SlotFor(ShownRange(), channel);
        const Input* input = InputOf(slot);
        AttachEdit(*edits_[at], slot);
        edits_[at]->setAccessibleName(input ? input->GetName() : QString());
        edits_[at]->setVisible(input != nullptr);
        labels_[at]->setVisible(input != nullptr);
    }
    Arrange();
}

/// The wheel has two places in the layout: beside the edits and above them.
void ColorSuppressionControl::Arrange()
{
    LayoutObj* beside = FindLayoutObj("wheel");
    LayoutObj* above = FindLayoutObj("wheelabove");
    if (!beside || !above)
        return; // a look that arranges it otherwise
    (stacked_ ? beside : above)->SetWidget(nullptr);
    (stacked_ ? above : beside)->SetWidget(wheel_);
}

bool ColorSuppressionControl::GetMinSize(int& width, int& height, TagList* tags)
{
    const bool known = ChannelControl::GetMinSize(width, height, tags);
    // Beside each other they take more, but need not.
    if (FindLayoutObj("wheelabove") && Fault().isEmpty())
        width = std::max({wheel_->minimumSizeHint().width(), minimumWidthOf(FindLayoutObj("edits")),
                          selector_->isHidden() ? 0 : selector_->minimumSizeHint().width()});
    return known;
}

bool ColorSuppressionControl::SetSize(int& width, int& height, TagList* tags)
{
    const int both =
        wheel_->minimumSizeHint().width() + besideGap + minimumWidthOf(FindLayoutObj("edits"));
    const bool stacked = FindLayoutObj("wheelabove") && width < both;
    if (std::exchange(stacked_, stacked) != stacked) {
        Arrange();
        RecalcControlSize();
    }
    return ChannelControl::SetSize(width, height, tags);
}

int ColorSuppressionControl::SlotAt(const QWidget* widget) const
{
    const auto found = std::find(labels_.begin(), labels_.end(), widget);
    if (found != labels_.end())
        return SlotFor(ShownRange(), int(found - labels_.begin()));
    // The knob under the pointer, which is where a menu opens.
    return widget == wheel_ && wheel_->HoveredKnob() >= 0
               ? SlotFor(ShownRange(), wheel_->HoveredKnob())
               : -1;
}

// Values -----------------------------------------------------------------------------------------

ColorSuppressionModel::Record ColorSuppressionControl::RecordOf(int range) const
{
    ColorSuppressionModel::Record record;
    for (int channel = 0; channel < channels; ++channel)
        record.amounts[std::size_t(channel)] = ValueOf(SlotFor(range, channel));
    return record;
}

void ColorSuppressionControl::Show()
{
    ShowEdits();
    for (int range = 0; range < ranges; ++range)
        ShowWheel(range);
}

void ColorSuppressionControl::ShowSlot(int slot)
{
    ShowEditsOf(slot);
    ShowWheel(slot / channels);
}

void ColorSuppressionControl::ShowWheel(int range)
{
    wheel_->SetRecord(range, RecordOf(range));
    if (range != ShownRange())
        return;
    for (int channel = 0; channel < channels; ++channel) {
        const int slot = SlotFor(range, channel);
        wheel_->SetKnob(channel, {InputOf(slot) != nullptr, IsEditable(slot),
                                  SliderParts::StateColor(InputOf(slot))});
    }
}

void ColorSuppressionControl::OnWheel(int knob)
{
    const auto alive = Ref<ColorSuppressionControl>::Share(this); // a write may close the page
    const int slot = SlotFor(wheel_->Mode(), knob);
    bool written = false;
    if (IsEditable(slot)) {
        const SliderSettings::Range& allowed = SettingsOf(slot).allowed;
        const double amount = std::clamp(wheel_->Amount(knob), allowed.low, allowed.high);
        if (wheel_->InGesture() && amount != ValueOf(slot))
            SetUndo(IndexOf(slot), nullptr);
        written = Write(slot, amount);
    }
    if (!written && IsOpen())
        ShowSlot(slot);
}

void ColorSuppressionControl::OnRangeChanged(int)
{
    Rebuild();
}

void ColorSuppressionControl::OnResetKnob(int knob)
{
    const auto alive = Ref<ColorSuppressionControl>::Share(this);
    const int slot = SlotFor(wheel_->Mode(), knob);
    const double usual = IsEditable(slot) ? SettingsOf(slot).defaultValue : SliderModel::none;
    if (usual == SliderModel::none)
        return;
    StartUndo(tr("Reset %1").arg(InputOf(slot)->GetName()).toUtf8().constData());
    Write(slot, usual);
    ResetUndo(nullptr);
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct ColorSuppressionFacts : InspectorFacts {
    using Class = ColorSuppressionControl;
    static constexpr char name[] = "ColorSuppressionControl";
    static constexpr RecordFacts records[] = {
        {"ColorSuppressionControl", "ColorSuppressionControl"}};
    static constexpr TagMapEntry tagNames[] = {
        {"CSCCS_LowName", CSCCS_LowName},     {"CSCCS_MidName", CSCCS_MidName},
        {"CSCCS_HighName", CSCCS_HighName},   {"CSCCD_AngleMaster", CSCCD_AngleMaster},
        {"CSCCD_AngleLow", CSCCD_AngleLow},   {"CSCCD_AngleMid", CSCCD_AngleMid},
        {"CSCCD_AngleHigh", CSCCD_AngleHigh}, {}};
    struct Resources {
        ResDIB knob{"Controls.ColorSuppression.Knob", 0};
        ResDIB knobCenter{"Controls.ColorSuppression.KnobCenter", 0};
        ResDIB knobSelected{"Controls.ColorSuppression.KnobSelected", 0};
        ResDIB wheel{"Controls.ColorSuppression.Wheel", 0};
        ResColor textColour{"Controls.Other.TextColour", {220, 220, 220}};
        ResData layout{suppressionLayout};
    };
};

} // namespace

template <>
ControlClass<ColorSuppressionFacts> controlClass<ColorSuppressionFacts>{};
MARLOX_SCRIPT_CASTS(ColorSuppressionControl)

} // namespace Marlox
