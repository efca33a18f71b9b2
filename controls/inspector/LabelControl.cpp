#include "controls/inspector/LabelControl.h"

#include "controls/inspector/LabelControlAccess.h"
#include "framework/ControlClass.h"
#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/CustomNestButton.h"
#include "widgets/CustomSeparator.h"

#include <utility>

#include <QAccessible>
#include <QLabel>
#include <QPointer>

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
const LabelResources& resources();

constexpr int textMargin = 4; // above and below the text of a label, pixels

constexpr struct {
    const char* id;
    LabelControl::Variant variant;
    const char* layout;
} variants[] = {
    {CLSID_InputControl_Label, LabelControl::Variant::Label, "Controls.Label.Layout"},
    {CLSID_InputControl_Nest, LabelControl::Variant::Nest, "Controls.Nest.Layout"},
    {CLSID_InputControl_Separator, LabelControl::Variant::Separator, "Controls.Separator.Layout"},
    {CLSID_InputControl_Spacer, LabelControl::Variant::Spacer, "Controls.Spacer.Layout"},
};

LabelControl::Variant variantOf(const Registry* record)
{
    for (const auto& row : variants) {
        if (record && record->ClassID() == MxID(row.id))
            return row.variant;
    }
    return LabelControl::Variant::Label;
}

} // namespace

LabelControl::LabelControl(const Registry* record, const ScriptVal& creator,
                           const TagList& attributes)
    : OneInputControl(record, creator, attributes), variant_(variantOf(record))
{
    MakeLabelsAccessible();
    MakeWidgets();
    ReadTags(CreationTags());
}

void LabelControl::MakeWidgets()
{
    switch (variant_) {
    case Variant::Label:
        text_ = new QLabel(this);
        text_->setObjectName("label");
        text_->setTextFormat(Qt::PlainText);
        text_->setWordWrap(true);
        text_->setContentsMargins(0, textMargin, 0, textMargin);
        text_->setMinimumWidth(1); // a long word does not widen the page
        break;
    case Variant::Nest: {
        button_ = new CustomNestButton(this);
        button_->setObjectName("button");
        title_ = new ElideLabel(this);
        title_->setObjectName("label");
        QFont bold = title_->font();
        bold.setBold(true);
        title_->setFont(bold);
        QPalette palette = title_->palette();
        for (const auto group : {QPalette::Active, QPalette::Inactive})
            palette.setColor(group, QPalette::WindowText,
                             resources().nestTextColour.Color().ToQColor());
        title_->setPalette(palette);
        break;
    }
    case Variant::Separator:
        line_ = new CustomSeparator(this);
        line_->setObjectName("line");
        break;
    case Variant::Spacer:
        break;
    }
}

// Attributes -------------------------------------------------------------------------------------

QString LabelControl::Text() const
{
    return givenText_.empty() ? InputName() : QString::fromStdString(givenText_);
}

bool LabelControl::CopyAttr(u64 tag, void* out)
{
    if (tag == IA_Animatable) {
        *static_cast<int64*>(out) = 0; // whatever the input allows
        return true;
    }
    switch (tag) {
    case LBL_Rows:
        *static_cast<int64*>(out) = rows_;
        return true;
    case LBLS_Text:
        *static_cast<const char**>(out) = givenText_.c_str();
        return true;
    default:
        return InputControl::CopyAttr(tag, out);
    }
}

const char* LabelControl::LayoutName() const
{
    return variants[int(variant_)].layout;
}

void LabelControl::ReadTags(const TagList& tags)
{
    rows_ = int(tags.GetLong(LBL_Rows));
    givenText_ = tags.GetString(LBLS_Text, "");
}

// Life cycle -------------------------------------------------------------------------------------

bool LabelControl::AddInput(Input* input, TagList* tags)
{
    if (!OneInputControl::AddInput(input, tags))
        return false;
    ReadFolding(ShownValue().Get());
    return true;
}

bool LabelControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    if (text_)
        text_->resize(rect.Width(), text_->height()); // good enough a guess of the room
    if (!OneInputControl::Open(window, rect, tags))
        return false;
    if (IsNest())
        setFocusPolicy(TabStop() ? Qt::StrongFocus : Qt::ClickFocus);
    ApplyFolding();
    return true;
}

bool LabelControl::SetSize(int& width, int& height, TagList* tags)
{
    const bool done = InputControl::SetSize(width, height, tags);
    FitText();
    return done;
}

