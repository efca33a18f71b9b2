#pragma once

#include "workbench/ui/Session.h"

#include <vector>

#include <QMainWindow>

namespace Marlox {

class ConsolePanel;
class ElideLabel;
class InspectorPanel;
class ScriptHost;
class TimelinePanel;
class ToolPanel;
class ViewerPane;
class ViewerWidget;

/// The workbench's window: viewer in the middle, tools and history on the left, inspector on the
/// right, time line and script console below. Everything it does goes through the Session.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    Session& GetSession() { return session_; }
    ViewerWidget& Viewer(); // the one in the middle
    /// All viewers, the one in the middle first.
    std::vector<ViewerWidget*> Viewers() const;
    /// The one that had the keyboard focus last: the menu works on it.
    ViewerWidget& ActiveViewer() { return *active_; }
    /// Opens a further viewer in a window of its own, which can be docked.
    ViewerWidget& AddViewer();
    ToolPanel& Tools() { return *tools_; }
    InspectorPanel& Inspector() { return *inspector_; }
    ScriptHost& Scripts() { return *scripts_; }
    ConsolePanel& Console() { return *console_; }

    // What the menus do; each asks before changes are lost and shows failures in a dialog.
    void New();
    void OpenPath(const QString& path);
    void OpenAsked();
    bool SaveAsked(bool askForPath); // false: not saved
    /// Offers what crashed processes left behind.
    void OfferRecovery();

signals:
    void ActiveViewerChanged();
    void ViewerSettingsChanged(); // of the active one
    /// An overlay of some viewer wrote a value (OverlayStage::ValueWritten).
    void OverlayWrote(Marlox::Input* input, Marlox::Parameter* value, double time, bool final);

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void BuildDocks();
    void Adopt(ViewerPane& pane);
    void Activate(ViewerWidget& viewer);
    void ShowTitle();
    bool MayLoseChanges();

    Session session_;
    std::vector<ViewerPane*> panes_; // the one in the middle first
    ViewerWidget* active_ = nullptr;
    ToolPanel* tools_;
    InspectorPanel* inspector_;
    TimelinePanel* timeline_;
    std::unique_ptr<ScriptHost> scripts_;
    ConsolePanel* console_;
    ElideLabel* where_; // the document's file
};

} // namespace Marlox
