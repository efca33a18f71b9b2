#include "controls/polyline/ImportShapeDlg.h"
#include "controls/polyline/OnionSkinningDlg.h"
#include "controls/polyline/PolyKeyListDlg.h"
#include "controls/polyline/PolyPreferences.h"
#include "host/controls/Probe.h"
#include "script/ScriptSystem.h"
#include "system/document/Preferences.h"
#include "system/resources/LookStyle.h"
#include "system/resources/Resources.h"
#include "system/widgets/CustomCheckBox.h"
#include "system/widgets/TimeCodeEdit.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QTreeView>
#include <QtTest>

using namespace Marlox;

namespace {

using Skins = OnionSkinTimes;
using Times = std::vector<double>;

template <class Widget>
Widget& part(QDialog& dialog, const char* name)
{
    return *dialog.findChild<Widget*>(name);
}

void press(QDialog& dialog, QDialogButtonBox::StandardButton which)
{
    part<QDialogButtonBox>(dialog, "m_OKCancel").button(which)->click();
}

void check(QDialog& dialog, const char* name, bool on)
{
    if (part<CustomCheckBox>(dialog, name).isChecked() != on)
        part<CustomCheckBox>(dialog, name).click();
}

void type(QDialog& dialog, const char* name, const char* text)
{
    auto& edit = part<TimeCodeEdit>(dialog, name);
    edit.setText(text);
    edit.Commit();
}

/// A document whose tool has an input with keys at 0, 10 and 20, and the list of them.
struct KeyStage {
    KeyStage()
    {
        SetProbeInputs([](Operator& tool) {
            tool.AddInput("Value", TagList({{IAS_Name, "Value"}}));
        });
        tool = document->AddTool("ProbeTool");
        input = tool->FindInput("Value");
        Animation animation;
        for (const double time : {0.0, 10.0, 20.0})
            animation.SetKey(time, MakeRef<Number>(time));
        input->SetAnimation(animation);
        document->Undo().Clear();
        dialog = std::make_unique<PolyKeyListDlg>();
        dialog->SetInput(input);
        dialog->show();
        dialog->activateWindow();
        (void)QTest::qWaitForWindowActive(dialog.get());
    }
    QTreeView& List() const { return part<QTreeView>(*dialog, "m_KeyList"); }
    Times Keys() const
    {
        Times times;
        for (const auto& [time, key] : input->GetAnimation().Keys())
            times.push_back(time);
        return times;
    }
    Times Rows() const
    {
        Times times;
        for (int row = 0; row < List().model()->rowCount(); ++row)
            times.push_back(List().model()->index(row, 0).data(Qt::UserRole).toDouble());
        return times;
    }
    /// Selects keys, the first of them the one that has the keyboard.
    void Select(const Times& times) const
    {
        const Times rows = Rows();
        const auto row = std::find(rows.begin(), rows.end(), times.front()) - rows.begin();
        List().setCurrentIndex(List().model()->index(int(row), 0));
        dialog->SelectTimes(times);
        List().setFocus();
    }
    /// Types a time in the place of the present key's.
    void Retime(const char* text) const
    {
        QTest::keyClick(&List(), Qt::Key_F2);
        auto* edit = qobject_cast<TimeCodeEdit*>(QApplication::focusWidget());
        QVERIFY(edit);
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
    QString State() const { return part<QLabel>(*dialog, "m_StateLabel").text(); }
    int Entries() const { return document->Undo().Stack().count(); }

    std::unique_ptr<MarloxDoc> document = std::make_unique<MarloxDoc>();
    Operator* tool = nullptr;
    Input* input = nullptr;
    std::unique_ptr<PolyKeyListDlg> dialog;
};

} // namespace

class PolylineDialogsTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void SkinTimes_data();
    void SkinTimes();
    void SkinPreferences();
    void OnionSkinSetUp();
    void OnionSkinTakesEdits();
    void OnionSkinRefusesWhatIsNoNumber();
    void ImportChoices();
    void DialogsWithoutLayout();
    void KeysFollow();
    void KeyEdits();
    void KeysAreRetimed();
    void PartnersGoAlong();
    void LockedKeys();
    void KeysOutliveTheirInput();
    void KeyListKeepsItsPlace();
};

void PolylineDialogsTest::initTestCase()
{
    InstallScripting();
    ApplyLook(*qApp);
}

