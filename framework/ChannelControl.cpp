#include "framework/ChannelControl.h"

#include "framework/NamedPlaces.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/TimeCodeEdit.h"

#include <algorithm>
#include <utility>

#include <QApplication>
#include <QChildEvent>

namespace Marlox {

ChannelControl::ChannelControl(const Registry* record, const ScriptVal& creator,
                               const TagList& attributes, int count)
    : InputControl(record, creator, attributes), slots_(std::size_t(count))
{
    creation_.Merge(attributes);
}

ChannelControl::~ChannelControl()
{
    for (const Edit& edit : edits_)
        edit.edit->disconnect(this);
}

// Slots ------------------------------------------------------------------------------------------

Input* ChannelControl::InputOf(int slot) const
{
    return HasSlot(slot) ? slots_[std::size_t(slot)].input : nullptr;
}

double ChannelControl::ValueOf(int slot) const
{
    return HasSlot(slot) ? slots_[std::size_t(slot)].value : 0.0;
}

int ChannelControl::SlotHolding(const Input* input) const
{
    const auto found = std::find_if(slots_.begin(), slots_.end(),
                                    [input](const Slot& slot) { return slot.input == input; });
    return input && found != slots_.end() ? int(found - slots_.begin()) : -1;
}

unsigned int ChannelControl::IndexOf(int slot) const
{
    const Input* input = InputOf(slot);
    return input ? unsigned(input->GetAttr(IA_ControlIndex)) : 0;
}

bool ChannelControl::IsEditable(int slot) const
{
    const Input* input = InputOf(slot);
    return input && IsUsable() && !SettingsOf(slot).editDisabled && input->IsChangeable() &&
           !input->HasExpression() && input->GetState().source.empty();
}

bool ChannelControl::SetAttrsTagList(const TagList& tags)
{
    if (Inputs().empty()) {
        creation_.Merge(tags);
        ReadTags(creation_);
    }
    return InputControl::SetAttrsTagList(tags);
}

bool ChannelControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    TagList common(tags);
    common.Remove(IA_ReadOnly); // one that is read-only leaves the others be
    if (!InputControl::SetAttrsTagList(input, common))
        return false;
    TagList all(creation_);
    all.Merge(tags);
    if (Inputs().empty() || input == Inputs().front())
        ReadTags(all);
    const bool isAttached = SlotHolding(input) >= 0;
    const int slot = isAttached ? SlotHolding(input) : SlotOf(*input);
    if (HasSlot(slot) && (isAttached || !InputOf(slot))) {
        SliderSettings settings = SliderSettings::Shared(all);
        const SliderSettings::Range limits = LimitsOf(slot);
        settings.allowed.low = std::clamp(settings.allowed.low, limits.low, limits.high);
        settings.allowed.high = std::clamp(settings.allowed.high, limits.low, limits.high);
        slots_[std::size_t(slot)].settings = settings;
        for (const Edit& edit : edits_) {
            if (edit.slot == slot)
                ApplySettings(edit);
        }
    }
    return true;
}

bool ChannelControl::AddInput(Input* input, TagList* tags)
{
    if (!input || input->GetDataType() != MxID(CLSID_DataType_Number) ||
        !InputControl::AddInput(input, tags))
        return false;
    const int slot = SlotOf(*input);
    if (!HasSlot(slot) || InputOf(slot))
        return true; // neither shown nor written; of two in one place the first has it
    TakeUp(slot);
    if (IsOpen())
        Rebuild();
    return true;
}

/// Gives a free slot the first of the inputs that it is for, if there is one.
void ChannelControl::TakeUp(int slot)
{
    const auto found = std::find_if(Inputs().begin(), Inputs().end(), [&](const Input* input) {
        return SlotOf(*input) == slot && SlotHolding(input) < 0;
    });
    if (found == Inputs().end())
        return;
    slots_[std::size_t(slot)].input = *found;
    slots_[std::size_t(slot)].value = (*found)->GetNumber(CurrentTime());
}

bool ChannelControl::RemoveInput(Input* input, TagList* tags)
{
    const int slot = SlotHolding(input);
    if (slot >= 0) {
        EndGesture();
        slots_[std::size_t(slot)].input = nullptr;
    }
    const bool ours = InputControl::RemoveInput(input, tags);
    if (slot >= 0) {
        TakeUp(slot);
        if (Input* next = InputOf(slot))
            SetAttrsTagList(next, next->Attributes());
    }
    if (slot >= 0 && IsOpen())
        Rebuild();
    return ours;
}

Input* ChannelControl::GetInputFrom(u64 identifier) const
{
    const ReadLock lock(InputsLock());
    for (Input* input : Inputs()) {
        if (SlotHolding(input) >= 0 && u64(input->GetAttr(IA_ControlIndex, -1)) == identifier)
            return input;
    }
    return nullptr;
}

int ChannelControl::SlotUnder(const QWidget* widget) const
{
    for (; widget && widget != this; widget = widget->parentWidget()) {
        const auto found = std::find_if(edits_.begin(), edits_.end(),
                                        [widget](const Edit& edit) { return edit.edit == widget; });
        const int slot = found != edits_.end() ? found->slot : SlotAt(widget);
        if (InputOf(slot))
            return slot;
    }
    return -1;
}

Input* ChannelControl::GetInputFrom(QWidget* widget, TagList* tags)
{
    Input* input = InputOf(SlotUnder(widget));
    return input ? input : InputControl::GetInputFrom(widget, tags);
}

void ChannelControl::GetInputsAt(InputList& out, int x, int y, TagList*)
{
    if (Input* input = InputOf(SlotUnder(childAt(x, y)))) {
        out.push_back(input);
        return;
    }
    for (const Slot& slot : slots_) {
        if (slot.input)
            out.push_back(slot.input);
    }
}

