#pragma once

#include "system/values/Input.h"

#include <QWidget>

namespace Marlox {

class GenericInputControl;
class TimeCodeEdit;

/// The widgets with which a GenericInputControl shows and edits one input.
class GenericEditor : public QWidget {
public:
    GenericEditor(GenericInputControl& control, Input& input);

    /// Fits the widgets to the attributes of the input: bounds, whole numbers, times.
    virtual void ReadAttributes() {}
    virtual void ShowValue(const Parameter& value) = 0;

    /// The editor for the input's kind of value; null for kinds that have none.
    static GenericEditor* Make(GenericInputControl& control, Input& input);
    /// A check box for a number: 0 is off, anything else on.
    static GenericEditor* MakeCheckBox(GenericInputControl& control, Input& input);

protected:
    /// Appends a widget named `name` (so that scripts find it) to the row.
    void Append(QWidget* widget, const char* name);
    void Send(const Ref<Parameter>& value);
    /// A flag of the control, else of the input's own attributes.
    bool Flag(u32 tag) const;

    GenericInputControl& control_;
    Input& input_;
};

} // namespace Marlox
