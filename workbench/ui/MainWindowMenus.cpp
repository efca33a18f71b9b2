#include "workbench/ui/MainWindowMenus.h"

#include "workbench/ui/ExportDlg.h"
#include "workbench/ui/Icons.h"
#include "workbench/ui/MainWindow.h"
#include "workbench/ui/Messages.h"
#include "workbench/ui/PreferencesDlg.h"
#include "workbench/ui/ToolPanel.h"
#include "workbench/viewer/ViewerWidget.h"

#include <algorithm>
#include <functional>
#include <vector>

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QDockWidget>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>

namespace Marlox {

namespace {

struct Builder {
    MainWindow& window;
    Session& session;
    QMenu* menu = nullptr;

    QString Tr(const char* text) const { return MainWindow::tr(text); }

    void Start(const char* title, const char* name)
    {
        menu = window.menuBar()->addMenu(Tr(title));
        menu->setObjectName(name);
    }

    QAction* Add(const char* text, const QKeySequence& keys, const char* name,
                 std::function<void()> run) const
    {
        QAction* action = menu->addAction(Tr(text));
        action->setObjectName(name);
        action->setShortcut(keys);
        QObject::connect(action, &QAction::triggered, &window, [run] { run(); });
        return action;
    }
};

void buildFile(Builder& b)
{
    MainWindow& window = b.window;
    b.Start("&File", "filemenu");
    b.Add("&New", QKeySequence::New, "new", [&window] { window.New(); });
    b.Add("&Open...", QKeySequence::Open, "open", [&window] { window.OpenAsked(); });
    QMenu* recent = b.menu->addMenu(b.Tr("Open &Recent"));
    recent->setObjectName("recent");
    QObject::connect(recent, &QMenu::aboutToShow, &window, [&window, recent] {
        recent->clear();
        for (const QString& path : window.GetSession().RecentFiles()) {
            QAction* action = recent->addAction(QFileInfo(path).fileName(), &window,
                                                [&window, path] { window.OpenPath(path); });
            action->setToolTip(path);
            action->setEnabled(QFileInfo::exists(path) || path.contains('#'));
        }
        recent->setToolTipsVisible(true);
        if (recent->isEmpty())
            recent->addAction(MainWindow::tr("None yet"))->setEnabled(false);
    });
    b.menu->addSeparator();
    b.Add("&Save", QKeySequence::Save, "save", [&window] { window.SaveAsked(false); });
    b.Add("Save &As...", QKeySequence("Ctrl+Shift+S"), "saveas",
          [&window] { window.SaveAsked(true); });
    b.Add("&Render to Files...", QKeySequence("Ctrl+E"), "render",
          [&window] { ExportDlg(window.GetSession(), &window).exec(); });
    b.menu->addSeparator();
    b.Add("&Preferences...", QKeySequence("Ctrl+,"), "preferences",
          [&window] { PreferencesDlg(window.GetSession().Document(), &window).exec(); });
    b.menu->addSeparator();
    b.Add("&Quit", QKeySequence("Ctrl+Q"), "quit", [&window] { window.close(); });
}

void buildEdit(Builder& b)
{
    b.Start("&Edit", "editmenu");
    UndoHistory& history = b.session.Document().Undo();
    QAction* undo = b.Add("&Undo", QKeySequence::Undo, "undo", [&history] { history.Undo(); });
    QAction* redo = b.Add("&Redo", QKeySequence::Redo, "redo", [&history] { history.Redo(); });
    redo->setShortcuts({QKeySequence("Ctrl+Shift+Z"), QKeySequence("Ctrl+Y")});
    undo->setIcon(WorkbenchIcon("Undo"));
    redo->setIcon(WorkbenchIcon("Redo"));
    const auto show = [undo, redo, &history] {
        undo->setEnabled(history.CanUndo());
        redo->setEnabled(history.CanRedo());
        undo->setText(MainWindow::tr("&Undo %1").arg(history.UndoText()).trimmed());
        redo->setText(MainWindow::tr("&Redo %1").arg(history.RedoText()).trimmed());
    };
    QObject::connect(&history.Stack(), &QUndoStack::indexChanged, &b.window, show);
    QObject::connect(&history.Stack(), &QUndoStack::cleanChanged, &b.window, show);
    show();
}

bool takesImage(const Operator& tool)
{
    return std::any_of(tool.Inputs().begin(), tool.Inputs().end(),
                       [](const Ref<Input>& input) { return input->IsImage(); });
}

void buildTool(Builder& b)
{
    MainWindow& window = b.window;
    Session& session = b.session;
    b.Start("&Tool", "toolmenu");
    QMenu* add = b.menu->addMenu(b.Tr("&Add"));
    add->setObjectName("addtool");
    QObject::connect(add, &QMenu::aboutToShow, &window,
                     [add, &session, &window] { ToolPanel::FillAddMenu(*add, session, &window); });
    const auto onTool = [&session](std::function<void(Operator&)> run) {
        return [&session, run] {
            if (Operator* tool = session.SelectedTool())
                run(*tool);
        };
    };
    b.Add("Add at the &Pointer...", QKeySequence("Shift+Space"), "addtoolmenu",
          [&window] { window.Tools().PopUpAddMenu(); });
    std::vector<QAction*> forTool;
    const auto addForTool = [&](const char* text, const char* keys, const char* name,
                                std::function<void()> run) {
        forTool.push_back(b.Add(text, QKeySequence(keys), name, std::move(run)));
    };
    addForTool("&Duplicate", "Ctrl+D", "duplicatetool", onTool([&session, &window](Operator& tool) {
                   QString error;
                   if (!session.DuplicateTool(tool, &error))
                       ShowError(&window, error);
               }));
    addForTool("&Remove", "Ctrl+Backspace", "removetool",
               [&window] { window.Tools().RemoveSelected(); });
    addForTool("Re&name", "F2", "renametool", [&window] { window.Tools().RenameSelected(); });
    addForTool("&Enable or Disable", "Ctrl+P", "enabletool",
               onTool([](Operator& tool) { tool.DisableTool(!tool.IsDisabled()); }));
    addForTool("&Lock or Unlock", "Ctrl+L", "locktool",
               onTool([](Operator& tool) { tool.SetLocked(!tool.IsLocked()); }));
    b.menu->addSeparator();
    QMenu* links = b.menu->addMenu(b.Tr("&Connect"));
    links->setObjectName("connecttool");
    QObject::connect(links, &QMenu::aboutToShow, &window,
                     [links, &session] { ToolPanel::FillConnectMenu(*links, session); });
    b.menu->addSeparator();
    addForTool("Move &Up", "Ctrl+Up", "toolup", [&window] { window.Tools().MoveSelected(-1); });
    addForTool("Move Do&wn", "Ctrl+Down", "tooldown",
               [&window] { window.Tools().MoveSelected(1); });
    const auto show = [forTool, linked = links->menuAction()](const Operator* tool) {
        for (QAction* action : forTool)
            action->setEnabled(tool);
        linked->setEnabled(tool && takesImage(*tool));
    };
    QObject::connect(&session, &Session::SelectedToolChanged, &window, show);
    show(session.SelectedTool());
    QObject::connect(&window.Tools(), &ToolPanel::MenuAsked, b.menu,
                     [menu = b.menu](const QPoint& at) { menu->popup(at); });
}

/// The same key again goes back to colour.
void showChannel(ViewerWidget& viewer, ChannelView channel)
{
    viewer.SetChannelView(viewer.Channels() == channel ? ChannelView::Color : channel);
}

void buildChannels(Builder& b)
{
    MainWindow& window = b.window;
    auto* channels = new QActionGroup(&b.window);
    const struct {
        const char* text;
        const char* key;
        const char* name;
        ChannelView channel;
    } views[] = {
        {"&Colour", "C", "channelcolour", ChannelView::Color},
        {"&Red", "R", "channelred", ChannelView::Red},
        {"&Green", "G", "channelgreen", ChannelView::Green},
        {"&Blue", "B", "channelblue", ChannelView::Blue},
        {"A&lpha", "A", "channelalpha", ChannelView::Alpha},
        {"L&uminance", "L", "channelluminance", ChannelView::Luminance},
    };
    for (const auto& view : views) {
        QAction* action =
            b.Add(view.text, QKeySequence(view.key), view.name, [&window, channel = view.channel] {
                showChannel(window.ActiveViewer(), channel);
            });
        action->setCheckable(true);
        channels->addAction(action);
    }
    const auto show = [channels, &window] {
        channels->actions().at(int(window.ActiveViewer().Channels()))->setChecked(true);
    };
    QObject::connect(&window, &MainWindow::ViewerSettingsChanged, channels, show);
    show();
}

/// A menu entry that shows and changes a switch of the active viewer.
void addSwitch(Builder& b, const char* text, const char* keys, const char* name,
               bool (ViewerWidget::*is)() const, void (ViewerWidget::*set)(bool))
{
    MainWindow& window = b.window;
    QAction* action = b.Add(text, QKeySequence(keys), name, [&window, is, set] {
        ViewerWidget& viewer = window.ActiveViewer();
        (viewer.*set)(!(viewer.*is)());
    });
    action->setCheckable(true);
    const auto show = [action, &window, is] { action->setChecked((window.ActiveViewer().*is)()); };
    QObject::connect(&window, &MainWindow::ViewerSettingsChanged, action, show);
    show();
}

void buildView(Builder& b)
{
    MainWindow& window = b.window;
    const auto onViewer = [&window](auto run) {
        return [&window, run] { run(window.ActiveViewer()); };
    };
    b.Start("&View", "viewmenu");
    b.Add("&Fit", QKeySequence("F"), "fit", onViewer([](ViewerWidget& viewer) { viewer.Fit(); }));
    b.Add("&Actual Pixels", QKeySequence("1"), "actualpixels",
          onViewer([](ViewerWidget& viewer) { viewer.SetZoom(1.0); }));
    b.Add("Zoom &In", QKeySequence("+"), "zoomin",
          onViewer([](ViewerWidget& viewer) { viewer.ZoomBy(1.25); }));
    b.Add("Zoom &Out", QKeySequence("-"), "zoomout",
          onViewer([](ViewerWidget& viewer) { viewer.ZoomBy(0.8); }));
    b.menu->addSeparator();
    buildChannels(b);
    b.menu->addSeparator();
    b.Add("Exposure &Up", QKeySequence("Ctrl+]"), "exposureup",
          onViewer([](ViewerWidget& viewer) { viewer.SetExposure(viewer.Exposure() + 0.5); }));
    b.Add("Exposure &Down", QKeySequence("Ctrl+["), "exposuredown",
          onViewer([](ViewerWidget& viewer) { viewer.SetExposure(viewer.Exposure() - 0.5); }));
    b.Add("&Normal Exposure", QKeySequence("Ctrl+\\"), "exposurenormal",
          onViewer([](ViewerWidget& viewer) { viewer.SetExposure(0.0); }));
    b.menu->addSeparator();
    addSwitch(b, "Che&querboard", "K", "checker", &ViewerWidget::IsCheckerShown,
              &ViewerWidget::ShowChecker);
    addSwitch(b, "O&verlays", "H", "overlays", &ViewerWidget::AreOverlaysShown,
              &ViewerWidget::ShowOverlays);
    addSwitch(b, "Outline of the &Image", "O", "windows", &ViewerWidget::AreWindowsShown,
              &ViewerWidget::ShowWindows);
    b.menu->addSeparator();
    b.Add("Ne&w Viewer", QKeySequence("Ctrl+Shift+V"), "newviewer",
          [&window] { window.AddViewer(); });
    for (QDockWidget* dock : window.findChildren<QDockWidget*>()) {
        QAction* action = dock->toggleViewAction();
        action->setObjectName("show" + dock->objectName());
        b.menu->addAction(action);
        if (dock->objectName() == "consoledock")
            action->setShortcut(QKeySequence("Ctrl+`"));
    }
    QAction* full = b.Add("F&ull Screen", QKeySequence("F11"), "fullscreen", [&window] {
        window.setWindowState(window.windowState() ^ Qt::WindowFullScreen);
    });
    full->setCheckable(true);
}

void buildTime(Builder& b)
{
    Session& session = b.session;
    MarloxDoc& document = session.Document();
    b.Start("Ti&me", "timemenu");
    b.Add("&Play or Stop", QKeySequence("Space"), "playtoggle",
          [&session] { session.Play(!session.IsPlaying()); });
    b.menu->addSeparator();
    b.Add("P&revious Frame", QKeySequence("Alt+Left"), "previousframe",
          [&session] { session.StepBy(-1.0); });
    b.Add("&Next Frame", QKeySequence("Alt+Right"), "nextframe",
          [&session] { session.StepBy(1.0); });
    b.Add("&First Frame", QKeySequence("Alt+Home"), "firstframetime",
          [&session, &document] { session.StepTo(document.FirstFrame()); });
    b.Add("&Last Frame", QKeySequence("Alt+End"), "lastframetime",
          [&session, &document] { session.StepTo(document.LastFrame()); });
    b.menu->addSeparator();
    b.Add("Previous &Key", QKeySequence("Ctrl+Left"), "previouskeytime",
          [&session] { session.GoToKey(-1); });
    b.Add("Next K&ey", QKeySequence("Ctrl+Right"), "nextkeytime",
          [&session] { session.GoToKey(1); });
    b.Add("Remove Keys &Here", {}, "removekeys",
          [&session, &document] { session.RemoveKeys(document.CurrentTime()); });
}

void buildHelp(Builder& b)
{
    MainWindow& window = b.window;
    b.Start("&Help", "helpmenu");
    b.Add("&About", {}, "about", [&window] { ShowAbout(&window); });
}

} // namespace

void BuildMenus(MainWindow& window)
{
    Builder builder{window, window.GetSession()};
    buildFile(builder);
    buildEdit(builder);
    buildTool(builder);
    buildView(builder);
    buildTime(builder);
    buildHelp(builder);
}

} // namespace Marlox
