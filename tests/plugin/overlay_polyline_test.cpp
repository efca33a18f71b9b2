// Modes, menus, keys, settings.

#include "plugin/PolyRig.h"
#include "system/controls/Menu.h"
#include "system/viewer/ToolbarEvents.h"

#include <algorithm>
#include <cstring>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QTimer>
#include <QtTest>

using namespace Marlox;

namespace {

struct Services final : ViewServices {
    void PressEvent(u32 number) override { pressed.push_back(number); }
    void TakeFocus(PreviewControl&) override { ++focused; }
    std::vector<u32> pressed;
    int focused = 0;
};

void Write(const std::vector<Menu::Entry>& entries, int depth, QString& text)
{
    for (const Menu::Entry& entry : entries) {
        if (entry.text.isEmpty())
            continue;
        text += QString(depth * 2, ' ') + entry.text + '\n';
        Write(entry.children, depth + 1, text);
    }
}

} // namespace

class OverlayPolylineTest : public QObject {
    Q_OBJECT
private slots:
    void DrawModeKeepsItsHighHalf();
    void ModesTellTheView();
    void MenuAndToolbarInOrder();
    void KeysOfTheKeyboard();
    void ArrowKeysShift();
    void LockedToolsTakeNothing();
    void TipsNamePolygons();
    void RotoSettingsAreAsked();
    void ColorsBeginWithWhatShows();
    void OnionSettingsShowMeanwhile();
    void StateComesBack();
    void PlacedByItsTool();
    void WhatIsSetOutlivesTheSelection();
};

void OverlayPolylineTest::DrawModeKeepsItsHighHalf()
{
    PolyRig rig;
    QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
    ScriptVal state = ScriptVal::MakeTable();
    state.Set("ExportOption", 5);
    QVERIFY(rig.Poly().RestoreState(state));
    rig.SetMode(ModifyOnly);
    QCOMPARE(rig.Poly().GetAttr(PLC_DrawMode), int64(0x54));
    rig.SetMode(0x71); // the tag's low half counts
    QCOMPARE(rig.Poly().GetAttr(PLC_DrawMode), int64(0x51));
    rig.SetMode(9); // there is no such mode
    QCOMPARE(rig.Poly().GetAttr(PLC_DrawMode), int64(0x51));
}

void OverlayPolylineTest::ModesTellTheView()
{
    PolyRig rig;
    rig.SetSquare();
    Services services;
    rig.View().services = &services;
    rig.SetMode(ModifyOnly);
    rig.SetMode(InsertAndModify);
    rig.Key(Qt::Key_N);
    auto& pressed = services.pressed; // each telling of the mode presses its button
    pressed.erase(std::unique(pressed.begin(), pressed.end()), pressed.end());
    QCOMPARE(pressed, (std::vector<u32>{0x20011, 0x20010, 0x20012}));
    QCOMPARE(rig.InputOf("Polyline").GetAttr(PLC_DrawMode), int64(Done)); // stored with the input
    QCOMPARE(services.focused, 0);
    rig.Key(Qt::Key_C);
    rig.Key(Qt::Key_N);
    rig.Key(Qt::Key_D);
    QCOMPARE(services.focused, 1); // once
    rig.View().services = nullptr;
}

void OverlayPolylineTest::MenuAndToolbarInOrder()
{
    PolyRig rig;
    rig.SetSquare();
    Menu menu;
    TagList tags;
    rig.Poly().AddToMenu(&menu, tags);
    QString text;
    Write(menu.Entries(), 0, text);
    for (const ToolbarButton& button : ToolbarOf(rig.Poly())) {
        text += QStringLiteral("[%1] %2 %3\n").arg(button.text, button.tip, button.icon);
        if (!button.popDown)
            continue;
        Menu popDown;
        TagList event{{TB_Event, button.event}};
        rig.Poly().AddToMenu(&popDown, event);
        Write(popDown.Entries(), 1, text);
    }
    QFile golden(QStringLiteral(MARLOX_SOURCE_DIR "/tests/golden/polyline_menus.txt"));
    QVERIFY(golden.open(QIODevice::ReadOnly));
    QCOMPARE(text, QString::fromUtf8(golden.readAll()));
}

