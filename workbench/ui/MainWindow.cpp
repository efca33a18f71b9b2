#include "workbench/ui/MainWindow.h"

#include "system/controls/ControlWnd.h"
#include "system/document/Preferences.h"
#include "system/widgets/ElideLabel.h"
#include "workbench/images/ImageFile.h"
#include "workbench/scripting/ScriptHost.h"
#include "workbench/ui/ConsolePanel.h"
#include "workbench/ui/InspectorPanel.h"
#include "workbench/ui/MainWindowMenus.h"
#include "workbench/ui/Messages.h"
#include "workbench/ui/PreferencesDlg.h"
#include "workbench/ui/TimelinePanel.h"
#include "workbench/ui/ToolPanel.h"
#include "workbench/ui/ViewerPane.h"
#include "workbench/viewer/ControlColors.h"
#include "workbench/viewer/ViewerWidget.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMimeData>
#include <QStatusBar>
#include <QTimer>
#include <QUndoView>
#include <QVBoxLayout>

namespace Marlox {

namespace {

constexpr char geometryName[] = "Workbench.WindowGeometry";
constexpr char stateName[] = "Workbench.WindowState";
constexpr int stateVersion = 1;

/// With ~ for the home folder.
QString ShortPath(const QString& path)
{
    const QString home = QDir::homePath() + u'/';
    return path.startsWith(home) ? QStringLiteral("~/") + path.mid(home.size()) : path;
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent), tools_(new ToolPanel(session_)),
      inspector_(new InspectorPanel(session_)), timeline_(new TimelinePanel(session_)),
      scripts_(std::make_unique<ScriptHost>(*this)), console_(new ConsolePanel(*scripts_)),
      where_(new ElideLabel)
{
    setObjectName("mainwindow");
    setAcceptDrops(true);
    setDockOptions(AnimatedDocks | AllowTabbedDocks | AllowNestedDocks);
    resize(1440, 900);
    statusBar()->setObjectName("statusbar");
    statusBar()->setContentsMargins(8, 0, 0, 0);
    where_->setObjectName("documentpath");
    statusBar()->addWidget(where_, 1);

    BuildDocks();
    BuildMenus(*this);
    ApplyPreferences(session_.Document());

    MarloxDoc& document = session_.Document();
    connect(&document, &MarloxDoc::ModifiedChanged, this, &MainWindow::ShowTitle);
    connect(&document, &MarloxDoc::FilePathChanged, this, &MainWindow::ShowTitle);
    connect(inspector_, &InspectorPanel::Problem, this, [this](const QString& text) {
        statusBar()->showMessage(text, 10000);
        console_->Append(text, true);
    });
    connect(&document, &MarloxDoc::Cleared, this, [this, &document] {
        for (const QString& note : document.LoadNotes())
            console_->Append(note);
        if (!document.LoadNotes().isEmpty())
            statusBar()->showMessage(document.LoadNotes().join(' '), 10000);
    });
    connect(&document, &MarloxDoc::AutosaveFailed, this,
            [this](const QString& error) { statusBar()->showMessage(error, 10000); });
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget* old, QWidget* now) {
        if (old)
            old->removeEventFilter(this);
        for (ViewerPane* pane : panes_) {
            if (now && pane->isAncestorOf(now))
                Activate(pane->Viewer());
        }
        if (qobject_cast<QAbstractButton*>(now) || qobject_cast<QComboBox*>(now))
            now->installEventFilter(this);
    });
    if (const QString problem = Viewer().Transform().Problem(); !problem.isEmpty()) {
        statusBar()->showMessage(problem);
        console_->Append(problem, true);
    }
    ShowTitle();

    const Preferences& preferences = MarloxDoc::GetPreferences();
    restoreGeometry(preferences.Get(geometryName).toByteArray());
    restoreState(preferences.Get(stateName).toByteArray(), stateVersion);
    Viewer().setFocus();
}

