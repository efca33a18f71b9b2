// Shows Qt's widgets in the look of a look pack and writes the picture, for the eye of whoever
// works on it. QT_SCALE_FACTOR=2 gives it as a dense screen shows it.
//   marlox-look-gallery <look pack> <picture.png>

#include "script/ScriptSystem.h"
#include "system/resources/LookStyle.h"
#include "system/resources/Resources.h"

#include <cstdio>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFile>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSpinBox>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>

using namespace Marlox;

namespace {

QIcon Icon(const char* name)
{
    QIcon icon;
    for (const double ratio : {1.0, 2.0}) {
        icon.addPixmap(ResDIB::PixmapOf(name, ratio));
    }
    return icon;
}

QWidget* Buttons()
{
    auto* box = new QGroupBox("Buttons");
    auto* grid = new QGridLayout(box);
    auto* standard = new QPushButton("Default");
    standard->setDefault(true);
    auto* pressed = new QPushButton("Pressed");
    pressed->setDown(true);
    auto* disabled = new QPushButton("Disabled");
    disabled->setEnabled(false);
    grid->addWidget(new QPushButton("Plain"), 0, 0);
    grid->addWidget(standard, 0, 1);
    grid->addWidget(pressed, 1, 0);
    grid->addWidget(disabled, 1, 1);
    int row = 2;
    for (const Qt::CheckState state : {Qt::Unchecked, Qt::PartiallyChecked, Qt::Checked}) {
        auto* check = new QCheckBox("Check box");
        check->setTristate(true);
        check->setCheckState(state);
        auto* radio = new QRadioButton("Radio button");
        radio->setAutoExclusive(false);
        radio->setChecked(state == Qt::Checked);
        radio->setEnabled(state != Qt::PartiallyChecked);
        grid->addWidget(check, row, 0);
        grid->addWidget(radio, row++, 1);
    }
    return box;
}

QWidget* Fields()
{
    auto* box = new QGroupBox("Fields");
    auto* grid = new QGridLayout(box);
    auto* empty = new QLineEdit;
    empty->setPlaceholderText("Placeholder");
    auto* disabled = new QLineEdit("Disabled");
    disabled->setEnabled(false);
    auto* combo = new QComboBox;
    combo->addItems({"Combo box", "Second"});
    auto* typed = new QComboBox;
    typed->setEditable(true);
    typed->addItem("Editable");
    auto* slider = new QSlider(Qt::Horizontal);
    slider->setValue(40);
    auto* progress = new QProgressBar;
    progress->setValue(53);
    auto* selected = new QLineEdit("Selected text");
    selected->setObjectName("focus");
    QWidget* all[] = {selected,           empty,  disabled, combo, typed,
                      new QDoubleSpinBox, slider, progress};
    int place = 0;
    for (QWidget* widget : all) {
        grid->addWidget(widget, place / 2, place % 2);
        ++place;
    }
    return box;
}

QWidget* Lists()
{
    auto* splitter = new QSplitter;
    auto* tree = new QTreeWidget;
    tree->setHeaderLabels({"Tool", "State"});
    for (const char* name : {"Loader", "Gain", "Blur"}) {
        auto* item = new QTreeWidgetItem(tree, {name, "enabled"});
        item->setIcon(1, Icon("Icons.Workbench.Eye"));
        item->setCheckState(0, Qt::Checked);
        new QTreeWidgetItem(item, {"Input", "image"});
        item->setExpanded(true);
    }
    tree->setCurrentItem(tree->topLevelItem(1));
    auto* list = new QListWidget;
    list->setAlternatingRowColors(true);
    for (int i = 0; i < 30; ++i) {
        list->addItem(QStringLiteral("Row %1").arg(i));
    }
    splitter->addWidget(tree);
    splitter->addWidget(list);
    return splitter;
}

QMenu* FillMenu(QMenu* menu)
{
    menu->addAction(
        Icon("Icons.Workbench.Undo"), "&Undo", [] {}, QKeySequence::Undo);
    menu->addAction(
            "&Redo", [] {}, QKeySequence::Redo)
        ->setEnabled(false);
    menu->addSeparator();
    QAction* check = menu->addAction("Show &handles");
    check->setCheckable(true);
    check->setChecked(true);
    menu->addMenu("More")->addAction("Entry");
    return menu;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s <look pack> <picture.png>\n", argv[0]);
        return 2;
    }
    QApplication application(argc, argv);
    InstallScripting();
    QString error;
    if (!LookPack::Global().Use(QFile::decodeName(argv[1]), &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    ApplyLook(application);

    QMainWindow window;
    FillMenu(window.menuBar()->addMenu("&File"));
    window.menuBar()->addMenu("&Edit");
    QToolBar* bar = window.addToolBar("Tools");
    for (const char* name : {"Open", "Save", "Undo", "Redo", "Lock", "Fit", "Zoom", "Channel"}) {
        const std::string full = std::string("Icons.Workbench.") + name;
        QAction* action = bar->addAction(Icon(full.c_str()), name);
        action->setCheckable(true);
        action->setChecked(full.ends_with("Lock"));
        action->setEnabled(!full.ends_with("Redo"));
    }
    auto* tabs = new QTabWidget;
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    grid->addWidget(Buttons(), 0, 0);
    grid->addWidget(Fields(), 0, 1);
    grid->addWidget(Lists(), 1, 0, 1, 2);
    auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    grid->addWidget(box, 2, 0, 1, 2);
    tabs->addTab(page, "Inspector");
    tabs->addTab(new QPlainTextEdit, "Console");
    window.setCentralWidget(tabs);
    auto* dock = new QDockWidget("Dock");
    dock->setWidget(FillMenu(new QMenu));
    window.addDockWidget(Qt::RightDockWidgetArea, dock);
    window.statusBar()->showMessage("Status bar");
    window.resize(860, 620);
    window.show();
    auto* focus = window.findChild<QLineEdit*>("focus");
    focus->setFocus();
    focus->selectAll();
    int status = 1;
    QTimer::singleShot(200, &application, [&] {
        status = window.grab().save(QFile::decodeName(argv[2])) ? 0 : 1;
        for (const QString& problem : LookPack::Global().TakeProblems()) {
            std::fprintf(stderr, "%s\n", qPrintable(problem));
        }
        application.quit();
    });
    application.exec();
    return status;
}
