#include "controls/inspector/LabelControl.h"

#include "system/widgets/ElideLabel.h"

#include <QPainter>

namespace Marlox {

namespace {

struct LabelResources {
    ResDIB button[8]{{"Controls.Nest.Button.1.1", 0}, {"Controls.Nest.Button.1.2", 0},
                     {"Controls.Nest.Button.1.3", 0}, {"Controls.Nest.Button.1.4", 0},
                     {"Controls.Nest.Button.2.1", 0}, {"Controls.Nest.Button.2.2", 0},
                     {"Controls.Nest.Button.2.3", 0}, {"Controls.Nest.Button.2.4", 0}};
    ResColor nestTextColour{"Controls.Nest.TextColour", {208, 208, 208}};
    ResData labelLayout{"Controls.Label.Layout"};
    ResData nestLayout{"Controls.Nest.Layout"};
    ResData separatorLayout{"Controls.Separator.Layout"};
    ResData spacerLayout{"Controls.Spacer.Layout"};
};
const LabelResources& Resources();

constexpr int gapHeight = 8; // pixels, of separators and spacers

LabelControl::Variant VariantOf(const Registry* record)
{
    constexpr struct {
        const char* id;
        LabelControl::Variant variant;
    } variants[] = {
        {CLSID_InputControl_Nest, LabelControl::Variant::Nest},
        {CLSID_InputControl_Separator, LabelControl::Variant::Separator},
        {CLSID_InputControl_Spacer, LabelControl::Variant::Spacer},
    };
    for (const auto& [id, variant] : variants) {
        if (record && record->ClassID() == MxID(id))
            return variant;
    }
    return LabelControl::Variant::Label;
}

} // namespace

LabelControl::LabelControl(const Registry* record, const ScriptVal& creator,
                           const TagList& attributes)
    : GenericInputControl(record, creator, attributes), variant_(VariantOf(record))
{
}

std::size_t LabelControl::SizeOf() const
{
    return sizeof(*this);
}

std::unique_ptr<GenericEditor> LabelControl::MakeEditor(Input&)
{
    return nullptr;
}

bool LabelControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    if (!GenericInputControl::Open(window, rect, tags))
        return false;
    const bool nest = variant_ == Variant::Nest;
    TitleLabel()->setVisible(nest || variant_ == Variant::Label);
    if (nest) {
        QFont bold = TitleLabel()->font();
        bold.setBold(true);
        TitleLabel()->setFont(bold);
        QPalette palette = TitleLabel()->palette();
        palette.setColor(QPalette::WindowText, Resources().nestTextColour.Color().ToQColor());
        TitleLabel()->setPalette(palette);
    }
    return true;
}

bool LabelControl::GetMinSize(int& width, int& height, TagList* tags)
{
    if (variant_ == Variant::Label || variant_ == Variant::Nest)
        return GenericInputControl::GetMinSize(width, height, tags);
    width = 0;
    height = gapHeight;
    return true;
}

bool LabelControl::GetMaxSize(int& width, int& height, TagList* tags)
{
    if (variant_ == Variant::Label || variant_ == Variant::Nest)
        return GenericInputControl::GetMaxSize(width, height, tags);
    width = QWIDGETSIZE_MAX; // the layout, whose title is hidden, would say 0
    height = gapHeight;
    return true;
}

void LabelControl::paintEvent(QPaintEvent* event)
{
    GenericInputControl::paintEvent(event);
    if (variant_ == Variant::Separator) {
        QPainter painter(this);
        painter.fillRect(0, height() / 2, width(), 1, palette().color(QPalette::Mid));
    }
}

namespace {

struct LabelFacts : GenericInspectorFacts {
    using Class = LabelControl;
    static constexpr char name[] = "LabelControl";
    static constexpr RecordFacts records[] = {
        {CLSID_InputControl_Label, "LabelControl"},
        {CLSID_InputControl_Nest, nullptr, CLSID_InputControl_Label},
        {CLSID_InputControl_Separator, nullptr, CLSID_InputControl_Label},
        {CLSID_InputControl_Spacer, nullptr, CLSID_InputControl_Label},
    };
    using Resources = LabelResources;
};

} // namespace

template <>
ControlClass<LabelFacts> controlClass<LabelFacts>{};
MARLOX_SCRIPT_CASTS(LabelControl)

namespace {

const LabelResources& Resources()
{
    return controlClass<LabelFacts>.resources;
}

} // namespace

} // namespace Marlox
