// Which overlays a view shows.

#include "system/viewer/OverlayStage.h"

#include "system/document/BulkChange.h"
#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <utility>

namespace Marlox {

namespace {

std::vector<OverlayStage*>& Stages()
{
    static std::vector<OverlayStage*> stages;
    return stages;
}

} // namespace

/// Hears what overlays and inputs say.
class OverlayStage::Listener final : public Object {
public:
    explicit Listener(OverlayStage& stage) : stage_(stage) {}
    bool HandleEvent(Object* sender, const MxID& event, TagList& tags) override
    {
        auto* overlay = dynamic_cast<PreviewControl*>(sender);
        if (overlay && event == MxID("ValueWritten"))
            TellWritten(*overlay, tags);
        else if (overlay)
            emit stage_.Changed();
        else if (event == MxID("AttrsChanged") && !std::exchange(stage_.rebuilds_, true))
            QMetaObject::invokeMethod(
                &stage_, [this] { stage_.Rebuild(); }, Qt::QueuedConnection);
        return true;
    }

private:
    void TellWritten(const PreviewControl& overlay, const TagList& tags)
    {
        Input* input = overlay.FindInputByIndex(unsigned(tags.GetLong(IA_OverlayIndex)));
        auto* value = dynamic_cast<Parameter*>(tags.GetObject(PV_Value));
        emit stage_.ValueWritten(input, value, tags.GetDouble(PVD_Time), tags.GetBool(PV_Final));
    }

