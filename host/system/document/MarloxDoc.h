#pragma once

#include "system/document/Operator.h"
#include "system/document/UndoHistory.h"

#include <memory>
#include <vector>

#include <QObject>

namespace Marlox {

class Preferences;
class Renderer;

/// A document: the tools in flow order (each feeds the next), time, undo, and its file. Every change
/// of tools and inputs passes through it as an undo step. User-interface thread only.
class MARLOXSYSTEM_EXPORT MarloxDoc final : public QObject, public Object {
    Q_OBJECT
public:
    explicit MarloxDoc(QObject* parent = nullptr);
    ~MarloxDoc() override;

    // Tools, in flow order.
    const std::vector<Ref<Operator>>& Tools() const { return tools_; }
    Operator* FindTool(const QString& name) const;
    /// Makes a tool by class id and puts it at `position` (-1: the end). Null and `error` on failure.
    Operator* AddTool(const MxID& toolType, int position = -1, QString* error = nullptr);
    bool RemoveTool(Operator& tool); // false: locked
    bool MoveTool(Operator& tool, int position);
    int IndexOf(const Operator& tool) const;

    // Time in frames.
    double CurrentTime() const { return time_; }
    void SetCurrentTime(double time); // clamped to the frame range; not an undo step
    double FirstFrame() const { return first_; }
    double LastFrame() const { return last_; }
    bool SetFrameRange(double first, double last); // an undo step; false: last before first
    double FrameRate() const { return frameRate_; } // frames a second, for time codes
    bool SetFrameRate(double framesPerSecond);

    UndoHistory& Undo() { return *undo_; }
    // Shorthands; nests end in the reverse order of their starts.
    void StartUndo(const char* text) override;
    void EndUndo(bool keep) override;

    /// Switches reduced-resolution rendering for a drag of `tool` on or off; calls nest per tool.
    void SetAutoProxy(Operator* tool, bool on);
    bool IsAutoProxy() const { return !proxyTools_.empty(); }
    /// Asks for a render at full resolution; returns at once.
    void SyncRender();

    Renderer& GetRenderer() { return *renderer_; }
    static Preferences& GetPreferences();

    // Files: plain text in the C locale, UTF-8, written atomically.
    QString FilePath() const { return path_; }
    bool IsModified() const;
    /// False and `error` (file, line, reason): the document stays as it was.
    bool Open(const QString& path, QString* error);
    bool Save(const QString& path, QString* error);
    /// Empties the document and its history; the file path goes too.
    void Clear();
    using Object::Save;
    std::string ToText() const;
    bool FromText(const std::string& text, QString* error);

    // Autosave: a copy in `folder` some seconds after a change, removed when saved or closed.
    void StartAutosave(const QString& folder, int intervalSeconds = 30);
    /// Copies left behind by processes that no longer run, newest first.
    static QStringList RecoveryFiles(const QString& folder);

    // Object
    MarloxDoc* GetDoc() const override { return const_cast<MarloxDoc*>(this); }
    std::size_t SizeOf() const override { return sizeof(*this); }

signals:
    void ToolAdded(Marlox::Operator* tool, int position);
    void ToolAboutToBeRemoved(Marlox::Operator* tool);
    void ToolRemoved(Marlox::Operator* tool); // still alive
    void ToolMoved(Marlox::Operator* tool, int position);
    void ToolChanged(Marlox::Operator* tool); // name, enabled, locked
    void InputChanged(Marlox::Input* input);  // value, keys, expression, connection
    void CurrentTimeChanged(double time);
    void FrameRangeChanged(double first, double last);
    void AutoProxyChanged(bool on);
    void SyncRenderRequested();
    void ModifiedChanged(bool modified);
    void FilePathChanged(const QString& path);
    void Cleared(); // all tools were replaced (new, open)

private:
    friend class Input;
    friend class Operator;
    class ToolStep;

    std::vector<Ref<Operator>> tools_;
    std::vector<Operator*> proxyTools_;
    double time_ = 0.0;
    double first_ = 0.0;
    double last_ = 100.0;
    double frameRate_ = 24.0;
    QString path_;
    std::unique_ptr<UndoHistory> undo_;
    std::unique_ptr<Renderer> renderer_;
    class Autosave;
    std::unique_ptr<Autosave> autosave_;
};

} // namespace Marlox
