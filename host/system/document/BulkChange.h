#pragma once

#include "system/base/Types.h"

#include <functional>
#include <vector>

#include <QPointer>

namespace Marlox {

class UndoHistory;

/// While one lives, what follows from each single change of a document (expressions told that
/// something changed, overlays made anew) is done once, when it goes. Undo, redo and groups that
/// are rolled back have one; so does whoever adds many tools, sets the parts of a colour, or shows
/// another time. Within another of the same history it does nothing: the outermost one counts.
/// Stack objects of the user-interface thread, ended in the reverse order of their starts.
class MARLOXSYSTEM_EXPORT BulkChange {
public:
    explicit BulkChange(const UndoHistory& history);
    ~BulkChange();
    BulkChange(const BulkChange&) = delete;
    BulkChange& operator=(const BulkChange&) = delete;

    /// Lets `action` wait for the end of the bulk that is under way, once for each `owner`, in the
    /// order in which they first asked; not if the owner goes before. False: there is no bulk.
    static bool Postpone(const UndoHistory& history, QObject& owner, std::function<void()> action);

private:
    struct Postponed {
        QPointer<QObject> owner;
        std::function<void()> action;
    };
    static BulkChange* Of(const UndoHistory& history);

    const UndoHistory& history_;
    std::vector<Postponed> postponed_;
};

} // namespace Marlox
