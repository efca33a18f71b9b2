#pragma once

#include "system/base/Ref.h"
#include "system/document/Operator.h"

#include <QPointer>

namespace Marlox {

class InputControl;
class MarloxDoc;

/// Automatic proxy rendering for one gesture on a tool, beside its UndoGesture: switched on at most
/// once and off exactly once, whatever happens to document and tool in between.
class MARLOXSYSTEM_EXPORT ProxyGesture {
public:
    ProxyGesture();
    ~ProxyGesture(); // ends it
    ProxyGesture(const ProxyGesture&) = delete;
    ProxyGesture& operator=(const ProxyGesture&) = delete;

    /// Switches it on for `tool`; does nothing while it is on, or without a document or a tool.
    void Begin(MarloxDoc* document, Operator* tool);
    /// The same for the tool of a control. Passive inputs alone have nothing rendered: nothing.
    void Begin(const InputControl& control);
    /// Switches it off and has the picture rendered at full resolution; `render` = false: the
    /// gesture changed nothing that it would show.
    void End(bool render = true);
    bool IsOn() const { return bool(tool_); }

private:
    QPointer<MarloxDoc> document_;
    Ref<Operator> tool_;
};

} // namespace Marlox
