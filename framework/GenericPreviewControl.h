#pragma once

#include "framework/ControlClass.h"

#include <vector>

namespace Marlox {

/// Base of the viewer overlays that have no behaviour of their own yet: holds the values of its
/// inputs and forwards what is set; draws nothing and takes no press. `Base` is the host's
/// PreviewControl or OverlayControl.
template <class Base>
class GenericOverlay : public Base {
public:
    GenericOverlay(const Registry* record, const ScriptVal& creator, const TagList& attributes);

    /// The last value of the input with this overlay index; null if there is no such input.
    Ref<Parameter> HeldValue(unsigned int index) const;

    bool AddInput(Input* input, TagList* tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;

private:
    struct Held {
        Input* input;
        Ref<Parameter> value;
    };
    std::vector<Held> held_;
};

extern template class GenericOverlay<PreviewControl>;
extern template class GenericOverlay<OverlayControl>;
using GenericPreviewControl = GenericOverlay<PreviewControl>;

/// As GenericInspectorFacts, for overlays.
struct GenericOverlayFacts : OverlayFacts {
    static const ScriptOperation operations[];
};

} // namespace Marlox
