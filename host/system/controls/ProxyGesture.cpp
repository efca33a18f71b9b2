#include "system/controls/ProxyGesture.h"

#include "system/controls/InputControl.h"
#include "system/document/MarloxDoc.h"

#include <utility>

namespace Marlox {

ProxyGesture::ProxyGesture() = default;

ProxyGesture::~ProxyGesture()
{
    End();
}

void ProxyGesture::Begin(MarloxDoc* document, Operator* tool)
{
    if (tool_ || !document || !tool)
        return;
    document_ = document;
    tool_ = Ref<Operator>::Share(tool);
    document->SetAutoProxy(tool, true);
}

void ProxyGesture::Begin(const InputControl& control)
{
    if (!control.IsAllPassive(nullptr))
        Begin(control.GetDoc(), control.Owner());
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
