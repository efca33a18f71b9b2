#include "system/controls/HostDialogs.h"
#include "system/document/Preferences.h"
#include "system/resources/LookStyle.h"
#include "system/widgets/TimeCodeEdit.h"

#include <functional>

#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

using namespace Marlox;

namespace {

/// Deals with the next dialog, of type T, once it is up.
template <class T>
void answerNext(std::function<void(T&)> answer)
{
    QTimer::singleShot(0, qApp, [answer] {
        auto* dialog = dynamic_cast<T*>(QApplication::activeModalWidget());
        if (dialog)
            answer(*dialog);
        else if (QWidget* other = QApplication::activeModalWidget())
            other->close(); // the test goes on, and fails
    });
}

void press(QDialog& dialog, QDialogButtonBox::StandardButton which)
{
    dialog.findChild<QDialogButtonBox*>()->button(which)->click();
}

/// Types a name as a user does, and takes it.
void takeFile(QFileDialog& dialog, const QString& name)
{
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
    static_cast<QDialog&>(dialog).findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)
        ? press(dialog, QDialogButtonBox::Save)
        : press(dialog, QDialogButtonBox::Open);
}

class Silent : public HostDialogs {
public:
    void Message(Kind, const QString& text, const QString&) override { told = text; }
    Answer Ask(const QString&, const QString&, bool) override { return Answer::No; }
    std::optional<QString> AskText(const TextRequest&) override { return {}; }
    std::optional<double> AskNumber(const NumberRequest&) override { return {}; }
    QString OpenFile(const FileRequest&) override { return {}; }
    QString SaveFile(const FileRequest&) override { return {}; }
    std::optional<MxColor> ChooseColor(const ColorRequest&) override { return {}; }
    QString told;
};

} // namespace

class HostDialogsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { ApplyLook(*qApp); }
    void Filters_data();
    void Filters();
    void Names();
    void AnotherServiceAnswers();
    void Questions();
    void LongDetailsAreFolded();
    void TextsAndNumbers();
    void FilesAreSavedWithTheirExtension();
    void FoldersAreKept();
    void Colors();
};

void HostDialogsTest::Filters_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("one") << "Polyline Files (*.dfmo)|*.dfmo||"
                         << QStringList("Polyline Files (*.dfmo)");
    QTest::newRow("two patterns") << "Polyline Files (*.nuke;*.nk)|*.nuke;*.nk||"
                                  << QStringList("Polyline Files (*.nuke *.nk)");
    QTest::newRow("two filters") << "Motion|*.mot|All (any) (*.*)|*.*||"
                                 << QStringList({"Motion (*.mot)", "All (any) (*.*)"});
    QTest::newRow("two lists") << "A (*.a)|*.a||All Files (*)|*||"
                               << QStringList({"A (*.a)", "All Files (*)"});
    QTest::newRow("brackets in words")
        << "Shapes (old)|*.ssf||" << QStringList("Shapes (old) (*.ssf)");
    QTest::newRow("unfinished") << "A (*.a)|*.a|B" << QStringList("A (*.a)");
    QTest::newRow("empty") << "" << QStringList();
}

void HostDialogsTest::Filters()
{
    QFETCH(QString, filter);
    QTEST(HostDialogs::QtFilters(filter), "shown");
}

void HostDialogsTest::Names()
{
    const auto extended = [](const char* path) {
        return HostDialogs::WithDefaultExtension(path, ".dfmo");
    };
    QCOMPARE(extended("/shots/walk"), QString("/shots/walk.dfmo"));
    QCOMPARE(extended("/shots.v2/walk"), QString("/shots.v2/walk.dfmo"));
    QCOMPARE(extended("/shots/walk.txt"), QString("/shots/walk.txt"));
    QCOMPARE(extended("/shots/walk."), QString("/shots/walk."));
    QCOMPARE(extended(""), QString());
    QCOMPARE(HostDialogs::ValidFileName(" a/b:c*. "), QString("a_b_c_"));
    QCOMPARE(HostDialogs::ValidFileName(".."), QString("_"));
}