void LabelControl::Show()
{
    const QString text = Text();
    if (accessibleName() != text)
        setAccessibleName(text); // tells screen readers each time
    if (title_) {
        title_->SetText(text);
        const QString help =
            ShownInput() ? QString::fromUtf8(ShownInput()->GetAttrS(IAS_Help)) : QString();
        const QString use = tr("Click: fold or open\nCtrl+click: all nests");
        setToolTip(help.isEmpty() ? use : help + '\n' + use);
    }
    if (text_ && text_->text() != text) {
        text_->setText(text);
        FitText();
    }
}

/// Asks for the height that the text needs at the width it has got. (QLabel's own answer is never
/// below its minimum height, which is what is to be found.)
void LabelControl::FitText()
{
    if (!text_)
        return;
    const QRect room(0, 0, text_->width(), QWIDGETSIZE_MAX);
    const QRect needed =
        text_->fontMetrics().boundingRect(room, Qt::AlignLeft | Qt::TextWordWrap, text_->text());
    const int height = needed.height() + 2 * textMargin;
    if (height == text_->minimumHeight())
        return;
    text_->setMinimumHeight(height);
    RecalcControlSize();
}

// The nest ---------------------------------------------------------------------------------------

void LabelControl::ReadFolding(const Parameter* value)
{
    nestOpen_ = NumberOf(value, nestOpen_ ? 1.0 : 0.0) != 0.0;
}

void LabelControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    if (input && input == ShownInput())
        ReadFolding(value);
    OneInputControl::NotifyChanged(input, value, tags);
}

void LabelControl::UpdateDisplay(Input* input, TagList* tags)
{
    if (!IsOpen())
        return;
    const auto alive = Ref<LabelControl>::Share(this); // folding may end what closes the page
    ApplyFolding();
    OneInputControl::UpdateDisplay(input, tags);
}

void LabelControl::ApplyFolding()
{
    if (!IsNest())
        return;
    ApplyButton();
    const bool told = std::exchange(shownOpen_, nestOpen_) == nestOpen_;
    Window()->SetHeading(*this, rows_, nestOpen_);
    if (told || !QAccessible::isActive())
        return;
    QAccessible::State changed;
    changed.expanded = true;
    changed.collapsed = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void LabelControl::SetNestOpen(bool open)
{
    if (!IsNest() || open == nestOpen_)
        return;
    const auto alive = Ref<LabelControl>::Share(this);
    const Input* input = ShownInput();
    if (input && input->GetDataType() == MxID(CLSID_DataType_Number)) {
        SetInputs(AutoNumber(new Number(open ? 1.0 : 0.0)).Get(), CurrentTime(), Index(), true,
                  nullptr);
        return;
    }
    nestOpen_ = open;
    UpdateDisplay(nullptr, nullptr);
}

void LabelControl::SetAllNestsOpen(bool open)
{
    if (!IsOpen())
        return;
    // One undo entry for those whose input is not passive.
    const QPointer<MarloxDoc> document(GetDoc());
    if (document)
        document->StartUndo(open ? "Open All" : "Fold All");
    for (const Ref<InputControl>& control : std::vector(Window()->Controls())) {
        auto* nest = dynamic_cast<LabelControl*>(control.Get());
        if (nest && nest->isEnabled())
            nest->SetNestOpen(open);
    }
    if (document)
        document->EndUndo(true);
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct LabelFacts : InspectorFacts {
    using Class = LabelControl;
    static constexpr char name[] = "LabelControl";
    static constexpr RecordFacts records[] = {
        {CLSID_InputControl_Label, "LabelControl"},
        {CLSID_InputControl_Nest, nullptr, CLSID_InputControl_Label},
        {CLSID_InputControl_Separator, nullptr, CLSID_InputControl_Label},
        {CLSID_InputControl_Spacer, nullptr, CLSID_InputControl_Label},
    };
    static constexpr TagMapEntry tagNames[] = {
        {"LBL_Rows", LBL_Rows}, {"LBLS_Text", LBLS_Text}, {}};
    using Resources = LabelResources;
};

} // namespace

template <>
ControlClass<LabelFacts> controlClass<LabelFacts>{};
MARLOX_SCRIPT_CASTS(LabelControl)

namespace {

const LabelResources& resources()
{
    return controlClass<LabelFacts>.resources;
}

} // namespace

} // namespace Marlox
