#include "system/viewer/OverlayState.h"

#include "system/document/MarloxDoc.h"
#include "system/viewer/PreviewControl.h"

#include <vector>

namespace Marlox {

namespace {

class OverlayStateStep final : public UndoStep {
public:
    OverlayStateStep(PreviewControl& overlay, const ScriptVal& before, const ScriptVal& after)
        : input_(overlay.Inputs().front()), owner_(Ref<Operator>::Share(&input_->Owner())),
          overlay_(overlay.GetRegistry() ? overlay.GetRegistry()->ClassID() : MxID()),
          view_(overlay.View()), before_(before.Clone()), after_(after.Clone())
    {
    }
    void Undo() override { Restore(before_); }
    void Redo() override { Restore(after_); }

private:
    void Restore(const ScriptVal& state)
    {
        std::vector<Object*> controls;
        {
            const ReadLock lock(*input_);
            controls = input_->Controls();
        }
        for (Object* const control : controls) {
            auto* const overlay = dynamic_cast<PreviewControl*>(control);
            if (overlay && overlay->View() == view_ && overlay->GetRegistry() &&
                overlay->GetRegistry()->ClassID() == overlay_)
                overlay->RestoreState(state);
        }
    }

    Input* input_;
    Ref<Operator> owner_;     // keeps the input
    MxID overlay_;            // class id
    const PreviewInfo* view_; // only compared: it may be gone
    ScriptVal before_;
    ScriptVal after_;
};

} // namespace

void PushOverlayState(PreviewControl& overlay, const QString& text, const ScriptVal& before,
                      const ScriptVal& after)
{
    MarloxDoc* const document = overlay.GetDoc();
    if (document && !overlay.Inputs().empty())
        document->Undo().Push(std::make_unique<OverlayStateStep>(overlay, before, after), text);
}

} // namespace Marlox
