#include "controls/color/ColorControl.h"

#include "controls/color/ColorChannelRow.h"
#include "controls/color/PickButton.h"
#include "controls/color/SampleButton.h"
#include "framework/ControlClass.h"
#include "framework/SliderParts.h"
#include "system/color/ColorPreferences.h"
#include "system/controls/ControlWnd.h"
#include "system/document/Preferences.h"
#include "system/widgets/CustomButton.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomColorField.h"
#include "widgets/CustomSlider.h"
#include "widgets/CustomSwatch.h"

#include <algorithm>
#include <utility>

namespace Marlox {

namespace {

const char* const colorSpaces[] = {"HSV", "HLS", "YUV", nullptr};
const TagEnumeration colorSpace{"ColorSpace", colorSpaces};

} // namespace

ColorControl::ColorControl(const Registry* record, const ScriptVal& creator,
                           const TagList& attributes)
    : ChannelControl(record, creator, attributes, ColorChannels::count),
      expand_(new CustomButton(this)), label_(new ElideLabel(this)), reset_(new CustomButton(this)),
      sampled_(new ElideLabel(this))
{
    setAcceptDrops(true);
    expand_->setObjectName(QStringLiteral("buttonexpand"));
    label_->setObjectName(QStringLiteral("label"));
    reset_->setObjectName(QStringLiteral("reset"));
    reset_->SetBitmaps("Icons.System.Reset");
    reset_->setToolTip(tr("Set all components back to their defaults"));
    sampled_->setObjectName(QStringLiteral("Sample"));
    label_->setFocusProxy(expand_);
    connect(expand_, SIGNAL(clicked()), this, SLOT(OnExpand()));
    connect(reset_, &CustomButton::clicked, this, [this] { ButtonPressed(ColorChannels::count); });
    connect(&Preferences::Global(), &Preferences::Changed, this, &ColorControl::OnPreference);
    ReadTags(CreationTags());
    MakeParts();
}

ColorControl::~ColorControl()
{
    if (field_)
        field_->SetOwner(nullptr);
    for (const ColorChannelRow* row : rows_)
        row->Slider().SetOwner(nullptr);
    if (pick_)
        pick_->disconnect(this);
    for (const FieldEdit& axis : {hue_, saturation_, value_}) {
        if (axis.edit)
            axis.edit->disconnect(this);
    }
}

std::size_t ColorControl::SizeOf() const
{
    return sizeof(*this);
}

// Attributes -------------------------------------------------------------------------------------

bool ColorControl::CopyAttr(u64 tag, void* out)
{
    const auto number = [out](int64 value) {
        *static_cast<int64*>(out) = value;
        return true;
    };
    switch (tag) {
    case CLRC_ColorSpace:
        return number(parts_.colorSpace);
    case CLRC_ShowWheel:
        return number(expanded_);
    case CLRC_NoPick:
        return number(!parts_.pick);
    case CLRC_NoSwatch:
        return number(!parts_.swatch);
    case CLRC_NoWheel:
        return number(!parts_.field);
    case CLRC_NoSliders:
        return number(!parts_.sliders);
    default:
        return ChannelControl::CopyAttr(tag, out);
    }
}

void ColorControl::ReadTags(const TagList& tags)
{
    const int64 space = tags.GetLong(CLRC_ColorSpace);
    const Parts parts{space >= 0 && space < 3 ? int(space) : 0, !tags.GetBool(CLRC_NoPick),
                      !tags.GetBool(CLRC_NoSwatch), !tags.GetBool(CLRC_NoWheel),
                      !tags.GetBool(CLRC_NoSliders)};
    const bool expanded = tags.GetBool(CLRC_ShowWheel);
    if (parts == parts_ && expanded == expanded_)
        return;
    Ref<ColorControl> alive; // what is typed may close the page
    if (IsOpen()) {
        alive = Ref<ColorControl>::Share(this);
        CommitEdits(); // as they were meant
    }
    parts_ = parts;
    expanded_ = expanded;
    if (IsOpen()) {
        MakeParts();
        Rebuild();
    }
}

bool ColorControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    if (!ChannelControl::SetAttrsTagList(input, tags))
        return false;
    for (ColorChannelRow* row : rows_) {
        if (InputOf(row->Channel()) == input)
            row->Apply(SettingsOf(row->Channel()), *input);
    }
    return true;
}

