#include "workbench/ui/MainWindowMenus.h"

#include "workbench/ui/ExportDlg.h"
#include "workbench/ui/Icons.h"
#include "workbench/ui/MainWindow.h"
#include "workbench/ui/Messages.h"
#include "workbench/ui/PreferencesDlg.h"
#include "workbench/ui/ToolPanel.h"
#include "workbench/viewer/ViewerWidget.h"

#include <functional>

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

    void Start(const char* title) { menu = window.menuBar()->addMenu(Tr(title)); }

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
    b.Start("&File");
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
    b.Add("Save &As...", QKeySequence::SaveAs, "saveas", [&window] { window.SaveAsked(true); });
    b.Add("&Render to Files...", QKeySequence("Ctrl+E"), "render",
          [&window] { ExportDlg(window.GetSession(), &window).exec(); });
    b.menu->addSeparator();
    b.Add("&Preferences...", QKeySequence("Ctrl+,"), "preferences",
          [&window] { PreferencesDlg(window.GetSession().Document(), &window).exec(); });
    b.menu->addSeparator();
    b.Add("&Quit", QKeySequence::Quit, "quit", [&window] { window.close(); });
}

void buildEdit(Builder& b)
{
    b.Start("&Edit");
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

void buildTool(Builder& b)
{
    MainWindow& window = b.window;
    Session& session = b.session;
    b.Start("&Tool");
    QMenu* add = b.menu->addMenu(b.Tr("&Add"));
    add->setObjectName("addtool");
    QObject::connect(add, &QMenu::aboutToShow, &window, [add, &session, &window] {
        add->clear();
        ToolPanel::FillAddMenu(*add, session, &window);
    });
    const auto onTool = [&session](std::function<void(Operator&)> run) {
        return [&session, run] {
            if (Operator* tool = session.SelectedTool())
                run(*tool);
        };
    };
    b.Add("&Duplicate", QKeySequence("Ctrl+D"), "duplicatetool",
          onTool([&session, &window](Operator& tool) {
              QString error;
              if (!session.DuplicateTool(tool, &error))
                  ShowError(&window, error);
          }));
    b.Add("&Remove", QKeySequence("Ctrl+Backspace"), "removetool",
          [&window] { window.Tools().RemoveSelected(); });
    b.Add("Re&name", QKeySequence("F2"), "renametool",
          [&window] { window.Tools().RenameSelected(); });
    b.Add("&Enable or Disable", QKeySequence("Ctrl+P"), "enabletool",
          onTool([](Operator& tool) { tool.DisableTool(!tool.IsDisabled()); }));
    b.Add("&Lock or Unlock", QKeySequence("Ctrl+L"), "locktool",
          onTool([](Operator& tool) { tool.SetLocked(!tool.IsLocked()); }));
    b.menu->addSeparator();
    const auto move = [&session](int by) {
        return [&session, by](Operator& tool) {
            session.Document().MoveTool(tool, session.Document().IndexOf(tool) + by);
        };
    };
    b.Add("Move &Up", QKeySequence("Ctrl+Up"), "toolup", onTool(move(-1)));
    b.Add("Move Do&wn", QKeySequence("Ctrl+Down"), "tooldown", onTool(move(1)));
}

void buildView(Builder& b)
{
    MainWindow& window = b.window;
    ViewerWidget& viewer = window.Viewer();
    b.Start("&View");
    b.Add("&Fit", QKeySequence("F"), "fit", [&viewer] { viewer.Fit(); });
    b.Add("&Actual Pixels", QKeySequence("1"), "actualpixels", [&viewer] { viewer.SetZoom(1.0); });
    b.Add("Zoom &In", QKeySequence("+"), "zoomin", [&viewer] { viewer.ZoomBy(1.25); });
    b.Add("Zoom &Out", QKeySequence("-"), "zoomout", [&viewer] { viewer.ZoomBy(0.8); });
    b.menu->addSeparator();
    auto* channels = new QActionGroup(&window);
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
            b.Add(view.text, QKeySequence(view.key), view.name,
                  [&viewer, channel = view.channel] { viewer.SetChannelView(channel); });
        action->setCheckable(true);
        action->setChecked(view.channel == ChannelView::Color);
        channels->addAction(action);
    }
    b.menu->addSeparator();
    b.Add("Exposure &Up", QKeySequence("Ctrl+]"), "exposureup",
          [&viewer] { viewer.SetExposure(viewer.Exposure() + 0.5); });
    b.Add("Exposure &Down", QKeySequence("Ctrl+["), "exposuredown",
          [&viewer] { viewer.SetExposure(viewer.Exposure() - 0.5); });
    b.Add("&Normal Exposure", QKeySequence("Ctrl+\\"), "exposurenormal",
          [&viewer] { viewer.SetExposure(0.0); });
    b.menu->addSeparator();
    for (QDockWidget* dock : window.findChildren<QDockWidget*>())
        b.menu->addAction(dock->toggleViewAction());
}

void buildTime(Builder& b)
{
    Session& session = b.session;
    MarloxDoc& document = session.Document();
    b.Start("Ti&me");
    b.Add("&Play or Stop", QKeySequence("Space"), "playtoggle",
          [&session] { session.Play(!session.IsPlaying()); });
    b.Add("P&revious Frame", QKeySequence("Alt+Left"), "previousframe",
          [&document] { document.SetCurrentTime(document.CurrentTime() - 1.0); });
    b.Add("&Next Frame", QKeySequence("Alt+Right"), "nextframe",
          [&document] { document.SetCurrentTime(document.CurrentTime() + 1.0); });
    b.Add("Previous &Key", QKeySequence("Ctrl+Left"), "previouskeytime",
          [&session] { session.GoToKey(-1); });
    b.Add("Next K&ey", QKeySequence("Ctrl+Right"), "nextkeytime",
          [&session] { session.GoToKey(1); });
    b.Add("&First Frame", QKeySequence("Alt+Home"), "firstframetime",
          [&document] { document.SetCurrentTime(document.FirstFrame()); });
    b.Add("&Last Frame", QKeySequence("Alt+End"), "lastframetime",
          [&document] { document.SetCurrentTime(document.LastFrame()); });
}

void buildHelp(Builder& b)
{
    MainWindow& window = b.window;
    b.Start("&Help");
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