    OverlayStage& stage_;
};

/// What overlays ask of their view.
class OverlayStage::Services final : public ViewServices {
public:
    explicit Services(OverlayStage& stage) : stage_(stage) {}
    void PressEvent(u32) override { emit stage_.ToolbarChanged(); }
    void TakeFocus(PreviewControl& overlay) override
    {
        if (!stage_.IsShownHere(overlay))
            return;
        stage_.SetFocus(&overlay);
        emit stage_.KeyboardWanted();
    }

private:
    OverlayStage& stage_;
};

OverlayStage::OverlayStage(MarloxDoc& document, QObject* parent)
    : QObject(parent), document_(document), listener_(MakeRef<Listener>(*this)),
      services_(std::make_unique<Services>(*this))
{
    view_.services = services_.get();
    connect(this, &OverlayStage::OverlaysChanged, this, &OverlayStage::ToolbarChanged);
    Stages().push_back(this);
    connect(&document_, &MarloxDoc::ToolAdded, this, &OverlayStage::RebuildSoon);
    connect(&document_, &MarloxDoc::ToolMoved, this, &OverlayStage::RebuildSoon);
    connect(&document_, &MarloxDoc::ToolAboutToBeRemoved, this,
            [this](Operator* tool) { LetGo(*tool); });
    connect(&document_, &MarloxDoc::InputAdded, this, &OverlayStage::RebuildSoon);
    connect(&document_, &MarloxDoc::InputRemoved, this, &OverlayStage::RebuildSoon);
    connect(&document_, &MarloxDoc::InputAboutToBeRemoved, this,
            [this](Input* input) { LetGo(*input); });
    connect(&document_, &MarloxDoc::ToolChanged, this, &OverlayStage::Changed);
    connect(&document_.Undo().Stack(), &QUndoStack::indexChanged, this, [this] {
        if (dragged_ && document_.Undo().IsReplaying()) // what the drag began with is gone
            CancelDrag();
    });
    connect(&document_, &MarloxDoc::Cleared, this, [this] {
        EndDrag();
        if (tool_ && document_.IndexOf(*tool_) < 0)
            tool_ = nullptr;
        heard_.clear(); // others may stand in the places of those that are gone
        Rebuild();
        kept_.clear();
    });
    Rebuild();
}

OverlayStage::~OverlayStage()
{
    EndDrag();
    for (const Entry& entry : std::exchange(entries_, {}))
        Discard(entry);
    kept_.clear();
    std::erase(Stages(), this);
}

void OverlayStage::ReleaseAll()
{
    for (OverlayStage* stage : Stages()) {
        stage->EndDrag();
        stage->released_ = true;
        stage->Rebuild();
    }
}

void OverlayStage::ReopenAll()
{
    for (OverlayStage* stage : std::vector(Stages())) {
        stage->released_ = false;
        stage->Rebuild();
    }
}

Operator* OverlayStage::GetOperator() const
{
    return tool_.Get();
}

void OverlayStage::SetOperator(Operator* tool)
{
    if (tool == tool_.Get())
        return;
    EndDrag();
    KeyUpAll();
    clickedAt_.reset();
    tool_ = Ref<Operator>::Share(tool);
    for (const Entry& entry : entries_)
        entry.overlay->SetInactive(nullptr);
    Rebuild();
}

std::vector<PreviewControl*> OverlayStage::Overlays() const
{
    std::vector<PreviewControl*> overlays;
    overlays.reserve(entries_.size());
    for (const Entry& entry : entries_)
        overlays.push_back(entry.overlay.Get());
    return overlays;
}

bool OverlayStage::IsShownHere(const PreviewControl& overlay) const
{
    return std::any_of(entries_.begin(), entries_.end(),
                       [&overlay](const Entry& entry) { return entry.overlay.Get() == &overlay; });
}

PreviewControl* OverlayStage::OverlayOf(const Input& input) const
{
    for (const Entry& entry : entries_) {
        const std::vector<Input*>& inputs = entry.overlay->Inputs();
        if (std::find(inputs.begin(), inputs.end(), &input) != inputs.end())
            return entry.overlay.Get();
    }
    return nullptr;
}

// Making them -------------------------------------------------------------------------------------

/// The inputs that ask for an overlay which is to show, in picking order.
std::vector<Input*> OverlayStage::WantedInputs() const
{
    std::vector<Input*> wanted;
    const auto add = [&wanted](const Operator& tool, bool all) {
        for (const Ref<Input>& input : tool.Inputs()) {
            if (*input->GetAttrS(IAS_Overlay) && (all || input->GetAttrB(IA_OverlayStays)))
                wanted.push_back(input.Get());
        }
    };
    if (released_)
        return wanted;
    if (tool_)
        add(*tool_, true);
    for (const Ref<Operator>& tool : document_.Tools()) {
        if (tool.Get() != tool_.Get())
            add(*tool, false);
    }
    return wanted;
}

OverlayStage::Request OverlayStage::RequestOf(Input& main)
{
    Request request{{&main}, main.Owner().FindInput(main.GetAttrS(IAS_OverlayOffset))};
    for (const Ref<Input>& input : main.Owner().Inputs()) {
        if (input.Get() != &main && MxID(input->GetAttrS(IAS_OverlayWith)) == main.GetID())
            request.inputs.push_back(input.Get());
    }
    return request;
}

/// At the end of a bulk of changes, or else at once.
void OverlayStage::RebuildSoon()
{
    if (!BulkChange::Postpone(document_.Undo(), *this, [this] { Rebuild(); }))
        Rebuild();
}

/// Also inputs that have no overlay yet: what they ask for may change.
void OverlayStage::Hear(const Operator& tool)
{
    for (const Ref<Input>& input : tool.Inputs()) {
        if (!heard_.insert(input.Get()).second)
            continue;
        input->RemoveNotify(listener_.Get(), "AttrsChanged");
        input->AddNotify(listener_.Get(), "AttrsChanged");
    }
}

void OverlayStage::Rebuild()
{
    rebuilds_ = false;
    std::vector<Entry> before = std::exchange(entries_, {});
    for (Input* main : WantedInputs()) {
        const Request request = RequestOf(*main);
        const auto found = std::find_if(before.begin(), before.end(), [&](const Entry& entry) {
            return entry.main == main && entry.request == request &&
                   entry.overlay->GetRegistry()->ClassID() == MxID(main->GetAttrS(IAS_Overlay));
        });
        if (found != before.end()) {
            entries_.push_back(std::move(*found));
            before.erase(found);
        } else if (Ref<PreviewControl> made = MakeOverlay(request)) {
            entries_.push_back({std::move(made), main, request});
        }
    }
    for (const Entry& entry : before)
        Discard(entry);
    for (const Ref<Operator>& tool : document_.Tools())
        Hear(*tool);
    for (const Entry& entry : entries_) {
        if (&entry.main->Owner() == tool_.Get() && !entry.overlay->IsActive())
            entry.overlay->SetActive(1, nullptr);
    }
    PlacementChanged(); // another overlay may lie below the pointer
    emit OverlaysChanged();
    emit Changed();
}

Ref<PreviewControl> OverlayStage::MakeOverlay(const Request& request)
{
    Input& main = *request.inputs.front();
    Ref<Object> made(
        ClassRegistry::Global().Create(main.GetAttrS(IAS_Overlay), ScriptVal(), main.Attributes()));
    const auto overlay = Ref<PreviewControl>::Share(dynamic_cast<PreviewControl*>(made.Get()));
    if (!overlay)
        return {};
    overlay->SetOperator(&main.Owner());
    overlay->SetView(&view_, nullptr);
    for (Input* input : request.inputs) {
        TagList tags(input->Attributes());
        if (overlay->AddInput(input, &tags))
            overlay->SetAttrsTagList(input, tags);
    }
    overlay->ReadInputs();
    BringStateBack(*overlay);
    overlay->AddNotify(listener_.Get(), MxID());
    return overlay;
}

/// What its maker's user set is there again when the tool is selected again.
void OverlayStage::KeepState(const Entry& entry)
{
    Kept kept{Ref<Operator>::Share(&entry.main->Owner()),
              entry.main,
              entry.overlay->GetRegistry()->ClassID(),
              {}};
    if (entry.overlay->SaveState(kept.state))
        kept_.push_back(std::move(kept));
}

void OverlayStage::BringStateBack(PreviewControl& overlay)
{
    const auto found = std::find_if(kept_.begin(), kept_.end(), [&overlay](const Kept& kept) {
        return !overlay.Inputs().empty() && kept.main == overlay.Inputs().front() &&
               kept.overlay == overlay.GetRegistry()->ClassID();
    });
    if (found == kept_.end())
        return;
    Kept kept = std::move(*found);
    kept_.erase(found);
    overlay.RestoreState(kept.state);
    overlay.CleanupState(kept.state);
}

void OverlayStage::Discard(const Entry& entry)
{
    if (dragged_.Get() == entry.overlay.Get())
        FinishDrag(true);
    KeepState(entry);
    entry.overlay->RemoveNotify(listener_.Get());
    entry.overlay->SetInactive(nullptr);
    entry.overlay->SetView(nullptr, nullptr); // scripts may still hold it
    if (focus_ == entry.overlay.Get())
        focus_ = nullptr;
    if (menuOwner_.Get() == entry.overlay.Get())
        menuOwner_ = nullptr;
    if (view_.currentControl == entry.overlay.Get())
        view_.currentControl = nullptr;
    for (Input* input : std::vector(entry.overlay->Inputs()))
        entry.overlay->RemoveInput(input, nullptr);
}

/// An input is about to leave its tool.
void OverlayStage::LetGo(Input& input)
{
    heard_.erase(&input);
    input.RemoveNotify(listener_.Get());
    for (const Entry& entry : std::vector(entries_)) {
        const auto& inputs = entry.request.inputs;
        const bool its = std::find(inputs.begin(), inputs.end(), &input) != inputs.end();
        if (its)
            std::erase_if(entries_, [&](const Entry& e) { return e.overlay == entry.overlay; });
        if (its)
            Discard(entry);
        else
            entry.overlay->RemoveInput(&input, nullptr);
    }
}

/// A tool is about to leave the document.
void OverlayStage::LetGo(Operator& tool)
{
    EndDrag();
    KeyUpAll();
    for (const Ref<Input>& input : tool.Inputs()) {
        heard_.erase(input.Get());
        input->RemoveNotify(listener_.Get());
    }
    std::vector<Entry> gone;
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        const bool its = &entry->main->Owner() == &tool;
        if (its)
            gone.push_back(*entry);
        entry = its ? entries_.erase(entry) : entry + 1;
    }
    for (const Entry& entry : gone)
        Discard(entry);
    for (const Entry& entry : entries_) {
        for (const Ref<Input>& input : tool.Inputs())
            entry.overlay->RemoveInput(input.Get(), nullptr);
    }
    if (tool_.Get() == &tool)
        tool_ = nullptr;
    PlacementChanged(); // another overlay may lie below the pointer
    emit OverlaysChanged();
    emit Changed();
}

void OverlayStage::SetShown(bool shown)
{
    if (shown == IsShown())
        return;
    EndDrag();
    KeyUpAll();
    view_.drawMode = shown ? DrawIdle : DrawHidden;
    TestHover();
    emit ToolbarChanged();
    emit Changed();
}

} // namespace Marlox
