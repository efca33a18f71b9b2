#include "workbench/ui/Session.h"

#include "system/base/HostTags.h"
#include "system/document/Preferences.h"
#include "system/evaluation/Renderer.h"
#include "workbench/images/Sequence.h"
#include "workbench/tools/ImageSource.h"
#include "workbench/tools/PictureFitted.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <future>
#include <set>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimerEvent>

namespace Marlox {

namespace {

constexpr char recentFilesName[] = "Workbench.RecentFiles";
constexpr int recentFilesKept = 12;

/// Reads the whole picture, which the first render then finds in memory: a damaged file often shows
/// only in its last lines. The window goes on being painted meanwhile.
bool isReadable(const QString& path, QString* error, const Session::Watch& watch)
{
    RenderContext context;
    QString problem;
    auto done = std::async(std::launch::async,
                           [&] { return bool(ReadSourceFrame(path, context, problem)); });
    while (done.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
        if (watch)
            watch(context);
        else
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    const bool read = done.get() && !context.IsCancelled();
    if (error)
        *error = context.IsCancelled() ? QString() : problem;
    return read;
}

} // namespace

class Session::Clock : public QElapsedTimer {};

Session::Session(QObject* parent)
    : QObject(parent), document_(std::make_unique<MarloxDoc>()), clock_(std::make_unique<Clock>())
{
    connect(document_.get(), &MarloxDoc::ToolAboutToBeRemoved, this, [this](Operator* tool) {
        if (tool != selected_)
            return;
        const auto& tools = document_->Tools();
        const int index = document_->IndexOf(*tool);
        if (index > 0)
            SelectTool(tools[std::size_t(index - 1)].Get());
        else
            SelectTool(tools.size() > 1 ? tools[1].Get() : nullptr);
    });
    connect(document_.get(), &MarloxDoc::Cleared, this, [this] {
        Play(false);
        const auto& tools = document_->Tools();
        SelectTool(tools.empty() ? nullptr : tools.back().Get());
    });
}

Session::~Session()
{
    Play(false);
    selected_ = nullptr;
}

void Session::SelectTool(Operator* tool)
{
    if (selected_ == tool)
        return;
    selected_ = tool;
    emit SelectedToolChanged(tool);
}

void Session::New()
{
    document_->Clear();
}

bool Session::IsDocumentPath(const QString& path)
{
    return path.endsWith(".marlox", Qt::CaseInsensitive);
}

bool Session::Open(const QString& path, QString* error, const Watch& watch)
{
    const bool opened =
        IsDocumentPath(path) ? document_->Open(path, error) : OpenPicture(path, error, watch);
    if (opened)
        AddRecentFile(path);
    return opened;
}

bool Session::OpenPicture(const QString& path, QString* error, const Watch& watch)
{
    // The file is looked at before the present document is let go.
    const Sequence sequence = Sequence::FromPath(path);
    const int first = sequence.IsSequence() ? sequence.First() : 0;
    if (!isReadable(sequence.FramePath(first), error, watch))
        return false;
    document_->Clear();
    if (sequence.IsSequence()) {
        document_->SetFrameRange(sequence.First(), sequence.Last());
        document_->SetCurrentTime(sequence.First());
    }
    Operator* source = document_->AddTool("ImageSource", -1, error);
    if (!source)
        return false;
    Input* file = source->FindInput("File");
    const Text value(QFileInfo(sequence.Pattern()).absoluteFilePath().toStdString());
    file->SetValue(value, TimeNone, Input::ReplaceAll);
    document_->Undo().Clear();
    document_->Undo().Stack().setClean(); // the file has it all: nothing to save yet
    SelectTool(source);
    return true;
}

bool Session::Recover(const QString& path, QString* error)
{
    return document_->Recover(path, error);
}

bool Session::Save(const QString& path, QString* error)
{
    const bool renamed = NameFilesInFull(QFileInfo(path).absoluteDir());
    if (!document_->Save(path, error)) {
        if (renamed)
            document_->Undo().Undo();
        return false;
    }
    AddRecentFile(path);
    return true;
}

/// Rewrites file names that are relative to the document, as one undo entry. False: there were
/// none.
bool Session::NameFilesInFull(const QDir& newFolder)
{
    const QString path = document_->FilePath();
    const QDir before = path.isEmpty() ? QDir::current() : QFileInfo(path).absoluteDir();
    if (before == newFolder)
        return false;
    bool renamed = false;
    document_->StartUndo("Name Files in Full");
    for (const Ref<Operator>& tool : document_->Tools()) {
        Input* file =
            tool->GetToolType() == MxID("ImageSource") ? tool->FindInput("File") : nullptr;
        const auto value = file ? file->GetValue(0.0) : Ref<Parameter>();
        const auto* text = dynamic_cast<const Text*>(value.Get());
        const QString name = text ? QString::fromStdString(text->GetValue()).trimmed() : QString();
        if (name.isEmpty() || QDir::isAbsolutePath(name))
            continue;
        const Text next(QDir::cleanPath(before.absoluteFilePath(name)).toStdString());
        renamed = file->SetValue(next, TimeNone, Input::ReplaceAll) || renamed;
    }
    document_->EndUndo(renamed);
    return renamed;
}

Operator* Session::AddTool(const MxID& toolType, QString* error, std::optional<int> position)
{
    const int behind = selected_ ? document_->IndexOf(*selected_) + 1 : -1;
    Operator* tool = document_->AddTool(toolType, position.value_or(behind), error);
    if (!tool)
        return nullptr;
    FitToPicture(*tool);
    SelectTool(tool);
    return tool;
}

/// A tool that was just made, at once or, unless something was edited since, with the first
/// picture.
void Session::FitToPicture(Operator& tool)
{
    auto* fitted = dynamic_cast<PictureFitted*>(&tool);
    Renderer& renderer = document_->GetRenderer();
    if (!fitted)
        return;
    if (const Ref<Image> picture = renderer.LastResult().image) {
        fitted->FitTo(picture->GetFormat());
        return;
    }
    disconnect(firstPicture_);
    UndoHistory& undo = document_->Undo();
    const int entry = undo.Stack().index() + (undo.Depth() > 0 ? 1 : 0); // when the tool is there
    const auto fit = [this, fitted, entry, &undo,
                      alive = Ref<Operator>::Share(&tool)](const RenderResult& result) {
        if (!result.image || undo.Depth() > 0)
            return;
        disconnect(firstPicture_);
        if (document_->IndexOf(*alive) >= 0 && undo.Stack().index() == entry)
            fitted->FitTo(result.image->GetFormat());
    };
    firstPicture_ = connect(&renderer, &Renderer::Finished, this, fit);
}

Operator* Session::DuplicateTool(Operator& tool, QString* error)
{
    ScriptVal state;
    if (!tool.SaveState(state)) {
        if (error)
            *error = tr("%1 cannot be duplicated.").arg(tool.GetName());
        return nullptr;
    }
    document_->StartUndo("Duplicate Tool");
    Operator* copy = document_->AddTool(tool.GetToolType(), document_->IndexOf(tool) + 1, error);
    if (copy) {
        copy->AddPublishedInputsOf(tool);
        for (const Ref<Input>& input : tool.Inputs()) {
            if (Input* other = copy->FindInput(input->GetID()))
                other->RestoreInputState(input->GetState());
        }
    }
    document_->EndUndo(copy != nullptr);
    if (copy)
        SelectTool(copy);
    return copy;
}

std::vector<double> Session::KeyTimes() const
{
    std::set<double> times;
    if (selected_) {
        for (const Ref<Input>& input : selected_->Inputs()) {
            for (const auto& [time, key] : input->GetAnimation().Keys())
                times.insert(time);
        }
    }
    return {times.begin(), times.end()};
}

void Session::GoToKey(int direction)
{
    const std::vector<double> times = KeyTimes();
    const double now = document_->CurrentTime();
    if (direction > 0) {
        const auto next = std::upper_bound(times.begin(), times.end(), now);
        if (next != times.end())
            StepTo(*next);
    } else {
        const auto here = std::lower_bound(times.begin(), times.end(), now);
        if (here != times.begin())
            StepTo(*std::prev(here));
    }
}

void Session::StepTo(double frame)
{
    Play(false);
    document_->SetCurrentTime(frame);
}

bool Session::RemoveKeys(double time)
{
    if (!selected_ || selected_->IsLocked())
        return false;
    bool removed = false;
    document_->StartUndo("Remove Keys");
    for (const Ref<Input>& input : selected_->Inputs())
        removed = input->RemoveKey(time) || removed;
    document_->EndUndo(removed);
    return removed;
}

void Session::Play(bool on)
{
    if (on == IsPlaying())
        return;
    if (on) {
        playStart_ = document_->CurrentTime();
        clock_->start();
        playTimer_ = startTimer(int(1000.0 / std::max(document_->FrameRate(), 1.0) / 2.0) + 1,
                                Qt::PreciseTimer);
    } else {
        killTimer(std::exchange(playTimer_, 0));
    }
    emit PlayingChanged(on);
}

void Session::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != playTimer_)
        return;
    const double first = document_->FirstFrame();
    const double count = document_->LastFrame() - first + 1.0;
    const double elapsed = std::floor(double(clock_->elapsed()) * document_->FrameRate() / 1000.0);
    const double frame = first + std::fmod(playStart_ - first + elapsed, count);
    // A frame that is still being made is waited for: the picture should move, however slowly.
    if (frame != document_->CurrentTime() && !document_->GetRenderer().IsBusy())
        document_->SetCurrentTime(frame);
}

QStringList Session::RecentFiles() const
{
    return MarloxDoc::GetPreferences().Get(recentFilesName).toStringList();
}

void Session::AddRecentFile(const QString& path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList files = RecentFiles();
    files.removeAll(absolute);
    files.prepend(absolute);
    MarloxDoc::GetPreferences().Set(recentFilesName, QStringList(files.mid(0, recentFilesKept)));
    emit RecentFilesChanged();
}

} // namespace Marlox
