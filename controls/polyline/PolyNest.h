#pragma once

#include "system/base/Object.h"

#include <QPointer>

namespace Marlox {

class MarloxDoc;
class PolyLineControl;

/// One undo entry of the control for the length of a scope, unless a gesture has one open.
class PolyNest {
public:
    PolyNest(PolyLineControl& control, const char* text);
    ~PolyNest();
    PolyNest(const PolyNest&) = delete;
    PolyNest& operator=(const PolyNest&) = delete;

private:
    Ref<PolyLineControl> control_; // an edit may remove the overlay
    QPointer<MarloxDoc> document_;
    int nest_ = 0;
};

} // namespace Marlox
