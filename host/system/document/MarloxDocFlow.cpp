#include "system/document/DocumentFlow.h"
#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <map>
#include <set>

// The flow: which tool feeds which image input. Connections are kept in the inputs, by name; the
// order of the tools feeds the main inputs that have none.

namespace Marlox {

namespace {

/// One step upstream, whether that tool is disabled or not. A disabled source in the order is left
/// out: it has nothing to pass through. Modifiers are no part of the flow.
Operator* directFeed(const MarloxDoc& document, const Input& input)
{
    if (!input.GetState().source.empty()) {
        Operator* source = input.GetSource();
        return source && !source->IsModifier() ? source : nullptr;
    }
    if (input.Owner().ImageInput() != &input)
        return nullptr;
    for (int i = document.IndexOf(input.Owner()) - 1; i >= 0; --i) {
        Operator* tool = document.Tools()[std::size_t(i)].Get();
        if (!tool->IsModifier() && (!tool->IsDisabled() || tool->ImageInput()))
            return tool;
    }
    return nullptr;
}

} // namespace

Operator* MarloxDoc::FeedOf(const Input& input) const
{
    const Input* at = &input;
    for (std::size_t step = 0; at && step <= tools_.size(); ++step) { // a loop ends too
        Operator* feed = directFeed(*this, *at);
        if (!feed || !feed->IsDisabled())
            return feed;
        at = feed->ImageInput();
    }
    return nullptr;
}

bool MarloxDoc::IsFedBy(const Operator& tool, const Operator& upstream) const
{
    std::set<const Operator*> seen;
    std::vector<const Operator*> open{&tool};
    while (!open.empty()) {
        const Operator* at = open.back();
        open.pop_back();
        if (at == &upstream)
            return true;
        if (!seen.insert(at).second)
            continue;
        for (const Ref<Input>& input : at->Inputs()) {
            const Operator* feed = input->IsImage() ? directFeed(*this, *input) : nullptr;
            if (feed)
                open.push_back(feed);
        }
    }
    return false;
}

std::set<const Operator*> ToolsFedBy(const MarloxDoc& document, const Operator& upstream)
{
    std::map<const Operator*, std::vector<const Operator*>> fed; // directly, by each
    for (const Ref<Operator>& tool : document.Tools()) {
        for (const Ref<Input>& input : tool->Inputs()) {
            const Operator* feed = input->IsImage() ? directFeed(document, *input) : nullptr;
            if (feed)
                fed[feed].push_back(tool.Get());
        }
    }
    std::set<const Operator*> all{&upstream};
    std::vector<const Operator*> open{&upstream};
    while (!open.empty()) {
        const Operator* at = open.back();
        open.pop_back();
        for (const Operator* tool : fed[at]) {
            if (all.insert(tool).second)
                open.push_back(tool);
        }
    }
    return all;
}

bool FlowsInLoop(const MarloxDoc& document)
{
    return std::any_of(
        document.Tools().begin(), document.Tools().end(), [&document](const Ref<Operator>& tool) {
            return std::any_of(tool->Inputs().begin(), tool->Inputs().end(),
                               [&](const Ref<Input>& input) {
                                   const Operator* feed =
                                       input->IsImage() ? directFeed(document, *input) : nullptr;
                                   return feed && document.IsFedBy(*feed, *tool);
                               });
        });
}

void BypassConnections(const MarloxDoc& document, const Operator& tool)
{
    Operator* feed = tool.ImageInput() ? directFeed(document, *tool.ImageInput()) : nullptr;
    for (const Ref<Operator>& other : document.Tools()) {
        for (const Ref<Input>& input : other->Inputs()) {
            if (input->GetSource() != &tool || &input->Owner() == &tool)
                continue;
            // An image that was to limit an effect is not replaced by another one.
            const bool isMain = other->ImageInput() == input.Get();
            Input::State state = input->GetState();
            state.source = isMain && feed ? feed->GetName().toStdString() : std::string();
            input->ChangeTo(std::move(state), Input::EvenIfLocked);
        }
    }
}

} // namespace Marlox
