#include "system/controls/UndoGesture.h"

#include "system/document/MarloxDoc.h"

namespace Marlox {

UndoGesture::UndoGesture() = default;

UndoGesture::~UndoGesture()
{
    End();
}

void UndoGesture::Begin(MarloxDoc* document, const QString& text)
{
    if (HasGroup() || !document)
        return;
    group_ = document->Undo().BeginGroup(text);
    document_ = document;
    open_ = true;
}

void UndoGesture::End(bool keep)
{
    const bool closes = HasGroup();
    open_ = false;
    if (closes)
        document_->Undo().EndGroup(group_, keep);
    document_ = nullptr;
}

bool UndoGesture::HasGroup() const
{
    // Undo and clearing the document close groups by themselves.
    return open_ && document_ && document_->Undo().IsOpen(group_);
}

} // namespace Marlox
