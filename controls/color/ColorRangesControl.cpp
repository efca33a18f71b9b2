#include "controls/color/ColorRangesControl.h"

#include "framework/ControlClass.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/CustomColorRanges.h"

namespace Marlox {

namespace {

constexpr char layoutName[] = "Controls.ColorRanges.Layout";

struct RangeFacts {
    u32 tag;
    const char* name; // unless the tag gives one
};
constexpr std::array<RangeFacts, 3> rangeFacts{
    {{CRCCS_LowName, "Shadows"}, {CRCCS_MidName, "Midtones"}, {CRCCS_HighName, "Highlights"}}};

template <class Widget>
Widget* makeNamed(const char* name, QWidget* parent)
{
    auto* widget = new Widget(parent);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

} // namespace

ColorRangesControl::ColorRangesControl(const Registry* record, const ScriptVal& creator,
                                       const TagList& attributes)
    : OneInputControl(record, creator, attributes), label_(makeNamed<ElideLabel>("label", this)),
      ranges_(makeNamed<CustomColorRanges>("ranges", this))
{
    label_->setFocusProxy(ranges_);
    connect(ranges_, SIGNAL(dragNode(int)), this, SLOT(OnRanges(int)));
    ReadTags(CreationTags());
}

ColorRangesControl::~ColorRangesControl()
{
    ranges_->SetOwner(nullptr);
}

// Attributes -------------------------------------------------------------------------------------

bool ColorRangesControl::CopyAttr(u64 tag, void* out)
{
    // Without an input the base knows better: what was set since is not read before one comes.
    if (Inputs().empty() && InputControl::CopyAttr(tag, out))
        return true;
    if (tag == CRCC_ShowMidtones) {
        *static_cast<int64*>(out) = showMidtones_;
        return true;
    }
    for (std::size_t i = 0; i < names_.size(); ++i) {
        if (rangeFacts[i].tag == tag) {
            *static_cast<const char**>(out) = names_[i].c_str();
            return true;
        }
    }
    return InputControl::CopyAttr(tag, out);
}

bool ColorRangesControl::Takes(const Input& input) const
{
    return input.GetDataType() == MxID(CLSID_DataType_ColorCurves);
}

const char* ColorRangesControl::LayoutName() const
{
    return layoutName;
}

void ColorRangesControl::ReadTags(const TagList& tags)
{
    showMidtones_ = tags.GetBool(CRCC_ShowMidtones, true);
    nameHidden_ = tags.GetBool(IC_NoLabel);
    editDisabled_ = tags.GetBool(IC_EditDisabled);
    for (std::size_t i = 0; i < names_.size(); ++i)
        names_[i] = tags.GetString(rangeFacts[i].tag, rangeFacts[i].name);
    ranges_->SetHelp(QString::fromUtf8(tags.GetString(IAS_Help)));
}

// Life cycle -------------------------------------------------------------------------------------

bool ColorRangesControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    if (!OneInputControl::Open(window, rect, tags))
        return false;
    ranges_->SetOwner(this);
    return true;
}

void ColorRangesControl::Close(TagList* tags)
{
    ranges_->SetOwner(nullptr); // ends a gesture
    OneInputControl::Close(tags);
}

// Values -----------------------------------------------------------------------------------------

void ColorRangesControl::Show()
{
    label_->SetText(InputName());
    label_->setVisible(!nameHidden_ && FindLayoutObj("label"));
    if (ranges_->accessibleName() != InputName())
        ranges_->setAccessibleName(InputName()); // tells screen readers each time
    ranges_->setFocusPolicy(TabStop() ? Qt::StrongFocus : Qt::ClickFocus);
    ranges_->SetNames({QString::fromStdString(names_[0]), QString::fromStdString(names_[1]),
                       QString::fromStdString(names_[2])});
    ranges_->SetShowMidtones(showMidtones_);
    if (const auto* curves = dynamic_cast<const ColorCurves*>(ShownValue().Get()))
        ranges_->ShowCurves(*curves);
    if (const Input* input = ShownInput()) {
        const Ref<Parameter> usual = input->DefaultValue();
        if (const auto* curves = dynamic_cast<const ColorCurves*>(usual.Get()))
            ranges_->SetDefaultCurves(*curves);
    }
    ranges_->SetStateColor(ColorOf(InputMotion()));
    ranges_->SetLocked(editDisabled_ || InputMotion() == Motion::Expression);
}

void ColorRangesControl::OnRanges(int)
{
    Write(MakeRef<ColorCurves>(ranges_->Curves().Components()), ranges_->InGesture());
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct ColorRangesFacts : InspectorFacts {
    using Class = ColorRangesControl;
    static constexpr char name[] = "ColorRangesControl";
    static constexpr RecordFacts records[] = {{"ColorRangesControl", "ColorRangesControl"}};
    static constexpr TagMapEntry tagNames[] = {{"CRCC_ShowMidtones", CRCC_ShowMidtones},
                                               {"CRCCS_LowName", CRCCS_LowName},
                                               {"CRCCS_MidName", CRCCS_MidName},
                                               {"CRCCS_HighName", CRCCS_HighName},
                                               {}};
    struct Resources {
        ResDIB node{CustomColorRanges::nodeBitmap, 0};
        ResColor baseColour{"Controls.ColorRanges.BaseColour", {80, 80, 80}};
        ResColor handleColour{"Controls.ColorRanges.HandleColour", {51, 153, 179}};
        ResData layout{layoutName};
    };
};

} // namespace

template <>
ControlClass<ColorRangesFacts> controlClass<ColorRangesFacts>{};
MARLOX_SCRIPT_CASTS(ColorRangesControl)

} // namespace Marlox
