#include "workbench/scripting/ScriptLog.h"

#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "workbench/scripting/Bindings.h"

namespace Marlox {

ScriptLog::ScriptLog(MarloxDoc& document, ControlWnd& page)
{
    connect(&page, &ControlWnd::ValueWritten, this, &ScriptLog::OnValueWritten);
    QUndoStack& stack = document.Undo().Stack();
    connect(&stack, &QUndoStack::indexChanged, this, [this, &document, &stack](int index) {
        if (index > 0 && !document.Undo().IsReplaying())
            undo_.append(stack.text(index - 1));
    });
}

void ScriptLog::OnValueWritten(Input* input, Parameter* value, double time, bool final)
{
    ScriptVal entry = ScriptVal::MakeTable();
    entry.Set("input", input->GetID().c_str());
    entry.Set("tool", input->Owner().GetName().toStdString());
    entry.Set("value", ValueForScript(value));
    entry.Set("time", time);
    entry.Set("final", final);
    values_.push_back(std::move(entry));
}

ScriptVal ScriptLog::Values() const
{
    ScriptVal list = ScriptVal::MakeTable();
    for (const ScriptVal& entry : values_)
        list.Append(entry);
    return list;
}

void ScriptLog::Clear()
{
    values_.clear();
    undo_.clear();
}

} // namespace Marlox