// Life cycle -------------------------------------------------------------------------------------

ChannelControl::Writing::Writing(ChannelControl& control)
    : control_(Ref<ChannelControl>::Share(&control))
{
    ++control_->writing_;
    if (const MarloxDoc* document = control.GetDoc())
        together_.emplace(document->Undo());
}

ChannelControl::Writing::~Writing()
{
    --control_->writing_;
}

bool ChannelControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    if (!InputControl::Open(window, rect, tags))
        return false;
    for (Slot& slot : slots_) {
        if (slot.input)
            slot.value = slot.input->GetNumber(CurrentTime(), slot.value);
    }
    Build();
    return true;
}

/// Disabled parts look and answer as those of a wholly disabled control do.
void ChannelControl::EnableEditing(bool usable)
{
    InputControl::EnableEditing(!ControlDisabled());
    const bool onlyViewed = !usable && !ControlDisabled();
    if (std::exchange(onlyViewed_, onlyViewed) == onlyViewed)
        return;
    QWidget* focus = QApplication::focusWidget();
    if (onlyViewed && focus && isAncestorOf(focus) && !IsViewPart(focus))
        focus->clearFocus(); // else it would go from part to part
    for (QWidget* child : findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!child->isWindow()) // such as a menu
            child->setEnabled(!onlyViewed || IsViewPart(child));
    }
    for (const Edit& edit : edits_)
        ApplySettings(edit);
    UpdateDisplay(nullptr, nullptr); // some have states of their own
}

void ChannelControl::childEvent(QChildEvent* event)
{
    auto* child = event->polished() ? qobject_cast<QWidget*>(event->child()) : nullptr;
    if (child && onlyViewed_ && !child->isWindow() && !IsViewPart(child))
        child->setEnabled(false);
    InputControl::childEvent(event);
}

bool ChannelControl::Build()
{
    for (QWidget* child : findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        child->hide(); // unless the layout has a place for it
    if (!LoadLayout(LayoutName(), false, PlaceNamedChild, static_cast<QWidget*>(this)))
        return false; // the line that tells the fault has the place
    Populate();
    for (int slot = 0; slot < SlotCount(); ++slot) {
        const char* name = InputOf(slot) ? ExpressionPlace(slot) : nullptr;
        if (LayoutObj* place = name ? FindLayoutObj(name) : nullptr)
            CreateExpressionEdit(int(IndexOf(slot)), place, nullptr);
    }
    Show();
    return true;
}

void ChannelControl::Rebuild()
{
    if (!IsOpen())
        return;
    EndGesture();
    const QWidget* focus = QApplication::focusWidget();
    const QString focused = focus && isAncestorOf(focus) ? focus->objectName() : QString();
    Depopulate();
    RemoveLayout();
    if (Build()) {
        for (Input* input : InputList(Inputs()))
            ExpressionChanged(input, nullptr); // which opens the lines of those that have one
    }
    RestoreFocus(focused);
    RecalcControlSize();
    update();
}

/// What is hidden meanwhile loses the keyboard: the widget that has its name gets it back.
void ChannelControl::RestoreFocus(const QString& name)
{
    auto* widget = name.isEmpty() ? nullptr : findChild<QWidget*>(name);
    if (widget && widget->isVisibleTo(this))
        widget->setFocus(Qt::OtherFocusReason);
}

void ChannelControl::Close(TagList* tags)
{
    for (const Edit& edit : std::vector<Edit>(edits_))
        edit.edit->CancelDrag();
    Depopulate();
    InputControl::Close(tags);
}

// Values in --------------------------------------------------------------------------------------

void ChannelControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    const int slot = SlotHolding(input);
    if (value && slot >= 0) {
        Slot& held = slots_[std::size_t(slot)];
        const double v = NumberOf(value, held.value);
        if (HasValueChanged(held.settings.IsWhole(), v, held.value, held.settings.Tolerance()))
            held.value = v;
    }
    InputControl::NotifyChanged(input, value, tags);
}

void ChannelControl::UpdateDisplay(Input* input, TagList* tags)
{
    if (!IsOpen() || IsWriting())
        return;
    // In the middle of a change the values may make something that never was.
    const auto showAll = [this] { UpdateDisplay(nullptr, nullptr); };
    if (const MarloxDoc* document = GetDoc();
        document && BulkChange::Postpone(document->Undo(), *this, showAll))
        return;
    if (Fault().isEmpty()) {
        const int slot = SlotHolding(input);
        if (slot >= 0)
            ShowSlot(slot);
        else
            Show();
    }
    InputControl::UpdateDisplay(input, tags);
}

void ChannelControl::OnDisconnect(Input* input, TagList* tags)
{
    // What came through the connection stays, as a plain number.
    if (const int slot = SlotHolding(input); slot >= 0)
        input->SetValue(*AutoNumber(new Number(ValueOf(slot))), TimeNone, Input::ReplaceAll);
    InputControl::OnDisconnect(input, tags);
}

QString ChannelControl::CommonName(const InputList& inputs)
{
    QString common = inputs.empty() ? QString() : inputs.front()->GetName();
    const auto isWhole = [&common](const Input* input) {
        const QString name = input->GetName();
        return name.size() == common.size() || name.at(common.size()).isSpace();
    };
    for (const Input* input : inputs) {
        while (!input->GetName().startsWith(common))
            common.chop(1);
    }
    if (!std::all_of(inputs.begin(), inputs.end(), isWhole))
        common.truncate(common.lastIndexOf(QLatin1Char(' ')) + 1);
    return common.trimmed();
}

} // namespace Marlox
