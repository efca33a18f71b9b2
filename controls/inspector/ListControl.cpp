#include "controls/inspector/ListControl.h"

namespace Marlox {

std::size_t ListControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ListFacts : GenericInspectorFacts {
    using Class = ListControl;
    static constexpr char name[] = "ListControl";
    static constexpr RecordFacts records[] = {
        {CLSID_InputControl_List, "ListControl"},
        {CLSID_InputControl_ListID, "ListIDControl", CLSID_InputControl_List}};
    struct Resources {
        ResColor selectedItemColour{"System.SelectedItemColour", {255, 255, 255}, {24, 24, 24}};
        ResColor textColour{"System.TextColour", {146, 146, 146}};
        ResData layout{"Controls.List.Layout"};
        ResData data{"Controls.List.Data"};
    };
    struct ScriptVals {
        ScriptVal data;
    };
};

} // namespace

template <>
ControlClass<ListFacts> controlClass<ListFacts>{};
MARLOX_SCRIPT_CASTS(ListControl)

} // namespace Marlox
