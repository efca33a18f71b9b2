#pragma once

#include "system/document/Operator.h"
#include "system/document/UndoHistory.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QObject>
#include <QStringList>

namespace Marlox {

class Preferences;
class Renderer;
struct DocumentContent;

/// A document: the tools in flow order (each feeds the next, unless an input is connected to
/// another one), time, undo, and its file. Every change of tools and inputs passes through it as an
/// undo step. User-interface thread only.
class MARLOXSYSTEM_EXPORT MarloxDoc final : public QObject, public Object {
    Q_OBJECT
public:
    explicit MarloxDoc(QObject* parent = nullptr);
    ~MarloxDoc() override;

    // Tools, in flow order.
    const std::vector<Ref<Operator>>& Tools() const { return tools_; }
    Operator* FindTool(const QString& name) const;
    /// Makes a tool by class id, names it after the class and puts it at `position` (-1: the end).
    /// Null and `error` on failure.
    Operator* AddTool(const MxID& toolType, int position = -1, QString* error = nullptr);
    /// Inputs connected to it are connected to what fed it. False: locked.
    bool RemoveTool(Operator& tool);
    /// Puts a tool where its index becomes `position`. False: locked, or the flow would run in a
    /// loop.
    bool MoveTool(Operator& tool, int position);
    int IndexOf(const Operator& tool) const; // -1: not in this document
    /// `wanted`, or with the next free number if another tool than `except` has that name.
    QString UniqueName(const QString& wanted, const Operator* except = nullptr) const;

    /// The enabled tool whose output reaches an image input: the connected one or, for the main
    /// input without a connection, the one before it in flow order. Disabled tools pass their own
    /// main input through. Null: none.
    Operator* FeedOf(const Input& input) const;
    /// Whether `tool` is `upstream` or gets its image, directly or through others, from it.
    bool IsFedBy(const Operator& tool, const Operator& upstream) const;

    // Time in frames.
    double CurrentTime() const { return time_; }
    double GetCurrentFrame() const { return time_; }
    void SetCurrentTime(double time); // clamped to the frame range; not an undo step
    double FirstFrame() const { return first_; }
    double LastFrame() const { return last_; }
    bool SetFrameRange(double first, double last);  // an undo step; false: last before first
    double FrameRate() const { return frameRate_; } // frames a second, for time codes
    bool SetFrameRate(double framesPerSecond);

    UndoHistory& Undo() { return *undo_; }
    const UndoHistory& Undo() const { return *undo_; }
    // Shorthands; nests end in the reverse order of their starts.
    void StartUndo(const char* text) override;
    void EndUndo(bool keep) override;
    // The same for nests. What an overlay's drag goes on to write after the nest that its first
    // change stood in belongs to the nest's entry: the drag's own group holds it open.
    /// Returns the nest's id, for EndUndoNest; without one the innermost ends.
    int StartUndoNest(const char* text)
    {
        StartUndo(text);
        return Undo().Depth();
    }
    void EndUndoNest(int id = 0)
    {
        if (id == 0 || id <= Undo().Depth())
            EndUndo(true);
    }

    /// Switches reduced-resolution rendering for a drag of `tool` on or off; calls nest per tool.
    void SetAutoProxy(Operator* tool, bool on);
    bool IsAutoProxy() const { return !proxyTools_.empty(); }
    /// Asks for a render at full resolution; returns at once.
    void SyncRender();

    Renderer& GetRenderer() { return *renderer_; }
    static Preferences& GetPreferences();
    // One of them by name.
    static bool GetPrefBool(const QString& name, bool missing = false);
    static QString GetPrefString(const QString& name, const QString& missing = {});

    // Files: plain text in the C locale, UTF-8, written atomically.
    QString FilePath() const { return path_; }
    bool IsModified() const;
    /// False and `error` (file, line, reason): the document stays as it was.
    bool Open(const QString& path, QString* error);
    bool Save(const QString& path, QString* error);
    /// Empties the document and its history; the file path goes too.
    void Clear();
    using Object::Save;
    /// The content of the file; empty without the script library.
    std::string ToText() const;
    /// Replaces tools and time; the document is modified then and its history empty. `error` tells
    /// the line or the tool and the field.
    bool FromText(const std::string& text, QString* error);
    /// What the last file held that is not used here, a sentence each. (Inputs that a tool does not
    /// have are kept and saved again.)
    const QStringList& LoadNotes() const { return notes_; }

    /// Autosave: a copy in `folder` (created when needed) at most `intervalSeconds` after a change,
    /// removed when the document is saved, emptied or closed.
    void StartAutosave(const QString& folder, int intervalSeconds = 30);
    void StopAutosave(); // the copy goes
    /// Copies left behind by processes that no longer run, newest first.
    static QStringList RecoveryFiles(const QString& folder);
    /// Opens such a copy as the document it was made from: with that file's path, and modified. The
    /// copy stays until the document is saved or autosaved. False as Open.
    bool Recover(const QString& copy, QString* error);

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
    // Inputs that come to a tool later and go again: published points.
    void InputAdded(Marlox::Input* input);
    void InputAboutToBeRemoved(Marlox::Input* input);
    void InputRemoved(Marlox::Input* input); // still alive
    void CurrentTimeChanged(double time);
    void FrameRangeChanged(double first, double last);
    void AutoProxyChanged(bool on);
    void SyncRenderRequested();
    void AutosaveFailed(const QString& error);
    void ModifiedChanged(bool modified);
    void FilePathChanged(const QString& path);
    void Cleared(); // all tools were replaced (new, open)

private:
    friend class Input;
    friend class Operator;

    void PushStep(std::function<void()> undo, std::function<void()> redo, const QString& text);
    void Insert(Ref<Operator> tool, int position);
    void Take(Operator& tool);
    void Reorder(Operator& tool, int position);
    void Rename(Operator& tool, const QString& name);
    void ApplyFrameRange(double first, double last);
    void ApplyFrameRate(double framesPerSecond);
    void TellInputChanged(Input& input);
    void TellExpressions(const Input* except);
    void ReplaceContent(DocumentContent content);
    std::string TextWithOrigin(const QString& origin) const;
    void SetFilePath(const QString& path);

    std::vector<Ref<Operator>> tools_;
    std::vector<Operator*> proxyTools_;
    double time_ = 0.0;
    double first_ = 0.0;
    double last_ = 100.0;
    double frameRate_ = 24.0;
    QString path_;
    QStringList notes_;
    std::unique_ptr<UndoHistory> undo_;
    std::unique_ptr<Renderer> renderer_;
    class Autosave;
    std::unique_ptr<Autosave> autosave_;
};

} // namespace Marlox