void OverlayPolylineTest::KeysOfTheKeyboard()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QVERIFY(rig.Key(Qt::Key_P)); // nothing is selected: the curve goes
    QVERIFY(rig.Drawn().find("strip") == std::string::npos);
    rig.Key(Qt::Key_P, 0); // by the key's code
    QVERIFY(rig.Key(Qt::Key_A));
    QVERIFY(rig.Key(Qt::Key_S));
    QCOMPARE(rig.UndoText(), QString("Smooth Polyline"));
    QVERIFY(rig.Shape()->GetPoint(0)->outX != 0.0);
    QVERIFY(rig.Key(Qt::Key_L));
    QCOMPARE(rig.UndoText(), QString("Linear Polyline"));
    QVERIFY(rig.Key(Qt::Key_Z));
    QCOMPARE(rig.UndoText(), QString("Flip Points"));
    QCOMPARE(rig.Place(0), std::string("200 200"));
    QVERIFY(rig.Key(Qt::Key_T));
    QCOMPARE(rig.UndoText(), QString("Tag Points"));
    QVERIFY(rig.Key(Qt::Key_P));
    QCOMPARE(rig.UndoText(), QString("Publish Points"));
    QCOMPARE(rig.Shape()->Links().size(), std::size_t(4));
    QVERIFY(rig.Key(Qt::Key_P));
    QCOMPARE(rig.UndoText(), QString("Unpublishing points"));
    for (const int key :
         {Qt::Key_G, Qt::Key_J, Qt::Key_Q, Qt::Key_U, Qt::Key_V, Qt::Key_W, Qt::Key_Y})
        QVERIFY(!rig.Key(key));
    QVERIFY(!rig.Key(Qt::Key_F, 0)); // the view's
    const int entries = rig.UndoEntries();
    rig.Key(Qt::Key_N);
    for (const int key : {Qt::Key_X, Qt::Key_T, Qt::Key_P, Qt::Key_E}) // nothing when done
        rig.Key(key);
    QCOMPARE(rig.UndoEntries(), entries);
    rig.SetMode(ModifyOnly);
    QVERIFY(rig.Key(Qt::Key_X));
    QCOMPARE(rig.UndoText(), QString("Cut Points"));
    QCOMPARE(rig.Count(), 0);
}

void OverlayPolylineTest::ArrowKeysShift()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QVERIFY(!rig.Key(Qt::Key_Left, 0)); // nothing is selected
    rig.Click({200, 100});
    rig.stage->KeyDown(Qt::Key_Left, 0);
    rig.stage->KeyDown(Qt::Key_Left, 0);
    rig.stage->KeyDown(Qt::Key_Down, KeyShift);
    rig.stage->KeyUpAll();
    QCOMPARE(rig.Place(0), std::string("198 90"));
    QCOMPARE(rig.UndoTexts(), QStringList("Shift points"));
    rig.Key(Qt::Key_PageDown, 0);
    rig.Key(Qt::Key_Up, 0); // ten pixels now
    QCOMPARE(rig.Place(0), std::string("198 100"));
    const double x = rig.Shape()->GetPoint(0)->x;
    rig.Key(Qt::Key_Right, KeyControl); // divided by the factor
    QVERIFY(std::abs(rig.Shape()->GetPoint(0)->x - x - 0.1 / 400) < 1e-12);
}

void OverlayPolylineTest::LockedToolsTakeNothing()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.stage->Press({200, 100}, 0);
    rig.tool->SetLocked(true); // in mid-drag
    rig.document->Undo().Clear();
    rig.stage->Move({250, 120}, 0);
    rig.stage->Release({250, 120}, 0);
    rig.Key(Qt::Key_A);
    rig.Key(Qt::Key_Delete, 0);
    QVERIFY(!RunEntry(rig, "Linear"));
    QCOMPARE(rig.UndoEntries(), 0);
    QCOMPARE(rig.Place(0), std::string("200 100"));
}

void OverlayPolylineTest::TipsNamePolygons()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    QCOMPARE(TipOf(rig, {200, 100}), QString("Polyline"));
    rig.SetSquare("Polyline2", 0.4);
    QCOMPARE(TipOf(rig, {200, 100}), QString("Polyline Inner"));
    QCOMPARE(TipOf(rig, rig.At(0.1, 0.1)), QString("Polyline Outer"));
    rig.Click({200, 100});
    rig.Key(Qt::Key_P);
    QVERIFY(TipOf(rig, {200, 100}).startsWith("Polyline Inner Point"));
    std::array<char, 256> tip{};
    tip.fill('x');
    QVERIFY(rig.Poly().ControlGetTip(&rig.View(), tip.data(), nullptr));
    QVERIFY(std::memchr(tip.data(), 0, tip.size()));
}

void OverlayPolylineTest::RotoSettingsAreAsked()
{
    PolyRig rig;
    rig.SetSquare();
    AnsweringDialogs dialogs;
    dialogs.texts = {"17", "0", "12px"};
    QVERIFY(RunEntry(rig, "Distance 4…"));
    const QString refusal = "Please choose a number between 1 and 16";
    QCOMPARE(dialogs.said,
             QStringList({"Distance=4", refusal, "Distance=4", refusal, "Distance=4"}));
    QCOMPARE(rig.UndoTexts(), QStringList("Set distance"));
    dialogs.texts = {"12"}; // as it is
    QVERIFY(RunEntry(rig, "Distance 12…"));
    QCOMPARE(rig.UndoEntries(), 1);
    dialogs.said.clear();
    dialogs.texts = {"11", "x", "10"};
    QVERIFY(RunEntry(rig, "Frame Skip"));
    QCOMPARE(dialogs.said.filter("between 1 and 10").size(), 2);
    QCOMPARE(rig.UndoText(), QString("Track Frame Skip"));
    TagList tags;
    for (const auto& [event, text] : {std::pair(0x20067u, "Enable auto-roto"),
                                      {0x20067u, "Disable auto-roto"},
                                      {0x2006fu, "Reset auto-roto"}}) {
        QVERIFY(rig.Poly().HandleEvent(nullptr, ViewerEvent(event), tags));
        QCOMPARE(rig.UndoText(), QString(text));
    }
    rig.document->Undo().Undo();
    QVERIFY(RunEntry(rig, "Distance 12…")); // undo brought it back
}

