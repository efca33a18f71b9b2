#include "controls/inspector/ComboControl.h"

#include "framework/ControlClass.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/CustomCombo.h"

#include <cstring>

#include <QLocale>

namespace Marlox {

namespace {

constexpr char horizontalLayout[] = "Controls.Combo.Layout.Horizontal";
constexpr char verticalLayout[] = "Controls.Combo.Layout.Vertical";

constexpr u32 ownTags[] = {CMBS_Entry, CMBS_EntryID, CMB_Vertical};

QColor expressionGround();

std::vector<ComboEntry> entriesOf(const TagList& tags)
{
    std::vector<ComboEntry> entries;
    const TagPair* id = tags.Find(CMBS_EntryID);
    for (const TagPair* entry = tags.Find(CMBS_Entry); entry; entry = tags.FindNext(entry)) {
        const QString text = QString::fromUtf8(entry->value.text);
        entries.push_back({text, id ? QString::fromUtf8(id->value.text) : text});
        id = id ? tags.FindNext(id) : nullptr;
    }
    return entries;
}

QString textOf(const Parameter* value)
{
    const auto* text = dynamic_cast<const Text*>(value);
    return text ? QString::fromStdString(text->GetValue()) : QString();
}

} // namespace

ComboControl::ComboControl(const Registry* record, const ScriptVal& creator,
                           const TagList& attributes)
    : OneInputControl(record, creator, attributes), label_(new ElideLabel(this)),
      combo_(new CustomCombo(this)),
      keepsIds_(record && record->ClassID() == MxID(CLSID_InputControl_ComboID))
{
    label_->setObjectName(QStringLiteral("label"));
    label_->setFocusProxy(combo_);
    combo_->setObjectName(QStringLiteral("combo"));
    connect(combo_, &CustomCombo::IndexChanged, this, &ComboControl::OnIndexChanged);
    connect(combo_, &CustomCombo::Refused, this, &ComboControl::OnRefused);
    ReadTags(CreationTags());
}

ComboControl::~ComboControl()
{
    combo_->SetOwner(nullptr);
}

// Attributes -------------------------------------------------------------------------------------

bool ComboControl::CopyAttr(u64 tag, void* out)
{
    const bool own = std::find(std::begin(ownTags), std::end(ownTags), tag) != std::end(ownTags);
    const TagPair* pair = own ? tags_.Find(u32(tag)) : nullptr;
    if (!pair)
        return InputControl::CopyAttr(tag, out);
    const u64 bits = pair->Bits();
    std::memcpy(out, &bits, sizeof bits);
    return true;
}

u64 ComboControl::DoTagList(unsigned int command, TagList& tags)
{
    const u32 tag = tags.Count() > 0 ? u32(tags.First()->tag) : 0;
    if (command != CommandGetRepeated || (tag != CMBS_Entry && tag != CMBS_EntryID))
        return InputControl::DoTagList(command, tags);
    tags.Clear();
    for (const ComboEntry& entry : combo_->Model().Entries())
        tags.AddCopy(tag, (tag == CMBS_Entry ? entry.text : entry.id).toStdString());
    return 1;
}

bool ComboControl::Takes(const Input& input) const
{
    return input.GetDataType() == MxID(keepsIds_ ? CLSID_DataType_Text : CLSID_DataType_Number);
}

const char* ComboControl::LayoutName() const
{
    return vertical_ ? verticalLayout : horizontalLayout;
}

void ComboControl::ReadTags(const TagList& tags)
{
    tags_ = tags;
    vertical_ = tags.GetBool(CMB_Vertical);
    nameHidden_ = tags.GetBool(IC_NoLabel);
    editDisabled_ = tags.GetBool(IC_EditDisabled);
    combo_->SetHelp(QString::fromUtf8(tags.GetString(IAS_Help)));
    combo_->SetEntries(entriesOf(tags));
}

// Life cycle -------------------------------------------------------------------------------------

bool ComboControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    if (!OneInputControl::Open(window, rect, tags))
        return false;
    combo_->SetOwner(this);
    return true;
}

void ComboControl::Close(TagList* tags)
{
    combo_->SetOwner(nullptr); // ends a gesture, closes the list
    OneInputControl::Close(tags);
}

// Values -----------------------------------------------------------------------------------------

int ComboControl::ShownPlace() const
{
    const Parameter* value = ShownValue().Get();
    if (!value)
        return ComboModel::none;
    return keepsIds_ ? combo_->Model().PlaceOf(textOf(value))
                     : combo_->Model().PlaceOf(NumberOf(value));
}

QString ComboControl::StrangerText() const
{
    if (!keepsIds_)
        return QString::number(NumberOf(ShownValue().Get()), 'g', QLocale::FloatingPointShortest);
    const QString id = textOf(ShownValue().Get());
    return id.isEmpty() ? tr("no value") : id;
}

void ComboControl::Show()
{
    label_->SetText(InputName());
    label_->setVisible(!nameHidden_ && FindLayoutObj("label"));
    if (combo_->accessibleName() != InputName())
        combo_->setAccessibleName(InputName()); // tells screen readers each time
    combo_->setFocusPolicy(TabStop() ? Qt::StrongFocus : Qt::ClickFocus);
    if (const int place = ShownPlace(); place != ComboModel::none)
        combo_->ShowIndex(place);
    else
        combo_->ShowStranger(StrangerText());
    ShowMotion();
}

void ComboControl::ShowMotion()
{
    const Motion motion = InputMotion();
    const QColor line = ColorOf(motion);
    const bool ruled = motion == Motion::Expression;
    combo_->SetStateColors(line, ruled ? line : QColor(), ruled ? expressionGround() : QColor());
    combo_->SetLocked(ruled || editDisabled_);
}

void ComboControl::OnIndexChanged(int index)
{
    Ref<Parameter> value;
    if (keepsIds_)
        value = MakeRef<Text>(combo_->Model().Entries()[index].id.toStdString());
    else
        value = MakeRef<Number>(double(index));
    Write(value, combo_->InGesture());
}

void ComboControl::OnRefused()
{
    if (InputMotion() == Motion::Expression)
        Report(tr("%1 follows an expression: remove it to set a value").arg(InputName()));
}

// Registration -----------------------------------------------------------------------------------

namespace {

struct ComboFacts : InspectorFacts {
    using Class = ComboControl;
    static constexpr char name[] = "ComboControl";
    static constexpr RecordFacts records[] = {
        {CLSID_InputControl_Combo, "ComboControl"},
        {CLSID_InputControl_ComboID, "ComboIDControl", CLSID_InputControl_Combo}};
    static constexpr TagMapEntry tagNames[] = {{"CMBS_Entry", CMBS_Entry, {}, true},
                                               {"CMBS_EntryID", CMBS_EntryID, {}, true},
                                               {"CMB_Vertical", CMB_Vertical},
                                               {}};
    struct Resources {
        ResColor expression{"Controls.ExpressionColour", {230, 215, 135}, {9, 9, 9}};
        ResData horizontalLayout{Marlox::horizontalLayout};
        ResData verticalLayout{Marlox::verticalLayout};
    };
};

} // namespace

template <>
ControlClass<ComboFacts> controlClass<ComboFacts>{};
MARLOX_SCRIPT_CASTS(ComboControl)

namespace {

QColor expressionGround()
{
    return controlClass<ComboFacts>.resources.expression.Second().ToQColor();
}

} // namespace

} // namespace Marlox
