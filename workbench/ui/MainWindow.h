#pragma once

#include "workbench/ui/Session.h"

#include <QMainWindow>

namespace Marlox {

class ConsolePanel;
class ElideLabel;
class InspectorPanel;
class ScriptHost;
class TimelinePanel;
class ToolPanel;
class ViewerWidget;

/// The workbench's window: viewer in the middle, tools and history on the left, inspector on the
/// right, time line and script console below. Everything it does goes through the Session.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    Session& GetSession() { return session_; }
    ViewerWidget& Viewer() { return *viewer_; }
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

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void BuildDocks();
    void ShowTitle();
    bool MayLoseChanges();

    Session session_;
    ViewerWidget* viewer_;
    ToolPanel* tools_;
    InspectorPanel* inspector_;
    TimelinePanel* timeline_;
    std::unique_ptr<ScriptHost> scripts_;
    ConsolePanel* console_;
    ElideLabel* where_; // the document's file
};

} // namespace Marlox
