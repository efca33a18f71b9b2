#pragma once

#include "system/controls/InputControl.h"

namespace Marlox {

/// One edit, one undo entry: opens the control's undo group for the input with a control index and
/// closes it at the end of the scope, unless a gesture has it open already and will close it
/// itself.
class UndoScope {
public:
    UndoScope(InputControl& control, unsigned int index)
        : control_(Ref<InputControl>::Share(&control)), outermost_(control.UndoDepth() == 0)
    {
        control.SetUndo(index, nullptr);
    }
    ~UndoScope()
    {
        if (outermost_)
            control_->ResetUndo(nullptr);
    }
    UndoScope(const UndoScope&) = delete;
    UndoScope& operator=(const UndoScope&) = delete;

private:
    Ref<InputControl> control_; // an edit may close the page it was made in
    bool outermost_;
};

} // namespace Marlox
