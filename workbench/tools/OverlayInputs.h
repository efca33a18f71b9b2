#pragma once

#include "system/base/HostClassIds.h"
#include "system/document/Operator.h"
#include "workbench/tools/OverlayTags.h"

#include <QPointF>

namespace Marlox {

/// What a point input needs: normalised image coordinates, y up.
struct PointSpec {
    const char* id;
    const char* name;
    double x; // default
    double y;
    const char* help; // one sentence for the tooltip
};

/// Adds a point input shown as two numbers; `overlay` asks for its mark in the viewer.
Input& AddPoint(Operator& tool, const PointSpec& spec, const TagList& overlay = {});

/// The point of the tool's input at `time`.
QPointF PointAt(const Operator& tool, const char* id, double time);

} // namespace Marlox
