#include "system/document/MarloxDoc.h"

#include "system/document/Autosave.h"
#include "system/document/BulkChange.h"
#include "system/document/DocumentFlow.h"
#include "system/document/DocumentText.h"
#include "system/document/Preferences.h"
#include "system/evaluation/Renderer.h"
#include "system/shapes/ShapeLinks.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QRegularExpression>
#include <QSet>

namespace Marlox {

namespace {

/// A step made of what to do backwards and forwards.
class FunctionStep final : public UndoStep {
public:
    FunctionStep(std::function<void()> undo, std::function<void()> redo)
        : undo_(std::move(undo)), redo_(std::move(redo))
    {
    }
    void Undo() override { undo_(); }
    void Redo() override { redo_(); }

private:
    std::function<void()> undo_;
    std::function<void()> redo_;
};

} // namespace

MarloxDoc::MarloxDoc(QObject* parent)
    : QObject(parent), undo_(std::make_unique<UndoHistory>()),
      renderer_(std::make_unique<Renderer>(*this))
{
    // By the names that the signals give them: for queued connections and for scripts.
    qRegisterMetaType<Operator*>("Marlox::Operator*");
    qRegisterMetaType<Input*>("Marlox::Input*");
    connect(&undo_->Stack(), &QUndoStack::cleanChanged, this,
            [this](bool clean) { emit ModifiedChanged(!clean); });
}

MarloxDoc::~MarloxDoc()
{
    renderer_.reset();
    autosave_.reset();
    undo_->Stack().disconnect(this);
    undo_.reset();
    for (const Ref<Operator>& tool : tools_) // somebody else may hold one
        tool->document_ = nullptr;
}

Preferences& MarloxDoc::GetPreferences()
{
    return Preferences::Global();
}

bool MarloxDoc::GetPrefBool(const QString& name, bool missing)
{
    return GetPreferences().Get(name, missing).toBool();
}

QString MarloxDoc::GetPrefString(const QString& name, const QString& missing)
{
    return GetPreferences().Get(name, missing).toString();
}

void MarloxDoc::PushStep(std::function<void()> undo, std::function<void()> redo,
                         const QString& text)
{
    undo_->Push(std::make_unique<FunctionStep>(std::move(undo), std::move(redo)), text);
}

Operator* MarloxDoc::FindTool(const QString& name) const
{
    const auto found = std::find_if(tools_.begin(), tools_.end(),
                                    [&name](const auto& tool) { return tool->GetName() == name; });
    return found != tools_.end() ? found->Get() : nullptr;
}

int MarloxDoc::IndexOf(const Operator& tool) const
{
    const auto found = std::find_if(tools_.begin(), tools_.end(), [&tool](const auto& candidate) {
        return candidate.Get() == &tool;
    });
    return found != tools_.end() ? int(found - tools_.begin()) : -1;
}

QString MarloxDoc::UniqueName(const QString& wanted, const Operator* except) const
{
    QSet<QString> taken;
    for (const Ref<Operator>& tool : tools_) {
        if (tool.Get() != except)
            taken.insert(tool->name_);
    }
    if (!taken.contains(wanted))
        return wanted;
    static const QRegularExpression trailingNumber(QStringLiteral("^(.*?)([0-9]{0,9})$"));
    const auto parts = trailingNumber.match(wanted);
    for (int number = parts.captured(2).toInt() + 1;; ++number) {
        const QString name = parts.captured(1) + QString::number(number);
        if (!taken.contains(name))
            return name;
    }
}

Operator* MarloxDoc::AddTool(const MxID& toolType, int position, QString* error)
{
    const Ref<Operator> tool = CreateTool(toolType, error);
    if (!tool)
        return nullptr;
    tool->name_ = UniqueName(toolType.ToString() + QLatin1Char('1'));
    const int count = int(tools_.size());
    const int at = position < 0 || position > count ? count : position;
    Insert(tool, at);
    PushStep([this, tool] { Take(*tool); }, [this, tool, at] { Insert(tool, at); },
             tr("Add %1").arg(tool->name_));
    return tool.Get();
}

bool MarloxDoc::RemoveTool(Operator& tool)
{
    const int at = IndexOf(tool);
    if (at < 0 || tool.IsLocked())
        return false;
    const auto held = Ref<Operator>::Share(&tool);
    const QString text = tr("Remove %1").arg(tool.name_);
    undo_->EndGestures(); // a drag of the tool is an entry of its own
    undo_->Begin(text);
    BypassConnections(*this, tool);
    ReleaseFollowers(*this, tool);
    Take(tool);
    PushStep([this, held, at] { Insert(held, at); }, [this, held] { Take(*held); }, text);
    undo_->End();
    return true;
}

bool MarloxDoc::MoveTool(Operator& tool, int position)
{
    const int from = IndexOf(tool);
    if (from < 0 || tool.IsLocked())
        return false;
    const int to = std::clamp(position, 0, int(tools_.size()) - 1);
    if (from == to)
        return true;
    const bool loopedBefore = FlowsInLoop(*this);
    const auto order = tools_;
    const auto held = Ref<Operator>::Share(&tool);
    tools_.erase(tools_.begin() + from);
    tools_.insert(tools_.begin() + to, held);
    const bool loops = FlowsInLoop(*this);
    tools_ = order;
    if (loops && !loopedBefore)
        return false;
    Reorder(tool, to);
    PushStep([this, held, from] { Reorder(*held, from); }, [this, held, to] { Reorder(*held, to); },
             tr("Move %1").arg(tool.name_));
    return true;
}

void MarloxDoc::Insert(Ref<Operator> tool, int position)
{
    Operator* added = tool.Get();
    added->document_ = this;
    position = std::clamp(position, 0, int(tools_.size()));
    tools_.insert(tools_.begin() + position, std::move(tool));
    emit ToolAdded(added, position);
    TellExpressions(nullptr);
}

void MarloxDoc::Take(Operator& tool)
{
    const auto held = Ref<Operator>::Share(&tool);
    emit ToolAboutToBeRemoved(&tool);
    while (std::find(proxyTools_.begin(), proxyTools_.end(), &tool) != proxyTools_.end())
        SetAutoProxy(&tool, false);
    tools_.erase(tools_.begin() + IndexOf(tool));
    tool.document_ = nullptr;
    emit ToolRemoved(&tool);
    TellExpressions(nullptr);
}

void MarloxDoc::Reorder(Operator& tool, int position)
{
    const auto held = Ref<Operator>::Share(&tool);
    tools_.erase(tools_.begin() + IndexOf(tool));
    tools_.insert(tools_.begin() + position, held);
    emit ToolMoved(&tool, position);
}

void MarloxDoc::Rename(Operator& tool, const QString& name)
{
    const std::string before = tool.name_.toStdString();
    tool.name_ = name;
    for (const Ref<Operator>& other : tools_) {
        for (const Ref<Input>& input : other->Inputs())
            input->RenameSource(before, name.toStdString());
    }
    emit ToolChanged(&tool);
    TellExpressions(nullptr);
}

void MarloxDoc::SetCurrentTime(double time)
{
    if (std::isnan(time))
        return;
    const double clamped = std::clamp(time, first_, last_);
    if (clamped == time_)
        return;
    time_ = clamped;
    emit CurrentTimeChanged(time_);
}

bool MarloxDoc::SetFrameRange(double first, double last)
{
    if (!std::isfinite(first) || !std::isfinite(last) || last < first)
        return false;
    if (first == first_ && last == last_)
        return true;
    const double oldFirst = first_;
    const double oldLast = last_;
    ApplyFrameRange(first, last);
    PushStep([=, this] { ApplyFrameRange(oldFirst, oldLast); },
             [=, this] { ApplyFrameRange(first, last); }, tr("Change Frame Range"));
    return true;
}

void MarloxDoc::ApplyFrameRange(double first, double last)
{
    first_ = first;
    last_ = last;
    emit FrameRangeChanged(first, last);
    SetCurrentTime(time_);
}

bool MarloxDoc::SetFrameRate(double framesPerSecond)
{
    if (!std::isfinite(framesPerSecond) || framesPerSecond <= 0.0)
        return false;
    if (framesPerSecond == frameRate_)
        return true;
    const double before = frameRate_;
    ApplyFrameRate(framesPerSecond);
    PushStep([=, this] { ApplyFrameRate(before); }, [=, this] { ApplyFrameRate(framesPerSecond); },
             tr("Change Frame Rate"));
    return true;
}

void MarloxDoc::ApplyFrameRate(double framesPerSecond)
{
    frameRate_ = framesPerSecond;
    emit FrameRangeChanged(first_, last_); // the time codes of the range changed
    TellExpressions(nullptr);
}

void MarloxDoc::StartUndo(const char* text)
{
    undo_->Begin(QString::fromUtf8(text));
}

void MarloxDoc::EndUndo(bool keep)
{
    undo_->End(keep);
}

void MarloxDoc::SetAutoProxy(Operator* tool, bool on)
{
    const bool before = IsAutoProxy();
    if (on) {
        proxyTools_.push_back(tool);
    } else if (const auto found = std::find(proxyTools_.begin(), proxyTools_.end(), tool);
               found != proxyTools_.end()) {
        proxyTools_.erase(found);
    }
    if (IsAutoProxy() != before)
        emit AutoProxyChanged(!before);
}

void MarloxDoc::SyncRender()
{
    emit SyncRenderRequested();
}

bool MarloxDoc::IsModified() const
{
    return !undo_->Stack().isClean() || undo_->HasOpenChanges();
}

void MarloxDoc::TellInputChanged(Input& input)
{
    emit InputChanged(&input);
    TellExpressions(&input);
}

/// Expressions may refer to anything that has changed; what they refer to only they know. So may
/// what tools compute, and shapes with points that feed inputs or follow other shapes.
void MarloxDoc::TellExpressions(const Input* except)
{
    if (BulkChange::Postpone(*undo_, *this, [this] { TellExpressions(nullptr); }))
        return;
    std::vector<Ref<Input>> told;
    for (const Ref<Operator>& tool : tools_) {
        for (const Ref<Input>& input : tool->Inputs()) {
            if (input->DependsOnOthers() && input.Get() != except)
                told.push_back(input);
        }
    }
    for (const Ref<Input>& input : told)
        input->NotifyValueChanged();
}

} // namespace Marlox