void PolylineDialogsTest::SkinTimes_data()
{
    QTest::addColumn<int>("flags");
    QTest::addColumn<bool>("anchored");
    QTest::addColumn<double>("current");
    QTest::addColumn<Times>("before");
    QTest::addColumn<Times>("after");
    // Two skins a side, 5 frames apart; anchor 12, keys 0, 10, 20, 30; frames 0 to 25.
    QTest::newRow("all") << 3 << false << 12.0 << Times{7, 2} << Times{17, 22};
    QTest::newRow("0 is all") << 0 << false << 12.0 << Times{7, 2} << Times{17, 22};
    QTest::newRow("before") << 1 << false << 12.0 << Times{7, 2} << Times{};
    QTest::newRow("after") << 2 << false << 12.0 << Times{} << Times{17, 22};
    QTest::newRow("frames end") << 3 << false << 2.0 << Times{} << Times{7, 12};
    QTest::newRow("anchored") << 3 << true << 18.0 << Times{17, 12, 7, 2} << Times{22};
    QTest::newRow("on a skin") << 2 << true << 17.0 << Times{12} << Times{22};
    QTest::newRow("keys") << 0x43 << false << 12.0 << Times{10, 0} << Times{20};
    QTest::newRow("on a key") << 0x43 << false << 10.0 << Times{0} << Times{20};
    QTest::newRow("anchored keys") << 0x41 << true << 5.0 << Times{0} << Times{10, 12};
}

void PolylineDialogsTest::SkinTimes()
{
    QFETCH(int, flags);
    QFETCH(bool, anchored);
    QFETCH(double, current);
    OnionSkinSettings settings{2, 5.0f, std::uint16_t(flags), anchored};
    const Times keys{0, 10, 20, 30};
    const Skins skins = OnionSkinsAt(settings, current, 12.0, keys, 0.0, 25.0);
    QTEST(skins.before, "before");
    QTEST(skins.after, "after");
}

void PolylineDialogsTest::SkinPreferences()
{
    const OnionSkinSettings usual;
    for (const QString& name : Preferences::Global().Names())
        Preferences::Global().Remove(name);
    QVERIFY(OnionSkinSettings::FromPreferences() == usual);
    const OnionSkinSettings other{7, 0.5f, 0x1c1, true, true};
    other.ToPreferences();
    QVERIFY(OnionSkinSettings::FromPreferences() == other);
    // What somebody wrote into the file by hand.
    Preferences::Global().Set(PREF_DefOnionSkinCount, -4);
    Preferences::Global().Set(PREF_DefOnionSkinStep, "nan");
    Preferences::Global().Set(PREF_DefOnionSkinRange, 9);
    const OnionSkinSettings mended = OnionSkinSettings::FromPreferences();
    QCOMPARE(mended.count, 0u);
    QCOMPARE(mended.step, usual.step);
    QCOMPARE(mended.SkinRange(), OnionSkinSettings::All);
}

void PolylineDialogsTest::OnionSkinSetUp()
{
    const OnionSkinSettings none{4, 2.5f, 0};
    OnionSkinningDlg plain(none, 24.0);
    QCOMPARE(plain.windowTitle(), QString("Onion Skin"));
    QVERIFY(part<QRadioButton>(plain, "m_RadioSkinAll").isChecked()); // 0 means all
    QCOMPARE(part<TimeCodeEdit>(plain, "m_EditSkinCount").text(), QString("4"));
    QCOMPARE(part<TimeCodeEdit>(plain, "m_EditSkinStep").text(), QString("2.5"));
    const char* checks[] = {"m_CheckKeySkin", "m_CheckShowHull", "m_CheckPointPlot",
                            "m_CheckOnionAnchor", "m_CheckSetCurrentTime"};
    for (const char* name : checks)
        QVERIFY2(!part<CustomCheckBox>(plain, name).isChecked(), name);
    press(plain, QDialogButtonBox::Ok);
    QVERIFY(plain.Settings() == none); // untouched flags stay as they came

    for (int i = 0; i < 5; ++i) {
        const std::uint16_t bits[] = {0x41, 0x81, 0x101, 1, 1};
        OnionSkinningDlg one({1, 1.0f, bits[i], i == 3, i == 4}, 24.0);
        QVERIFY(part<QRadioButton>(one, "m_RadioSkinPrev").isChecked());
        for (int at = 0; at < 5; ++at)
            QCOMPARE(part<CustomCheckBox>(one, checks[at]).isChecked(), at == i);
    }
    Preferences::Global().Set(TimeCodeEdit::PreferenceName, true);
    OnionSkinningDlg timed({50, 50.0f, 3}, 25.0);
    QCOMPARE(part<TimeCodeEdit>(timed, "m_EditSkinCount").text(), QString("00:00:02:00"));
    QCOMPARE(part<TimeCodeEdit>(timed, "m_EditSkinStep").text(), QString("00:00:02:00"));
    Preferences::Global().Remove(TimeCodeEdit::PreferenceName);
}

