#include "system/document/UndoHistory.h"

#include "system/document/BulkChange.h"

#include <algorithm>
#include <utility>

#include <QUndoCommand>

namespace Marlox {

UndoStep::~UndoStep() = default;

bool UndoStep::Absorb(UndoStep&)
{
    return false;
}

/// One entry of the stack: the steps of an outermost group, in the order they were made.
class UndoHistory::Entry final : public QUndoCommand {
public:
    Entry(const QString& text, std::vector<std::unique_ptr<UndoStep>> steps)
        : QUndoCommand(text), steps_(std::move(steps))
    {
    }
    void undo() override
    {
        std::for_each(steps_.rbegin(), steps_.rend(), [](const auto& step) { step->Undo(); });
    }
    void redo() override
    {
        // The stack calls this once while it takes the entry, whose steps are done already.
        if (std::exchange(taken_, true))
            std::for_each(steps_.begin(), steps_.end(), [](const auto& step) { step->Redo(); });
    }

private:
    std::vector<std::unique_ptr<UndoStep>> steps_;
    bool taken_ = false;
};

UndoHistory::UndoHistory() = default;
UndoHistory::~UndoHistory() = default;

void UndoHistory::Begin(const QString& text)
{
    open_.push_back({++groups_, text, collected_.size(), false});
}

void UndoHistory::End(bool keep)
{
    const auto group = std::find_if(open_.rbegin(), open_.rend(), [](const Group& open) {
        return !open.ofGesture && !open.ended;
    });
    if (group == open_.rend())
        return;
    EndGroup(group->number, keep);
}

u64 UndoHistory::BeginGroup(const QString& text)
{
    open_.push_back({++groups_, text, collected_.size(), true});
    return groups_;
}

void UndoHistory::EndGroup(u64 group, bool keep)
{
    if (!keep && IsOpen(group)) {
        const BulkChange bulk(*this);
        while (open_.back().number != group)
            EndInnermost(true);
        EndInnermost(false);
    }
    for (Group& open : open_)
        open.ended = open.ended || open.number == group;
    EndThoseOver();
}

void UndoHistory::EndGestures()
{
    for (Group& open : open_)
        open.ended = open.ended || open.ofGesture;
    EndThoseOver();
}

void UndoHistory::EndThoseOver()
{
    while (!open_.empty() && open_.back().ended)
        EndInnermost(true);
}

bool UndoHistory::IsOpen(u64 group) const
{
    return std::any_of(open_.begin(), open_.end(),
                       [group](const Group& open) { return open.number == group && !open.ended; });
}

void UndoHistory::EndInnermost(bool keep)
{
    const std::size_t mark = open_.back().mark;
    if (!keep)
        RollBack(mark);
    const QString text = open_.back().text;
    open_.pop_back();
    if (!open_.empty()) {
        if (open_.back().text.isEmpty() && collected_.size() > mark)
            open_.back().text = text;
        MergeFrom(mark);
        return;
    }
    std::erase_if(collected_, [](const auto& step) { return step->IsNothing(); });
    const QString fallback = std::exchange(stepText_, {});
    if (!collected_.empty())
        stack_.push(new Entry(text.isEmpty() ? fallback : text, std::exchange(collected_, {})));
}

/// The steps of a nested group that was kept belong to the group around it: a drag that nests a
/// group in each of a thousand moves stays one step.
void UndoHistory::MergeFrom(std::size_t mark)
{
    auto nested = std::vector<std::unique_ptr<UndoStep>>(
        std::make_move_iterator(collected_.begin() + std::ptrdiff_t(mark)),
        std::make_move_iterator(collected_.end()));
    collected_.resize(mark);
    for (auto& step : nested)
        Collect(std::move(step));
}

void UndoHistory::Collect(std::unique_ptr<UndoStep> step)
{
    // Only steps of the innermost group absorb: it may still be rolled back by itself.
    for (std::size_t i = collected_.size(); i > open_.back().mark; --i) {
        if (collected_[i - 1]->Absorb(*step))
            return;
    }
    collected_.push_back(std::move(step));
}

void UndoHistory::RollBack(std::size_t mark)
{
    const bool before = std::exchange(replaying_, true);
    while (collected_.size() > mark) {
        const std::unique_ptr<UndoStep> step = std::move(collected_.back());
        collected_.pop_back();
        step->Undo();
    }
    replaying_ = before;
}

void UndoHistory::Push(std::unique_ptr<UndoStep> step, const QString& text)
{
    if (replaying_)
        return;
    if (open_.empty()) {
        std::vector<std::unique_ptr<UndoStep>> steps;
        if (step->IsNothing())
            return;
        steps.push_back(std::move(step));
        stack_.push(new Entry(text, std::move(steps)));
        return;
    }
    if (collected_.empty())
        stepText_ = text;
    Collect(std::move(step));
}

bool UndoHistory::CanUndo() const
{
    return stack_.canUndo() || HasOpenChanges() || !held_.empty();
}

bool UndoHistory::CanRedo() const
{
    return stack_.canRedo() && !HasOpenChanges();
}

bool UndoHistory::HasOpenChanges() const
{
    return std::any_of(collected_.begin(), collected_.end(),
                       [](const auto& step) { return !step->IsNothing(); });
}

QString UndoHistory::UndoText() const
{
    if (!held_.empty())
        return held_.back().text;
    if (!HasOpenChanges())
        return stack_.undoText();
    const auto named = std::find_if(open_.begin(), open_.end(),
                                    [](const Group& group) { return !group.text.isEmpty(); });
    return named != open_.end() ? named->text : stepText_;
}

QString UndoHistory::RedoText() const
{
    return CanRedo() ? stack_.redoText() : QString();
}

void UndoHistory::CloseAll()
{
    while (!open_.empty())
        EndInnermost(true);
}

void UndoHistory::Hold(const void* owner, const QString& text, std::function<void()> giveUp)
{
    Unhold(owner);
    held_.push_back({owner, text, std::move(giveUp)});
}

void UndoHistory::Unhold(const void* owner)
{
    std::erase_if(held_, [owner](const Held& held) { return held.owner == owner; });
}

void UndoHistory::Undo()
{
    if (!held_.empty()) {
        const auto giveUp = std::move(held_.back().giveUp);
        held_.pop_back();
        return giveUp();
    }
    Replay(&QUndoStack::undo);
}

void UndoHistory::Redo()
{
    Replay(&QUndoStack::redo);
}

void UndoHistory::Replay(void (QUndoStack::*way)())
{
    if (replaying_)
        return; // a listener of a step asked; the stack is in the middle of something
    CloseAll();
    const BulkChange bulk(*this); // an entry may have very many steps
    replaying_ = true;
    (stack_.*way)();
    replaying_ = false;
}

void UndoHistory::Clear()
{
    open_.clear();
    const bool clean = stack_.isClean() && !HasOpenChanges();
    collected_.clear();
    stepText_.clear();
    stack_.clear();
    if (!clean)
        stack_.resetClean();
}

} // namespace Marlox