MainWindow::~MainWindow()
{
    // The controls go before the document that their inputs belong to.
    inspector_->Page().SetOperator(nullptr);
    qApp->disconnect(this); // the focus moves while the rest goes
    for (ViewerPane* pane : std::exchange(panes_, {}))
        delete pane;
    delete console_;
    scripts_.reset();
}

void MainWindow::BuildDocks()
{
    auto* middle = new QWidget;
    auto* layout = new QVBoxLayout(middle);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* pane = new ViewerPane(session_);
    layout->addWidget(pane, 1);
    layout->addWidget(timeline_);
    setCentralWidget(middle);
    Adopt(*pane);
    new ControlColors(pane->Viewer());

    const auto dock = [this](const QString& title, const char* name, QWidget* content,
                             Qt::DockWidgetArea area) {
        auto* made = new QDockWidget(title);
        made->setObjectName(name);
        made->setWidget(content);
        addDockWidget(area, made);
        return made;
    };
    auto* history = new QUndoView(&session_.Document().Undo().Stack());
    history->setObjectName("history");
    history->setEmptyLabel(tr("Opened"));
    history->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // long texts are elided
    auto* tools = dock(tr("Tools"), "toolsdock", tools_, Qt::LeftDockWidgetArea);
    dock(tr("History"), "historydock", history, Qt::LeftDockWidgetArea);
    auto* inspector = dock(tr("Inspector"), "inspectordock", inspector_, Qt::RightDockWidgetArea);
    auto* console = dock(tr("Script Console"), "consoledock", console_, Qt::BottomDockWidgetArea);
    console->hide();
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    resizeDocks({tools, inspector}, {240, 400}, Qt::Horizontal);
}

void MainWindow::Adopt(ViewerPane& pane)
{
    panes_.push_back(&pane);
    ViewerWidget& viewer = pane.Viewer();
    connect(&viewer.Overlays(), &OverlayStage::ValueWritten, this, &MainWindow::OverlayWrote);
    connect(&viewer, &ViewerWidget::SettingsChanged, this, [this, &viewer] {
        if (&viewer == active_)
            emit ViewerSettingsChanged();
    });
    connect(&pane, &QObject::destroyed, this, [this, &pane, &viewer] {
        std::erase(panes_, &pane);
        if (&viewer == active_ && !panes_.empty())
            Activate(Viewer());
    });
    if (!active_)
        Activate(viewer);
}

void MainWindow::Activate(ViewerWidget& viewer)
{
    if (std::exchange(active_, &viewer) == &viewer)
        return;
    emit ActiveViewerChanged();
    emit ViewerSettingsChanged();
}

ViewerWidget& MainWindow::Viewer()
{
    return panes_.front()->Viewer();
}

std::vector<ViewerWidget*> MainWindow::Viewers() const
{
    std::vector<ViewerWidget*> viewers;
    for (ViewerPane* pane : panes_)
        viewers.push_back(&pane->Viewer());
    return viewers;
}

ViewerWidget& MainWindow::AddViewer()
{
    auto* pane = new ViewerPane(session_);
    int number = 2; // the first that none has: others may have been closed
    const auto name = [&number] { return QStringLiteral("viewerdock%1").arg(number); };
    while (findChild<QDockWidget*>(name()))
        ++number;
    auto* dock = new QDockWidget(tr("Viewer %1").arg(number), this);
    dock->setObjectName(name());
    dock->setAttribute(Qt::WA_DeleteOnClose);
    dock->setWidget(pane);
    addDockWidget(Qt::TopDockWidgetArea, dock);
    dock->setFloating(true);
    dock->resize(720, 480);
    Adopt(*pane);
    dock->show();
    return pane->Viewer();
}

void MainWindow::ShowTitle()
{
    const QString path = session_.Document().FilePath();
    setWindowTitle(QString("%1[*] - %2")
                       .arg(path.isEmpty() ? tr("Untitled") : QFileInfo(path).fileName(),
                            QCoreApplication::applicationName()));
    setWindowFilePath(path);
    setWindowModified(session_.Document().IsModified());
    where_->SetText(path.isEmpty() ? tr("Not saved yet") : ShortPath(path));
}

