#include "system/document/BulkChange.h"

#include <algorithm>

namespace Marlox {

namespace {

/// Outermost first.
std::vector<BulkChange*>& underWay()
{
    static std::vector<BulkChange*> bulks;
    return bulks;
}

} // namespace

BulkChange::BulkChange(const UndoHistory& history) : history_(history)
{
    underWay().push_back(this);
}

BulkChange::~BulkChange()
{
    std::erase(underWay(), this); // what is done now is no part of it
    for (const Postponed& each : postponed_) {
        if (each.owner)
            each.action();
    }
}

BulkChange* BulkChange::Of(const UndoHistory& history)
{
    const auto& bulks = underWay();
    const auto found = std::find_if(bulks.begin(), bulks.end(), [&history](const BulkChange* bulk) {
        return &bulk->history_ == &history;
    });
    return found == bulks.end() ? nullptr : *found;
}

bool BulkChange::Postpone(const UndoHistory& history, QObject& owner, std::function<void()> action)
{
    BulkChange* const bulk = Of(history);
    if (!bulk)
        return false;
    auto& postponed = bulk->postponed_;
    const bool isKnown = std::any_of(postponed.begin(), postponed.end(),
                                     [&](const Postponed& each) { return each.owner == &owner; });
    if (!isKnown)
        postponed.push_back({&owner, std::move(action)});
    return true;
}

} // namespace Marlox
