#pragma once

#include <set>

namespace Marlox {

class MarloxDoc;
class Operator;

/// Whether some tool gets its own image, directly or through others.
bool FlowsInLoop(const MarloxDoc& document);
/// `upstream` and all tools that get their image, directly or through others, from it.
std::set<const Operator*> ToolsFedBy(const MarloxDoc& document, const Operator& upstream);
/// Connects the inputs that `tool` feeds to what feeds it, as undo steps, before it goes.
void BypassConnections(const MarloxDoc& document, const Operator& tool);

} // namespace Marlox