void PolylineDialogsTest::OnionSkinTakesEdits()
{
    OnionSkinningDlg dialog({3, 1.0f, 0x203}, 24.0); // with a bit it does not know
    type(dialog, "m_EditSkinCount", "2*3");
    type(dialog, "m_EditSkinStep", "0.5");
    part<QRadioButton>(dialog, "m_RadioSkinNext").click();
    for (const char* name : {"m_CheckKeySkin", "m_CheckPointPlot", "m_CheckShowHull",
                             "m_CheckOnionAnchor", "m_CheckSetCurrentTime"})
        check(dialog, name, true);
    QVERIFY(!part<TimeCodeEdit>(dialog, "m_EditSkinStep").isEnabled()); // keys have their own
    press(dialog, QDialogButtonBox::Ok);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY((dialog.Settings() == OnionSkinSettings{6, 0.5f, 0x3c2, true, true}));
}

void PolylineDialogsTest::OnionSkinRefusesWhatIsNoNumber()
{
    OnionSkinningDlg dialog({3, 1.0f, 3}, 24.0);
    dialog.show();
    for (const char* text : {"few", "time*2"}) {
        type(dialog, "m_EditSkinCount", text);
        press(dialog, QDialogButtonBox::Ok);
        QVERIFY(dialog.isVisible());
        QVERIFY(part<TimeCodeEdit>(dialog, "m_EditSkinCount").IsUnreadable());
    }
    part<TimeCodeEdit>(dialog, "m_EditSkinCount").setText("5"); // typed, not yet taken
    press(dialog, QDialogButtonBox::Ok);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.Settings().count, 5u);
}

void PolylineDialogsTest::ImportChoices()
{
    ImportShapeDlg empty(0);
    QCOMPARE(empty.windowTitle(), QString("Import Shapes"));
    QCOMPARE(part<QComboBox>(empty, "m_ImportIndexCombo").count(), 1);
    QCOMPARE(part<QComboBox>(empty, "m_ImportIndexCombo").currentText(), QString("none"));
    QVERIFY(empty.Choice() == ImportShapeChoice{});

    ImportShapeDlg dialog(3, {"Arm", "Head"});
    auto& combo = part<QComboBox>(dialog, "m_ImportIndexCombo");
    QStringList entries;
    for (int i = 0; i < combo.count(); ++i)
        entries += combo.itemText(i);
    QCOMPARE(entries, QStringList({"0", "1", "2", "none"}));
    QVERIFY((dialog.Choice() == ImportShapeChoice{0, false}));
    combo.setCurrentIndex(1);
    QCOMPARE(part<QLabel>(dialog, "m_ImportNameLabel").text(), QString("Name: Head"));
    check(dialog, "m_ImportAllCheck", true);
    QVERIFY((dialog.Choice() == ImportShapeChoice{1, true}));
    combo.setCurrentIndex(3);
    QVERIFY((dialog.Choice() == ImportShapeChoice{{}, true}));
    press(dialog, QDialogButtonBox::Cancel);
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
}

void PolylineDialogsTest::DialogsWithoutLayout()
{
    const QString folder = LookPack::Global().Folder();
    QTemporaryDir bare;
    QVERIFY(QFile(bare.filePath("colours.lua")).open(QIODevice::WriteOnly));
    QVERIFY(LookPack::Global().Use(bare.path()));
    ImportShapeDlg dialog(2);
    dialog.show();
    const QRect combo = part<QWidget>(dialog, "m_ImportIndexCombo").geometry();
    const QRect buttons = part<QWidget>(dialog, "m_OKCancel").geometry();
    QVERIFY(LookPack::Global().Use(folder));
    QVERIFY(combo.height() > 0 && combo.bottom() < buttons.top());
}

// The list of keys --------------------------------------------------------------------------------

