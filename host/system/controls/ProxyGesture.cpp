#include "system/controls/ProxyGesture.h"

#include "system/controls/InputControl.h"
#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <utility>

namespace Marlox {

ProxyGesture::ProxyGesture() = default;

ProxyGesture::~ProxyGesture()
{
    End();
}

void ProxyGesture::Begin(MarloxDoc* document, Operator* tool, const std::vector<Input*>& inputs)
{
    const bool changesPicture = std::any_of(inputs.begin(), inputs.end(), [](const Input* input) {
        return !input->GetAttrB(IA_Passive);
    });
    if (tool_ || !document || !tool || !changesPicture)
        return;
    document_ = document;
    tool_ = Ref<Operator>::Share(tool);
    document->SetAutoProxy(tool, true);
}

void ProxyGesture::Begin(const InputControl& control)
{
    Begin(control.GetDoc(), control.Owner(), control.Inputs());
}

void ProxyGesture::End(bool render)
{
    const Ref<Operator> tool = std::exchange(tool_, nullptr);
    const QPointer<MarloxDoc> document = std::exchange(document_, nullptr);
    if (!tool || !document)
        return;
    document->SetAutoProxy(tool.Get(), false);
    if (render && document)
        document->SyncRender();
}

} // namespace Marlox