int ColorControl::SlotOf(const Input& input) const
{
    const int64 channel = input.GetAttr(IA_Channel, input.GetAttr(IA_ControlIndex, 0));
    return channel >= 0 && channel < ColorChannels::count ? int(channel) : -1;
}

QString ColorControl::SpaceName(int space)
{
    return QLatin1String(colorSpaces[space]);
}

QString ColorControl::Label() const
{
    const QString common = CommonName(Inputs());
    return common.isEmpty() ? tr("Colour") : common;
}

// Values in --------------------------------------------------------------------------------------

bool ColorControl::HasColor() const
{
    return InputOf(ColorChannels::red) || InputOf(ColorChannels::green) ||
           InputOf(ColorChannels::blue);
}

bool ColorControl::IsFieldShown() const
{
    return expanded_ && parts_.field && HasColor();
}

bool ColorControl::IsColorEditable() const
{
    return IsEditable(ColorChannels::red) || IsEditable(ColorChannels::green) ||
           IsEditable(ColorChannels::blue);
}

RgbColor ColorControl::Color() const
{
    const auto component = [this](int channel) {
        return InputOf(channel) ? ValueOf(channel) : 0.0;
    };
    return {component(ColorChannels::red), component(ColorChannels::green),
            component(ColorChannels::blue)};
}

std::optional<double> ColorControl::Alpha() const
{
    return InputOf(ColorChannels::alpha) ? std::optional(ValueOf(ColorChannels::alpha))
                                         : std::nullopt;
}

double ColorControl::ShownScale(int channel) const
{
    if (!ColorChannels::IsColor(channel))
        return 1.0;
    switch (Preferences::Global().Get(PREF_ColorMode, 0).toInt()) {
    case 1:
        return 255.0;
    case 2:
        return 65535.0;
    default:
        return 1.0;
    }
}

void ColorControl::OnPreference(const QString& name)
{
    if (name != QLatin1String(PREF_ColorMode))
        return;
    for (const ColorChannelRow* row : rows_)
        AttachEdit(row->Edit(), row->Channel()); // with other limits
    UpdateDisplay(nullptr, nullptr);
}

void ColorControl::Show()
{
    ShowEdits();
    for (const ColorChannelRow* row : rows_)
        ShowRow(*row);
    ShowColor();
}

void ColorControl::ShowSlot(int channel)
{
    ShowEditsOf(channel);
    for (const ColorChannelRow* row : rows_) {
        if (row->Channel() == channel)
            ShowRow(*row);
    }
    if (channel <= ColorChannels::alpha)
        ShowColor();
}

void ColorControl::ShowColor()
{
    if (swatch_)
        swatch_->SetColor(Color(), Alpha());
    if (!sampled_->Text().isEmpty() && Color() != sampledColor_)
        ShowSampled({});
    ShowRecord();
    ShowEditable();
}

/// What can't be set neither takes a press nor looks as if it did.
void ColorControl::ShowEditable()
{
    const bool editable = IsColorEditable();
    for (QWidget* part : std::initializer_list<QWidget*>{swatch_, pick_, sample_}) {
        if (part)
            part->setEnabled(editable);
    }
    const bool resets = std::any_of(rows_.begin(), rows_.end(), [](const ColorChannelRow* row) {
        return row->Reset().isEnabled();
    });
    reset_->setEnabled(rows_.empty() ? editable : resets);
    if (!field_)
        return;
    field_->SetMovable(editable, IsEditable(ColorChannels::alpha));
    for (const FieldEdit& axis : {hue_, saturation_, value_})
        axis.edit->SetEditDisabled(!editable);
}

void ColorControl::ShowSampled(const QString& note)
{
    sampledColor_ = Color();
    sampled_->SetText(note);
}

// Values out -------------------------------------------------------------------------------------

QString ColorControl::UndoText(const QString& what) const
{
    return QStringLiteral("%1: %2").arg(Owner() ? Owner()->GetName() : Label(), what);
}