void PolylineDialogsTest::KeysFollow()
{
    KeyStage stage;
    QCOMPARE(stage.Rows(), (Times{0, 10, 20}));
    stage.Select({10});
    stage.input->AddKey(5, Interpolation::Step);
    QCOMPARE(stage.Rows(), (Times{0, 5, 10, 20}));
    QCOMPARE(stage.dialog->SelectedTimes(), Times{10}); // the key, not the row
    QCOMPARE(stage.List().model()->index(1, 1).data().toString(), QString("Step"));
    stage.document->Undo().Undo();
    QCOMPARE(stage.Rows(), (Times{0, 10, 20}));
    // The key at the current time has a mark of its own.
    const auto mark = [&](int row) {
        return stage.List().model()->index(row, 0).data(Qt::DecorationRole).value<QPixmap>();
    };
    stage.document->SetCurrentTime(20);
    QCOMPARE(mark(0).toImage(), mark(1).toImage());
    QVERIFY(mark(1).toImage() != mark(2).toImage());
}

void PolylineDialogsTest::KeyEdits()
{
    KeyStage stage;
    stage.Select({10});
    QTest::keyClick(&stage.List(), Qt::Key_Return);
    QCOMPARE(stage.document->CurrentTime(), 10.0);
    QVERIFY(stage.dialog->isVisible());
    const QRect row = stage.List().visualRect(stage.List().model()->index(2, 1));
    QTest::mouseClick(stage.List().viewport(), Qt::LeftButton, {}, row.center());
    QTest::mouseDClick(stage.List().viewport(), Qt::LeftButton, {}, row.center());
    QCOMPARE(stage.document->CurrentTime(), 20.0);
    QCOMPARE(stage.Entries(), 0);

    auto& kind = part<QComboBox>(*stage.dialog, "m_KindCombo");
    stage.Select({0, 20});
    QCOMPARE(kind.currentText(), QString("Smooth"));
    kind.setCurrentIndex(0);
    emit kind.activated(0);
    QCOMPARE(stage.Entries(), 1);
    const auto& keys = stage.input->GetAnimation().Keys();
    QVERIFY(keys.at(0).interpolation == Interpolation::Step);
    QVERIFY(keys.at(10).interpolation == Interpolation::Smooth);
    QVERIFY(keys.at(20).interpolation == Interpolation::Step);
    stage.Select({0, 10});
    QCOMPARE(kind.currentIndex(), -1); // they differ

    stage.Select({0, 10});
    QTest::keyClick(&stage.List(), Qt::Key_Delete);
    QCOMPARE(stage.Keys(), Times{20});
    QCOMPARE(stage.dialog->SelectedTimes(), Times{20}); // so that Delete can go on
    QTest::keyClick(&stage.List(), Qt::Key_Delete);
    QVERIFY(!stage.input->IsAnimated());
    QCOMPARE(stage.input->GetNumber(0), 20.0);
    QCOMPARE(stage.State(), QString("The shape has no keys."));
    QCOMPARE(stage.Entries(), 3);
    for (int i = 0; i < 3; ++i)
        stage.document->Undo().Undo();
    QCOMPARE(stage.Rows(), (Times{0, 10, 20}));
    QVERIFY(keys.at(0).interpolation == Interpolation::Smooth);
}

void PolylineDialogsTest::KeysAreRetimed()
{
    KeyStage stage;
    stage.Select({10});
    stage.Retime("12");
    QCOMPARE(stage.Keys(), (Times{0, 12, 20}));
    QCOMPARE(stage.input->GetNumber(12), 10.0);
    QCOMPARE(stage.Entries(), 1);
    stage.Select({12, 20}); // both go along, the one onto the other's place
    stage.Retime("20");
    QCOMPARE(stage.Keys(), (Times{0, 20, 28}));
    QCOMPARE(stage.dialog->SelectedTimes(), (Times{20, 28}));
    stage.Select({20});
    stage.Retime("28"); // taken
    QCOMPARE(stage.State(), QString("There is a key at 28 already."));
    stage.Retime("then");
    QCOMPARE(stage.State(), QString("\"then\" is no time."));
    stage.Retime("1e300");
    QCOMPARE(stage.State(), QString("Keys lie between frames -1000000 and 1000000."));
    stage.Retime("20"); // where it is
    QCOMPARE(stage.Keys(), (Times{0, 20, 28}));
    QCOMPARE(stage.Entries(), 2);
    QCOMPARE(stage.document->CurrentTime(), 0.0); // Enter ended the edit, and went nowhere
}

