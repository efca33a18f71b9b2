#pragma once

#include "system/base/Types.h"

#include <functional>
#include <memory>
#include <vector>

#include <QString>
#include <QUndoStack>

namespace Marlox {

/// One reversible change. It has been done already when it is handed to the history.
class MARLOXSYSTEM_EXPORT UndoStep {
public:
    virtual ~UndoStep();
    virtual void Undo() = 0;
    virtual void Redo() = 0;
    /// Takes a later step of the same thing into this one; false if it is something else. Keeps a
    /// drag of a thousand moves one step.
    virtual bool Absorb(UndoStep& later);
    /// Whether undo would change nothing (absorbed steps that led back to the start).
    virtual bool IsNothing() const { return false; }
};

/// The undo history of a document, on QUndoStack. Groups nest; the outermost one becomes the entry,
/// with its text (the first non-empty one, outermost first, then the text of the first step). A
/// group that changed nothing leaves no entry and leaves what could be redone.
class MARLOXSYSTEM_EXPORT UndoHistory {
public:
    UndoHistory();
    ~UndoHistory();

    /// Opens a group within those that are open, to be ended by End.
    void Begin(const QString& text);
    /// Ends the innermost group that Begin opened; with groups of gestures open inside it, it stays
    /// until they have ended. keep = false undoes what the group did, theirs too, and leaves no
    /// entry. Without an open group (Undo ended it) this does nothing.
    void End(bool keep = true);
    /// The same for gestures, which need not end in the reverse order of their starts: opens a
    /// group and returns its number.
    u64 BeginGroup(const QString& text);
    /// Ends the group of that number, or lets it end after those inside it. Does nothing once it
    /// has ended. keep = false ends those inside it, too, and undoes what they and it did.
    void EndGroup(u64 group, bool keep = true);
    bool IsOpen(u64 group) const;
    /// Ends the groups of all gestures: what comes next is no part of them.
    void EndGestures();
    /// A gesture shows a change that it will make when it ends, if at all: Undo calls `giveUp` in
    /// place of undoing an entry. Until Unhold of the same `owner`.
    void Hold(const void* owner, const QString& text, std::function<void()> giveUp);
    void Unhold(const void* owner);
    int Depth() const { return int(open_.size()); }
    /// Hands over a change that was just made. Outside a group it is an entry of its own, named
    /// `text`; inside, an earlier step of the innermost group may absorb it. While the history
    /// itself undoes or redoes, steps are dropped.
    void Push(std::unique_ptr<UndoStep> step, const QString& text);

    bool CanUndo() const;
    bool CanRedo() const;
    // Of what Undo and Redo would do now: an open group that changed something comes first.
    QString UndoText() const;
    QString RedoText() const;
    void Undo(); // ends open groups first; gives up what is held back, and nothing else
    void Redo();
    /// Forgets all entries and open groups. What was not saved stays so: the stack is not clean
    /// after it unless it was before.
    void Clear();
    /// Whether steps of open groups have changed something that is no entry yet.
    bool HasOpenChanges() const;
    /// Whether an undo or redo is under way.
    bool IsReplaying() const { return replaying_; }
    /// For views and for signals; entries are only pushed through this class.
    QUndoStack& Stack() { return stack_; }

private:
    class Entry;
    void RollBack(std::size_t mark);
    void MergeFrom(std::size_t mark);
    void Collect(std::unique_ptr<UndoStep> step);
    void EndInnermost(bool keep);
    void EndThoseOver();
    void CloseAll();
    void Replay(void (QUndoStack::*way)());

    struct Held {
        const void* owner;
        QString text;
        std::function<void()> giveUp;
    };
    std::vector<Held> held_;
    QUndoStack stack_;
    struct Group {
        u64 number;
        QString text;
        std::size_t mark;   // number of steps collected when it began
        bool ofGesture;     // ended by its number
        bool ended = false; // as soon as those inside it have
    };
    std::vector<Group> open_; // innermost last
    u64 groups_ = 0;          // begun so far
    std::vector<std::unique_ptr<UndoStep>> collected_;
    QString stepText_; // of the first step collected
    bool replaying_ = false;
};

} // namespace Marlox
