// The library goes while a shape is being edited, with all windows of the overlay open.

#include "plugin/PolyRig.h"
#include "script/ScriptSystem.h"
#include "system/base/Registry.h"
#include "system/document/Preferences.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QtTest>

using namespace Marlox;

namespace {

/// Windows that show now, by their titles.
QStringList Windows()
{
    QStringList titles;
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible())
            titles << window->windowTitle().section(':', 0, 0);
    }
    titles.sort();
    return titles;
}

} // namespace

class OverlayPolylineUnloadTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void nothingStays_data();
    void nothingStays();
};

void OverlayPolylineUnloadTest::nothingStays_data()
{
    QTest::addColumn<bool>("dragging");
    QTest::newRow("in a drag") << true;
    QTest::newRow("idle") << false;
}

void OverlayPolylineUnloadTest::nothingStays()
{
    QFETCH(bool, dragging);
    PolyRig rig("Polyline", true);
    QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
    rig.SetSquare();
    const std::string fresh = rig.document->ToText();
    rig.SetMode(4);
    rig.Click(rig.At(0.25, 0.25));
    rig.Drag({rig.At(0.25, 0.25), rig.At(0.3, 0.3)}); // a key
    QVERIFY(rig.Key(Qt::Key_K, 0));
    QVERIFY(rig.Key(Qt::Key_E));
    QVERIFY(rig.Key(Qt::Key_R, KeyControl)); // a step of the overlay's own state
    rig.Key(Qt::Key_C, KeyControl);
    rig.Key(Qt::Key_O, KeyControl | KeyAlt);
    rig.Key(Qt::Key_L);
    rig.Key(Qt::Key_B);
    rig.Drawn();
    QCOMPARE(Windows(), (QStringList{"Point Editor", "Poly Keys"}));
    const std::string done = rig.document->ToText();
    const QStringList texts = rig.UndoTexts();
    if (dragging) {
        rig.stage->Press(rig.At(0.3, 0.3), 0);
        rig.stage->Move(rig.At(0.4, 0.3), 0);
        QCOMPARE(rig.document->Undo().Depth(), 1);
    }

    OverlayStage::ReleaseAll();
    QCOMPARE(rig.document->Undo().Depth(), 0);
    QCOMPARE(Windows(), QStringList());
    for (const QWidget* window : QApplication::topLevelWidgets())
        QVERIFY2(!QByteArray(window->metaObject()->className()).startsWith("Marlox::Poly"),
                 window->metaObject()->className());
    rig.library.Unload();
    QVERIFY(!PluginLibrary::IsMapped());
    QVERIFY(!ClassRegistry::Global().Find("PolylineControl"));

    // What it left behind is used without it.
    rig.Drawn();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::qWait(20);
    for (const QString& name : MarloxDoc::GetPreferences().Names())
        QVERIFY(!name.isEmpty() && MarloxDoc::GetPreferences().Get(name).isValid());
    QVERIFY(!QApplication::clipboard()->mimeData()->formats().isEmpty());
    QCOMPARE(rig.UndoTexts().mid(0, texts.size()), texts);
    while (rig.document->Undo().CanUndo())
        rig.document->Undo().Undo();
    QCOMPARE(rig.document->ToText(), fresh);
    for (int i = 0; i < texts.size(); ++i)
        rig.document->Undo().Redo();
    QCOMPARE(rig.document->ToText(), done);

    // And it comes back.
    QVERIFY(rig.library.Load());
    OverlayStage::ReopenAll();
    QCOMPARE(Windows(), QStringList());
    QVERIFY(rig.stage->OverlayOf(rig.InputOf("Polyline")));
    QVERIFY(!rig.Drawn().empty());
}

QTEST_MAIN(OverlayPolylineUnloadTest)
#include "overlay_polyline_unload_test.moc"
