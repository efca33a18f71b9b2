#pragma once

#include "system/document/MarloxDoc.h"

#include <functional>
#include <memory>
#include <optional>

#include <QDir>
#include <QObject>
#include <QPointer>
#include <QStringList>

namespace Marlox {

class PluginHost;
class RenderContext;

/// What the workbench works on: the one open document, the selected tool, and what menus, scripts
/// and the command line do with them, without any dialog. Errors come back as text. User-interface
/// thread.
class Session : public QObject {
    Q_OBJECT
public:
    explicit Session(QObject* parent = nullptr);
    ~Session() override;

    MarloxDoc& Document() { return *document_; }
    const MarloxDoc& Document() const { return *document_; }

    /// The tool shown in the inspector and whose overlays show; null when there is none.
    Operator* SelectedTool() const { return selected_; }
    void SelectTool(Operator* tool);

    void New();
    /// Called again and again while a picture is read elsewhere; may cancel the reading.
    using Watch = std::function<void(RenderContext& reading)>;
    /// Opens a document, or an image or sequence as a new document with one image source. False and
    /// `error` (empty if the reading was cancelled): what was open stays as it was. Without a watch
    /// the window is merely painted meanwhile.
    bool Open(const QString& path, QString* error, const Watch& watch = {});
    /// Opens what a crashed process left; the document is modified and keeps its own path.
    bool Recover(const QString& path, QString* error);
    /// Saved to another folder, sources that name their files from the document's folder go on
    /// finding them.
    bool Save(const QString& path, QString* error);
    static bool IsDocumentPath(const QString& path);

    /// Adds a tool at `position` in the flow (behind the selected one unless given) and selects it.
    /// A tool with values in pixels is fitted to the picture on show, if there is one.
    Operator* AddTool(const MxID& toolType, QString* error, std::optional<int> position = {});
    Operator* DuplicateTool(Operator& tool, QString* error);

    // Keys of the selected tool, in frames; empty without a tool.
    std::vector<double> KeyTimes() const;
    void GoToKey(int direction); // -1 previous, 1 next
    // Going somewhere by hand ends playback, which would go its own way.
    void StepTo(double frame);
    void StepBy(double frames) { StepTo(document_->CurrentTime() + frames); }
    /// Removes every key of the selected tool at `time` as one undo entry. False: there was none,
    /// or the tool is locked.
    bool RemoveKeys(double time);

    // Playback: as many frames a second as the document says, leaving frames out rather than
    // falling behind; loops over the frame range.
    void Play(bool on);
    bool IsPlaying() const { return playTimer_ != 0; }

    /// The process's plug-ins, for scripts; null: none. Not owned.
    PluginHost* Plugins() const { return plugins_; }
    void SetPlugins(PluginHost* plugins) { plugins_ = plugins; }

    QStringList RecentFiles() const;
    void AddRecentFile(const QString& path);

signals:
    void SelectedToolChanged(Marlox::Operator* tool);
    void PlayingChanged(bool playing);
    void RecentFilesChanged();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    bool OpenPicture(const QString& path, QString* error, const Watch& watch);
    bool NameFilesInFull(const QDir& newFolder);
    void FitToPicture(Operator& tool);

    std::unique_ptr<MarloxDoc> document_;
    QMetaObject::Connection firstPicture_;
    Operator* selected_ = nullptr;
    PluginHost* plugins_ = nullptr;
    int playTimer_ = 0;
    double playStart_ = 0.0; // frame at which playing began
    class Clock;
    std::unique_ptr<Clock> clock_;
};

} // namespace Marlox