void ColorControl::StartTypedUndo(int)
{
    StartUndo(UndoText(Label()).toUtf8().constData());
}

void ColorControl::WriteColor(const RgbColor& rgb)
{
    const auto alive = Ref<ColorControl>::Share(this); // what follows may close the page
    {
        const Writing writing(*this);
        for (int channel = 0; channel < 3; ++channel) {
            const SliderSettings::Range& allowed = SettingsOf(channel).allowed;
            if (IsEditable(channel))
                Write(channel, std::clamp(rgb[std::size_t(channel)], allowed.low, allowed.high));
        }
    }
    UpdateDisplay(nullptr, nullptr);
}

void ColorControl::OnExpand()
{
    ChooseView(CLRC_ShowWheel, !expanded_);
}

void ColorControl::ValueChanged()
{
    const auto is = [from = sender()](const FieldEdit& axis) { return axis.edit == from; };
    if (sender() && (is(hue_) || is(saturation_) || is(value_)))
        TakeRecordEdits();
    else
        ChannelControl::ValueChanged();
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct ColorFacts : InspectorFacts {
    using Class = ColorControl;
    static constexpr char name[] = "ColorControl";
    static constexpr RecordFacts records[] = {{"ColorControl", "ColorControl"}};
    static constexpr TagMapEntry tagNames[] = {
        {"CLRC_ColorSpace", CLRC_ColorSpace, TagType(0), false, &colorSpace},
        {"CLRC_ShowWheel", CLRC_ShowWheel},
        {"CLRC_NoPick", CLRC_NoPick},
        {"CLRC_NoSwatch", CLRC_NoSwatch},
        {"CLRC_NoWheel", CLRC_NoWheel},
        {"CLRC_NoSliders", CLRC_NoSliders},
        {}};
    struct Resources {
        ResDIB arrows[8]{{"Controls.Color.Arrow.1.1", 0}, {"Controls.Color.Arrow.1.2", 0},
                         {"Controls.Color.Arrow.1.3", 0}, {"Controls.Color.Arrow.1.4", 0},
                         {"Controls.Color.Arrow.2.1", 0}, {"Controls.Color.Arrow.2.2", 0},
                         {"Controls.Color.Arrow.2.3", 0}, {"Controls.Color.Arrow.2.4", 0}};
        ResDIB chequer{"Controls.Color.Chequer", 0};
        ResDIB knobs[10]{{"Controls.Color.Knob.1.1", 0}, {"Controls.Color.Knob.1.2", 0},
                         {"Controls.Color.Knob.2.1", 0}, {"Controls.Color.Knob.2.2", 0},
                         {"Controls.Color.Knob.3.1", 0}, {"Controls.Color.Knob.3.2", 0},
                         {"Controls.Color.Knob.4.1", 0}, {"Controls.Color.Knob.4.2", 0},
                         {"Controls.Color.Knob.5.1", 0}, {"Controls.Color.Knob.5.2", 0}};
        ResDIB pickButton[2]{{"Controls.Color.PickButton.1", 0},
                             {"Controls.Color.PickButton.2", 0}};
        ResDIB fieldAlphaKnob{"Controls.ColorField.AlphaKnob", 0};
        ResDIB fieldChequer{"Controls.ColorField.Chequer", 0};
        ResDIB fieldHueKnob{"Controls.ColorField.HueKnob", 0};
        ResDIB fieldSatValKnob{"Controls.ColorField.SatValKnob", 0};
        ResColor focusTextColour{"Controls.Other.FocusTextColour", {255, 255, 255}};
        ResColor disabledTextColour{"Controls.Other.DisabledTextColour", {110, 110, 110}};
        ResColor expressionColour{"Controls.ExpressionColour", {230, 215, 135}, {9, 9, 9}};
        ResData collapsedLayout{ColorControl::collapsedLayout};
        ResData expandedLayout{ColorControl::expandedLayout};
        ResData sliderLayout{"Controls.Color.Layout.Slider"};
    };
};

} // namespace

template <>
ControlClass<ColorFacts> controlClass<ColorFacts>{};
MARLOX_SCRIPT_CASTS(ColorControl)

} // namespace Marlox
