#include "plugin/OverlayRig.h"

#include <QTest>

using namespace Marlox;

class OverlayStageTest : public QObject {
    Q_OBJECT
private slots:
    void starts()
    {
        OverlayRig rig({{"pos", CLSID_DataType_Point, {{IAS_Overlay, "PointControl"}}}});
        QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
        QCOMPARE(rig.stage->Overlays().size(), std::size_t(1));
        QCOMPARE(rig.stage->Overlays().front()->IsActive(), true);
    }
};

QTEST_MAIN(OverlayStageTest)
#include "overlay_stage_test.moc"
