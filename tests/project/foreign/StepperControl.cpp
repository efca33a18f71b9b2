#include "StepperControl.h"

#include <script/FFI.h>
#include <system/base/HostTags.h>

#include <QLabel>
#include <QPushButton>

using namespace Marlox;

namespace Foreign {

namespace {

constexpr u32 STPD_Step = 0x20050000;

} // namespace

StepperControl::StepperControl(const Registry* record, const ScriptVal& creator,
                               const TagList& attributes)
    : InputControl(record, creator, attributes), label_(new QLabel(this)),
      down_(new QPushButton("-", this)), up_(new QPushButton("+", this)),
      step_(attributes.GetDouble(STPD_Step, 1.0))
{
    connect(down_, &QPushButton::clicked, this, &StepperControl::OnDown);
    connect(up_, &QPushButton::clicked, this, &StepperControl::OnUp);
}

bool StepperControl::CopyAttr(u64 tag, void* out)
{
    if (tag != STPD_Step)
        return InputControl::CopyAttr(tag, out);
    *static_cast<double*>(out) = step_;
    return true;
}

bool StepperControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    step_ = tags.GetDouble(STPD_Step, step_);
    return InputControl::SetAttrsTagList(input, tags);
}

bool StepperControl::AddInput(Input* input, TagList* tags)
{
    if (!InputControl::AddInput(input, tags))
        return false;
    value_ = input->GetNumber(CurrentTime());
    return true;
}

bool StepperControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    if (!InputControl::Open(window, rect, tags))
        return false;
    ScriptVal layout = ScriptVal::MakeTable();
    layout.Append("HGroup");
    layout.Set("Spacing", 8);
    ScriptVal name = ScriptVal::MakeTable();
    name.Append("Label");
    name.Set("Text", Inputs().front()->GetName().toStdString());
    name.Set("MinWidth", 110);
    layout.Append(name);
    for (const char* name : {"down", "label", "up"}) {
        ScriptVal item = ScriptVal::MakeTable();
        item.Append("Item");
        item.Set("Name", name);
        item.Set("MinHeight", 24);
        item.Set("Weight", name == std::string("label") ? 1 : 0);
        layout.Append(item);
    }
    if (!CreateLayout(layout, false, nullptr, nullptr))
        return false;
    FindLayoutObj("down")->SetWidget(down_);
    FindLayoutObj("label")->SetWidget(label_);
    FindLayoutObj("up")->SetWidget(up_);
    UpdateDisplay(nullptr, nullptr);
    return true;
}

void StepperControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    value_ = NumberOf(value, value_);
    InputControl::NotifyChanged(input, value, tags);
}

void StepperControl::UpdateDisplay(Input* input, TagList* tags)
{
    label_->setText(QString::number(value_));
    InputControl::UpdateDisplay(input, tags);
}

void StepperControl::OnDown()
{
    Step(-step_);
}

void StepperControl::OnUp()
{
    Step(step_);
}

void StepperControl::Step(double by)
{
    AutoNumber number(new Number(value_ + by));
    SetUndo(0, nullptr);
    SetInputs(number.Get(), CurrentTime(), 0, true, nullptr);
    ResetUndo(nullptr);
}

// What the host is told, in this order: the record, then what scripts need.
namespace {

constexpr TagMapEntry tagNames[] = {{"STPD_Step", STPD_Step}, {}};

Object* create(const Registry* record, const ScriptVal& creator, const TagList& attributes)
{
    return new StepperControl(record, creator, attributes);
}

bool mapTags(const MxID& call, bool toScript, ScriptVal& values, TagList& tags)
{
    const bool known = call == MxID("Create") || call == MxID("GetAttrs") ||
                       call == MxID("SetAttrs") || call == MxID("UserControl");
    return known && scriptval_maptags(tagNames, toScript, values, tags);
}

constexpr ScriptInfo info{1, "StepperControl", "", "", nullptr};
constexpr TagPair tags[] = {{REG_RegInit, &Object::RegInit},
                            {REG_RegCleanup, &Object::RegCleanup},
                            {REG_Kind, u32(ClassKind::InputControl)},
                            {REG_Parent, &InputControl::ClassID},
                            {REG_ScriptInfo, &info},
                            {REG_Create, &create},
                            {REG_TagMapper, &mapTags},
                            {}};

const Registry record("StepperControl", tags);
FFIType type("StepperControl", "StepperControl", "InputControl", -1, 0, nullptr);
const FFITagMap creation(&type, "Create", tagNames, CreationMap_InputControl);

} // namespace

} // namespace Foreign