/// Another input has keys, too: those at the same times are edited, while it is the partner.
void PolylineDialogsTest::PartnersGoAlong()
{
    KeyStage stage;
    Input& other = stage.tool->AddInput(
        "Other", TagList({{IAS_DataType, CLSID_DataType_Number}, {IAS_Name, "Other"}}));
    const auto times = [&other] {
        Times all;
        for (const auto& [time, key] : other.GetAnimation().Keys())
            all.push_back(time);
        return all;
    };
    Animation animation;
    for (const double time : {10.0, 15.0, 20.0})
        animation.SetKey(time, MakeRef<Number>(time));
    other.SetAnimation(animation);
    stage.document->Undo().Clear();
    Input* partner = &other;
    stage.dialog->SetPartner([&partner] { return partner; });
    stage.dialog->SetInput(stage.input, "Inner");
    QCOMPARE(stage.dialog->windowTitle(), QString("Poly Keys: ProbeTool1 (Inner)"));
    stage.Select({0, 10});
    stage.Retime("5"); // the other one's key at 15 is in the way of its key at 10
    QCOMPARE(stage.State(), QString("There is a key at 15 already."));
    QCOMPARE(stage.Keys(), (Times{0, 10, 20}));
    stage.Select({10});
    stage.Retime("12");
    QCOMPARE(stage.Keys(), (Times{0, 12, 20}));
    QCOMPARE(times(), (Times{12, 15, 20}));
    stage.Select({20});
    QTest::keyClick(&stage.List(), Qt::Key_Delete);
    QCOMPARE(times(), (Times{12, 15}));
    QCOMPARE(stage.Entries(), 2);
    stage.document->Undo().Undo();
    stage.document->Undo().Undo();
    QCOMPARE(stage.Keys(), (Times{0, 10, 20}));
    QCOMPARE(times(), (Times{10, 15, 20}));
    partner = nullptr;
    stage.Select({10});
    stage.Retime("12");
    QCOMPARE(times(), (Times{10, 15, 20}));
}

void PolylineDialogsTest::LockedKeys()
{
    KeyStage stage;
    stage.tool->SetLocked(true);
    stage.Select({10});
    QVERIFY(!part<QWidget>(*stage.dialog, "m_DeleteButton").isEnabled());
    QTest::keyClick(&stage.List(), Qt::Key_Delete);
    QTest::keyClick(&stage.List(), Qt::Key_F2);
    QVERIFY(!stage.dialog->findChild<TimeCodeEdit*>("m_EditKeyTime"));
    QCOMPARE(stage.Keys(), (Times{0, 10, 20}));
    QTest::keyClick(&stage.List(), Qt::Key_Return); // looking is free
    QCOMPARE(stage.document->CurrentTime(), 10.0);
}

void PolylineDialogsTest::KeysOutliveTheirInput()
{
    KeyStage stage;
    stage.Select({10});
    stage.document->RemoveTool(*stage.tool);
    QVERIFY(!stage.dialog->GetInput());
    QVERIFY(stage.Rows().empty());
    stage.dialog->OnDelete();
    stage.dialog->OnGoTo();
    stage.document->Undo().Undo();
    QCOMPARE(stage.Rows(), (Times{0, 10, 20}));
    stage.document->Clear();
    QVERIFY(stage.Rows().empty());
    KeyStage other;
    other.Select({10});
    QTest::keyClick(&other.List(), Qt::Key_F2); // with an edit open
    other.document.reset();
    QVERIFY(!other.dialog->GetInput());
    QVERIFY(other.Rows().empty());
}

void PolylineDialogsTest::KeyListKeepsItsPlace()
{
    KeyStage stage;
    stage.dialog->move(120, 90);
    stage.dialog.reset();
    QCOMPARE(Preferences::Global().Get(PREF_PolyKeyListDlgLeft).toInt(), 120);
    QCOMPARE(KeyStage().dialog->pos(), QPoint(120, 90));
    Preferences::Global().Set(PREF_PolyKeyListDlgLeft, -9000); // a screen that is gone
    const KeyStage moved;
    QVERIFY(moved.dialog->screen()->availableGeometry().contains(moved.dialog->geometry()));
}

QTEST_MAIN(PolylineDialogsTest)
#include "polyline_dialogs_test.moc"