void MainWindow::OpenPath(const QString& path)
{
    if (!MayLoseChanges())
        return;
    QString error;
    const QString reading = tr("Reading %1").arg(path);
    statusBar()->showMessage(reading);
    ReadingDlg dialog(this, reading);
    const bool opened =
        session_.Open(path, &error, [&](RenderContext& file) { dialog.Watch(file); });
    dialog.hide();
    if (statusBar()->currentMessage() == reading) // else it tells about what was read
        statusBar()->clearMessage();
    if (!opened && !error.isEmpty())
        ShowError(this, error);
}

void MainWindow::New()
{
    if (MayLoseChanges())
        session_.New();
}

void MainWindow::OpenAsked()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Open"), QFileInfo(session_.Document().FilePath()).absolutePath(),
        tr("Documents and images (*.marlox *.%1)").arg(ReadableImageEndings().join(" *.")) + ";;" +
            tr("All files (*)"),
        nullptr, QFileDialog::HideNameFilterDetails);
    if (!path.isEmpty())
        OpenPath(path);
}

bool MainWindow::SaveAsked(bool askForPath)
{
    QString path = session_.Document().FilePath();
    if (path.isEmpty() || askForPath) {
        path = QFileDialog::getSaveFileName(this, tr("Save As"), path, tr("Documents (*.marlox)"));
        if (path.isEmpty())
            return false;
        if (QFileInfo(path).suffix().isEmpty())
            path += ".marlox";
    }
    QString error;
    if (!session_.Save(path, &error)) {
        ShowError(this, error);
        return false;
    }
    return true;
}

bool MainWindow::MayLoseChanges()
{
    if (!session_.Document().IsModified())
        return true;
    const QString path = session_.Document().FilePath();
    switch (AskToSave(this, path.isEmpty() ? tr("the document") : QFileInfo(path).fileName())) {
    case SaveChoice::Save:
        return SaveAsked(false);
    case SaveChoice::Discard:
        return true;
    case SaveChoice::Cancel:
        break;
    }
    return false;
}

void MainWindow::OfferRecovery()
{
    const QStringList files = MarloxDoc::RecoveryFiles(RecoveryFolder());
    if (files.isEmpty())
        return;
    QString error;
    switch (AskToRecover(this, int(files.size()))) {
    case RecoveryChoice::Open:
        if (!session_.Recover(files.first(), &error))
            ShowError(this, error);
        break;
    case RecoveryChoice::Discard:
        for (const QString& file : files)
            QFile::remove(file);
        break;
    case RecoveryChoice::Later:
        break;
    }
}

/// The keys of the time, wherever nothing else has a use for them.
void MainWindow::keyPressEvent(QKeyEvent* event)
{
    const MarloxDoc& document = session_.Document();
    if (event->modifiers() & ~Qt::KeypadModifier)
        return QMainWindow::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Left:
        return session_.StepBy(-1.0);
    case Qt::Key_Right:
        return session_.StepBy(1.0);
    case Qt::Key_Home:
        return session_.StepTo(document.FirstFrame());
    case Qt::Key_End:
        return session_.StepTo(document.LastFrame());
    default:
        QMainWindow::keyPressEvent(event);
    }
}

/// Space works a button or a choice that has the keyboard focus; elsewhere it plays.
bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Space && key->modifiers() == Qt::NoModifier) {
            key->accept();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!MayLoseChanges()) {
        event->ignore();
        return;
    }
    session_.Play(false);
    inspector_->Page().EndGestures();
    session_.Document().StopAutosave();
    Preferences& preferences = MarloxDoc::GetPreferences();
    preferences.Set(geometryName, saveGeometry());
    preferences.Set(stateName, saveState(stateVersion));
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.first().isLocalFile())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile())
        return;
    event->acceptProposedAction();
    // The program that the file was dragged from waits until this returns, so questions come later.
    QTimer::singleShot(0, this, [this, path = urls.first().toLocalFile()] { OpenPath(path); });
}

} // namespace Marlox