void OverlayPolylineTest::ColorsBeginWithWhatShows()
{
    PolyRig rig;
    rig.SetSquare();
    AnsweringDialogs dialogs;
    rig.View().colors[std::size_t(OverlayColor::Normal)] = MxColor(16, 32, 48);
    for (const char* entry :
         {"Custom Spline Color…", "Custom Key Point Color…", "Custom Handle Color…"}) {
        const QString title = QString::fromUtf8(entry).remove(u'…');
        dialogs.said.clear();
        QVERIFY(RunEntry(rig, QString::fromUtf8(entry))); // cancelled
        dialogs.color = MxColor(0, 0, 0);                 // also a colour
        QVERIFY(RunEntry(rig, QString::fromUtf8(entry)));
        dialogs.color.reset();
        QVERIFY(RunEntry(rig, QString::fromUtf8(entry)));
        QCOMPARE(dialogs.said,
                 QStringList({title + "=#102030", title + "=#102030", title + "=#000000"}));
    }
    QVERIFY(RunEntry(rig, "Set prev skin color"));
    QVERIFY(dialogs.said.last() != "Set prev skin color=#102030"); // has a tint of its own
}

void OverlayPolylineTest::OnionSettingsShowMeanwhile()
{
    PolyRig rig("Polyline", true);
    rig.SetSquare();
    for (const double time : {0.0, 20.0})
        rig.InputOf("Polyline").AddKey(time);
    rig.document->SetCurrentTime(10.0);
    QVERIFY(RunEntry(rig, "Onion skin"));
    const std::string before = rig.Drawn();
    const auto run = [&rig](bool accept) {
        std::string meanwhile;
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            dialog->findChild<QAbstractButton*>("m_RadioSkinPrev")->click();
            meanwhile = rig.Drawn();
            accept ? dialog->accept() : dialog->reject();
        });
        RunEntry(rig, "Onion skin settings…");
        return meanwhile;
    };
    const std::string fewer = run(false);
    QVERIFY(fewer.size() < before.size());
    QCOMPARE(rig.Drawn(), before);
    run(true);
    QCOMPARE(rig.Drawn(), fewer);
}

void OverlayPolylineTest::StateComesBack()
{
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.Drag({{180, 80}, {420, 120}});
    QVERIFY(RunEntry(rig, "Point Numbers"));
    ScriptVal state;
    QVERIFY(rig.Poly().SaveState(state));
    const std::string drawn = rig.Drawn();
    rig.Key(Qt::Key_N);
    QVERIFY(RunEntry(rig, "Point Numbers"));
    QVERIFY(rig.Drawn() != drawn);
    QVERIFY(rig.Poly().RestoreState(state));
    QCOMPARE(rig.Drawn(), drawn);
    rig.Poly().CleanupState(state);
    QVERIFY(!rig.Poly().RestoreState(state));
}

void OverlayPolylineTest::PlacedByItsTool()
{
    constexpr u32 PLCID_Center = 0x80058000;
    PolyRig rig;
    rig.SetSquare();
    rig.SetMode(ModifyOnly);
    rig.InputOf("Polyline").SetAttrsTagList(TagList({{PLCID_Center, "Center"}}));
    rig.SetPoint("Center", 0.6, 0.5);
    rig.Drag({{240, 100}, {250, 100}}); // where it is shown
    QCOMPARE(rig.Place(0), std::string("210 100"));
    // A size that leaves nothing of the shape: nothing can be thrown out of the world by it.
    constexpr u32 PLCID_Size = 0x80058002;
    rig.InputOf("Polyline").SetAttrsTagList(TagList({{PLCID_Size, "Size"}}));
    rig.InputOf("Size").SetValue(Number(1e-310), 0.0);
    rig.Key(Qt::Key_A);
    rig.Key(Qt::Key_Right, 0);
    QCOMPARE(rig.Place(0), std::string("210 100"));
}

void OverlayPolylineTest::WhatIsSetOutlivesTheSelection()
{
    PolyRig rig;
    rig.SetSquare();
    QVERIFY(RunEntry(rig, "Convex Hull Polygon"));
    rig.SetMode(ModifyOnly);
    const std::string drawn = rig.Drawn();
    rig.stage->SetOperator(nullptr);
    rig.stage->SetOperator(rig.tool);
    QCOMPARE(rig.Drawn(), drawn);
    QCOMPARE(rig.Mode(), int(ModifyOnly));
}

QTEST_MAIN(OverlayPolylineTest)
#include "overlay_polyline_test.moc"
