#pragma once

#include "system/base/Ref.h"
#include "system/document/Operator.h"

#include <vector>

#include <QPointer>

namespace Marlox {

class Input;
class InputControl;
class MarloxDoc;

/// Automatic proxy rendering for one gesture on a tool, beside its UndoGesture: on at most once
/// at a time, and each time switched off once, whatever happens to document and tool in between.
class MARLOXSYSTEM_EXPORT ProxyGesture {
public:
    ProxyGesture();
    ~ProxyGesture(); // ends it
    ProxyGesture(const ProxyGesture&) = delete;
    ProxyGesture& operator=(const ProxyGesture&) = delete;

    /// Switches it on for `tool`, of which `inputs` are edited; does nothing while it is on, or
    /// without a document, a tool or an input that is not passive, for then nothing is rendered.
    void Begin(MarloxDoc* document, Operator* tool, const std::vector<Input*>& inputs);
    void Begin(const InputControl& control); // the same for its tool and inputs
    /// Switches it off and has the picture rendered at full resolution; `render` = false: the
    /// gesture changed nothing that it would show.
    void End(bool render = true);
    bool IsOn() const { return bool(tool_); }

private:
    QPointer<MarloxDoc> document_;
    Ref<Operator> tool_;
};

} // namespace Marlox