void HostDialogsTest::AnotherServiceAnswers()
{
    Silent silent;
    HostDialogs& usual = HostDialogs::Get();
    QVERIFY(!HostDialogs::Install(&silent));
    HostDialogs::Get().Message(HostDialogs::Kind::Warning, "Heard");
    QCOMPARE(silent.told, QString("Heard"));
    QCOMPARE(HostDialogs::Install(nullptr), &silent);
    QCOMPARE(&HostDialogs::Get(), &usual);
}

void HostDialogsTest::Questions()
{
    QWidget window;
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QString text;
    const QWidget* over = nullptr;
    const auto ask = [&](QMessageBox::StandardButton button, bool cancel) {
        answerNext<QMessageBox>([&, button](QMessageBox& box) {
            text = box.text() + '/' + box.informativeText();
            over = box.parentWidget();
            button == QMessageBox::NoButton ? box.reject() : box.button(button)->click();
        });
        return HostDialogs::Get().Ask("Go on?", "It takes long.", cancel);
    };
    QVERIFY(ask(QMessageBox::Yes, true) == HostDialogs::Answer::Yes);
    QCOMPARE(text, QString("Go on?/It takes long."));
    QCOMPARE(over, &window);
    QVERIFY(ask(QMessageBox::No, true) == HostDialogs::Answer::No);
    QVERIFY(ask(QMessageBox::NoButton, true) == HostDialogs::Answer::Cancel);
    QVERIFY(ask(QMessageBox::NoButton, false) == HostDialogs::Answer::No);
}

void HostDialogsTest::LongDetailsAreFolded()
{
    const auto tell = [](const QString& details) {
        QString shown;
        QString all;
        answerNext<QMessageBox>([&](QMessageBox& box) {
            shown = box.informativeText();
            all = box.detailedText();
            box.reject(); // as Escape does
        });
        HostDialogs::Get().Message(HostDialogs::Kind::Information, "Read.", details);
        return QStringList({shown, all});
    };
    QCOMPARE(tell("one\ntwo"), QStringList({"one\ntwo", ""}));
    const QString many = QString("a line\n").repeated(99) + "the last";
    const QStringList told = tell(many);
    QVERIFY(told[0].count('\n') < 20);
    QVERIFY(told[0].endsWith("…"));
    QCOMPARE(told[1], many);
}

void HostDialogsTest::TextsAndNumbers()
{
    HostDialogs::TextRequest name{"Name", "A name:", "old"};
    name.problem = [](const QString& text) { return text.isEmpty() ? "Empty" : QString(); };
    answerNext<QDialog>([](QDialog& dialog) {
        auto* field = dialog.findChild<QLineEdit*>("text");
        QCOMPARE(field->selectedText(), QString("old"));
        field->clear();
        press(dialog, QDialogButtonBox::Ok);
        QVERIFY(dialog.isVisible()); // it won't do
        field->setText("new");
        press(dialog, QDialogButtonBox::Ok);
    });
    QCOMPARE(HostDialogs::Get().AskText(name).value_or("none"), QString("new"));
    answerNext<QDialog>([](QDialog& dialog) { dialog.reject(); });
    QVERIFY(!HostDialogs::Get().AskText(name));

    HostDialogs::NumberRequest number{"Size", "Pixels:", 8.0, 1.0, 16.0, true};
    const auto type = [&](const char* text) {
        answerNext<QDialog>([text](QDialog& dialog) {
            dialog.findChild<TimeCodeEdit*>("number")->setText(text);
            press(dialog, QDialogButtonBox::Ok);
            if (dialog.isVisible())
                dialog.reject();
        });
        return HostDialogs::Get().AskNumber(number).value_or(-1.0);
    };
    QCOMPARE(type("*1.5"), 12.0);
    QCOMPARE(type("100"), 16.0);
    QCOMPARE(type("many"), -1.0);
}

