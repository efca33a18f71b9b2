#include "controls/polyline/PolyNest.h"

#include "controls/polyline/PolyLineControl.h"
#include "system/document/MarloxDoc.h"

namespace Marlox {

PolyNest::PolyNest(PolyLineControl& control, const char* text)
    : control_(Ref<PolyLineControl>::Share(&control)), document_(control.GetDoc())
{
    if (document_)
        nest_ = document_->StartUndoNest(text);
}

PolyNest::~PolyNest()
{
    if (document_)
        document_->EndUndoNest(nest_);
}

} // namespace Marlox
