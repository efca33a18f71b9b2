#include "controls/inspector/CheckBoxControl.h"

namespace Marlox {

std::size_t CheckBoxControl::SizeOf() const
{
    return sizeof(*this);
}

std::unique_ptr<GenericEditor> CheckBoxControl::MakeEditor(Input& input)
{
    return input.GetDataType() == MxID(CLSID_DataType_Number)
               ? GenericEditor::MakeCheckBox(*this, input)
               : GenericInputControl::MakeEditor(input);
}

namespace {

struct CheckBoxFacts : GenericInspectorFacts {
    using Class = CheckBoxControl;
    static constexpr char name[] = "CheckBoxControl";
    static constexpr RecordFacts records[] = {{CLSID_InputControl_Checkbox, "CheckboxControl"}};
    struct Resources {
        ResData layout{"Controls.CheckBox.Layout"};
    };
};

} // namespace

template <>
ControlClass<CheckBoxFacts> controlClass<CheckBoxFacts>{};
MARLOX_SCRIPT_CASTS(CheckBoxControl)

} // namespace Marlox