void HostDialogsTest::FilesAreSavedWithTheirExtension()
{
    QTemporaryDir folder;
    HostDialogs::FileRequest request{"Export", "Polyline Files (*.dfmo)|*.dfmo||", ".dfmo"};
    request.fileName = folder.filePath("Polygon1");
    const auto save = [&](const QString& typed) {
        answerNext<QFileDialog>([typed](QFileDialog& dialog) {
            QCOMPARE(dialog.nameFilters(), QStringList("Polyline Files (*.dfmo)"));
            QCOMPARE(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), QString("Polygon1"));
            typed.isEmpty() ? dialog.reject() : takeFile(dialog, typed);
        });
        return HostDialogs::Get().SaveFile(request);
    };
    QCOMPARE(save("walk"), folder.filePath("walk.dfmo"));
    QCOMPARE(save("walk.txt"), folder.filePath("walk.txt"));
    QCOMPARE(save({}), QString());

    int chosen = -1; // of several filters the one chosen tells it
    request.filter = "Shapes (*.dfsh)|*.dfsh|Nuke (*.nk)|*.nk;*.nuke|All|*.*||";
    request.defaultExtension.clear();
    request.filterChosen = &chosen;
    const auto saveAs = [&](int filter) {
        answerNext<QFileDialog>([filter](QFileDialog& dialog) {
            auto* box = dialog.findChild<QComboBox*>("fileTypeCombo");
            for (int i = 0; i < filter; ++i)
                QTest::keyClick(box, Qt::Key_Down);
            takeFile(dialog, "walk");
        });
        return HostDialogs::Get().SaveFile(request);
    };
    QCOMPARE(saveAs(0), folder.filePath("walk.dfsh"));
    QCOMPARE(saveAs(1), folder.filePath("walk.nk"));
    QCOMPARE(chosen, 1);
    answerNext<QFileDialog>([](QFileDialog& dialog) { // chosen by no hand
        dialog.selectNameFilter("Nuke (*.nk *.nuke)");
        takeFile(dialog, "walk");
    });
    QCOMPARE(HostDialogs::Get().SaveFile(request), folder.filePath("walk.nk"));
    QCOMPARE(saveAs(2), folder.filePath("walk"));
}

void HostDialogsTest::FoldersAreKept()
{
    Preferences& preferences = Preferences::Global();
    preferences.Remove("Paths.Test");
    QVERIFY(QFileInfo(HostDialogs::FolderOf("Test")).isDir());
    QVERIFY(preferences.Get("Paths.Test").isValid());

    QTemporaryDir folder;
    QFile file(folder.filePath("a.dfsh"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    HostDialogs::FileRequest request{"Import", "Polyline Files (*.dfsh)|*.dfsh||"};
    request.pathId = "Test";
    answerNext<QFileDialog>([&](QFileDialog& dialog) {
        dialog.selectFile(file.fileName());
        static_cast<QDialog&>(dialog).done(QDialog::Accepted);
    });
    QCOMPARE(HostDialogs::Get().OpenFile(request), file.fileName());
    QCOMPARE(HostDialogs::FolderOf("Test"), folder.path());
    const QString gone = folder.path();
    folder.remove();
    QVERIFY(HostDialogs::FolderOf("Test") != gone);
}

void HostDialogsTest::Colors()
{
    std::vector<MxColor> previewed;
    HostDialogs::ColorRequest request{"Handles", {10, 20, 30}};
    request.preview = [&](const MxColor& color) { previewed.push_back(color); };
    const auto choose = [&](bool accept) {
        answerNext<QColorDialog>([accept](QColorDialog& dialog) {
            dialog.setCurrentColor(QColor(40, 50, 60));
            accept ? dialog.accept() : dialog.reject();
        });
        return HostDialogs::Get().ChooseColor(request);
    };
    QVERIFY(choose(true) == MxColor(40, 50, 60));
    QVERIFY(previewed.back() == MxColor(40, 50, 60));
    QVERIFY(!choose(false));
    QVERIFY(previewed.back() == MxColor(10, 20, 30));
}

QTEST_MAIN(HostDialogsTest)
#include "HostDialogsTest.moc"
