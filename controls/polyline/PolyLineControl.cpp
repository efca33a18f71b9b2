#include "controls/polyline/PolyLineControl.h"

namespace Marlox {

std::size_t PolyLineControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct PolyLineFacts : GenericOverlayFacts {
    using Class = PolyLineControl;
    static constexpr char name[] = "PolyLineControl";
    static constexpr RecordFacts records[] = {{"PolylineControl", "PolylineControl"}};
    struct Resources {
        ResDIB currentTimeOnly[2]{{"Icons.Polyline.CurrentTimeOnly.1", 0},
                                  {"Icons.Polyline.CurrentTimeOnly.2", 0}};
        ResDIB deleteIcon[2]{{"Icons.Polyline.Delete.1", 0}, {"Icons.Polyline.Delete.2", 0}};
        ResDIB drawInsertAndModify[2]{{"Icons.Polyline.DrawInsertandModify.1", 0},
                                      {"Icons.Polyline.DrawInsertandModify.2", 0}};
        ResDIB lock[2]{{"Icons.Polyline.Lock.1", 0}, {"Icons.Polyline.Lock.2", 0}};
        ResDIB makeDoublePolyline[2]{{"Icons.Polyline.MakeDoublePolyline.1", 0},
                                     {"Icons.Polyline.MakeDoublePolyline.2", 0}};
        ResDIB multiTimeEdit[2]{{"Icons.Polyline.MultiTimeEdit.1", 0},
                                {"Icons.Polyline.MultiTimeEdit.2", 0}};
        ResDIB onionSkin[2]{{"Icons.Polyline.OnionSkin.1", 0}, {"Icons.Polyline.OnionSkin.2", 0}};
    };
};

} // namespace

template <>
ControlClass<PolyLineFacts> controlClass<PolyLineFacts>{};
MARLOX_SCRIPT_CASTS(PolyLineControl)

} // namespace Marlox
