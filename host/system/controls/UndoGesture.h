#pragma once

#include "system/base/Types.h"

#include <QPointer>
#include <QString>

namespace Marlox {

class MarloxDoc;

/// The undo group of one gesture on a control: opened at most once, closed exactly once, whatever
/// happens to the document in between. Undo in the middle of a gesture closes the group; the next
/// Begin then opens one for the rest of the gesture.
class MARLOXSYSTEM_EXPORT UndoGesture {
public:
    UndoGesture();
    ~UndoGesture(); // ends it
    UndoGesture(const UndoGesture&) = delete;
    UndoGesture& operator=(const UndoGesture&) = delete;

    /// Opens the group named `text`; does nothing while it is open, or without a document.
    void Begin(MarloxDoc* document, const QString& text);
    /// keep = false undoes what the group did, and leaves no entry.
    void End(bool keep = true);
    /// Whether a gesture is under way.
    bool IsOpen() const { return open_; }

private:
    bool HasGroup() const;

    QPointer<MarloxDoc> document_;
    u64 group_ = 0;
    bool open_ = false;
};

} // namespace Marlox
