#include "plugin/InspectorStage.h"
#include "script/ScriptSystem.h"
#include "system/color/DisplayColors.h"
#include "widgets/CustomColorField.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <QAccessible>
#include <QtTest>

using namespace Marlox;

namespace {

using Zone = ColorFieldModel::Zone;

ColorFieldModel modelOf(int width, int height, bool alpha = false, double exponent = 1.0)
{
    ColorFieldModel model;
    model.widget = QRect(0, 0, width, height);
    model.showsAlpha = alpha;
    model.exponent = exponent;
    return model;
}

/// Light with a power of 1/2.
class TestDisplay : public ColorDisplay {
public:
    void Apply(float* rgb, int count) const override
    {
        std::transform(rgb, rgb + 3 * count, rgb, [](float c) { return std::sqrt(c); });
    }
};

/// A whole number, as far as doubles tell.
bool isWhole(double number)
{
    return std::abs(number - std::round(number)) < 1e-6;
}

} // namespace

/// The colour field: places and drags without a window, then the widget with an owner.
class ColorFieldTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void init();
    void cleanup();
    void LaysOutItsZones();
    void MapsPixelsBothWays();
    void RoundsToTheGrid();
    void CrossesTheLock();
    void DragsWithOneEntry();
    void KeepsToOneAxisAndFine();
    void EndsDragsCleanly();
    void MovesByKeys();
    void KeepsItsPictures();
    void SurvivesBadNumbers();

private:
    static constexpr QSize usual{150, 120}; // square 3 to 112, hues 120 to 129, alpha 137 to 146
    QStringList Signalled() { return std::exchange(signalled_, {}); }
    void Press(QPointF at, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        Pointer::Press(*field_, at, modifiers);
    }
    /// Saturation, value, hue and alpha.
    std::array<double, 4> Shown() const
    {
        return {field_->Saturation(), field_->Value(), field_->Hue(), field_->Alpha()};
    }

    std::unique_ptr<InspectorStage> stage_; // its control owns the field
    CustomColorField* field_ = nullptr;
    QStringList signalled_;
};

void ColorFieldTest::init()
{
    stage_ = std::make_unique<InspectorStage>(std::vector<StagedInput>{{"Gain", {}}});
    field_ = new CustomColorField(stage_->window.get());
    field_->SetOwner(&stage_->ControlOf());
    field_->SetShowsAlpha(true);
    field_->SetRecord({0.25, 0.5, {7.0, 8.0}, 0.5});
    field_->setGeometry(QRect(QPoint(), usual));
    field_->show();
    field_->raise();
    field_->setFocus();
    QCoreApplication::processEvents();
    // Each signal writes a number, as a control would.
    const auto log = [this](const char* what) {
        signalled_ += what;
        stage_->InputOf().SetValue(Number(stage_->ValueOf() + 0.001), 0.0);
    };
    connect(field_, &CustomColorField::dragSatVal, this, [log] { log("satval"); });
    connect(field_, &CustomColorField::dragHue, this, [log] { log("hue"); });
    connect(field_, &CustomColorField::dragAlpha, this, [log] { log("alpha"); });
    signalled_.clear();
}

void ColorFieldTest::cleanup()
{
    DisplayColors::Global().SetDisplay(nullptr);
    stage_.reset();
}

// Without a window -------------------------------------------------------------------------------

void ColorFieldTest::LaysOutItsZones()
{
    const ColorFieldModel plain = modelOf(100, 80);
    const ColorFieldModel both = modelOf(100, 80, true);
    const struct {
        QPoint at;
        Zone plain, both;
    } rows[] = {{{3, 3}, Zone::Square, Zone::Square}, {{2, 3}, Zone::None, Zone::None},
                {{3, 2}, Zone::None, Zone::None},     {{62, 76}, Zone::Square, Zone::Square},
                {{62, 77}, Zone::None, Zone::None},   {{63, 40}, Zone::Square, Zone::None},
                {{79, 40}, Zone::Square, Zone::Hue},  {{80, 40}, Zone::None, Zone::None},
                {{87, 40}, Zone::Hue, Zone::Alpha},   {{96, 76}, Zone::Hue, Zone::Alpha},
                {{97, 40}, Zone::None, Zone::None},   {{69, 40}, Zone::Square, Zone::None}};
    for (const auto& row : rows) {
        QCOMPARE(plain.HitTest(row.at), row.plain);
        QCOMPARE(both.HitTest(row.at), row.both);
    }
    // Narrower than its margins: no square.
    for (int width = 0; width <= 45; ++width) {
        for (const bool alpha : {false, true}) {
            const ColorFieldModel narrow = modelOf(width, 60, alpha);
            const bool empty = width <= (alpha ? 40 : 23);
            QCOMPARE(narrow.Square().isEmpty(), empty);
            for (int x = -5; x < width + 5; ++x)
                QVERIFY(!empty || narrow.HitTest({x, 30}) != Zone::Square);
            QVERIFY(std::isfinite(narrow.RoundedSaturationAt(4, false)));
        }
    }
    for (int height = 0; height < 12; ++height) {
        const ColorFieldModel low = modelOf(100, height, true, 2.0);
        QCOMPARE(low.HitTest({10, 3}), height > 6 ? Zone::Square : Zone::None);
        QVERIFY(std::isfinite(low.RoundedValueAt(3, true)));
        QVERIFY(std::isfinite(low.RoundedStripAt(3, true)));
        QVERIFY(std::isfinite(low.ValuePixel(0.5) + low.StripPixel(0.5)));
    }
}

void ColorFieldTest::MapsPixelsBothWays()
{
    const ColorFieldModel model = modelOf(100, 80);
    QCOMPARE(model.SaturationAt(3), 0.0);
    QCOMPARE(model.SaturationAt(22), 19.0 / 76.0);
    QCOMPARE(model.SaturationAt(79), 1.0);
    QCOMPARE(model.ValueAt(77), 0.0);
    QCOMPARE(model.ValueAt(76), 1.0 / 73.0);
    QCOMPARE(model.ValueAt(4), 1.0);
    QCOMPARE(model.StripAt(3), 0.0);
    QCOMPARE(model.StripAt(5), 1.0 / 71.0);
    QCOMPARE(model.StripAt(75), 1.0);
    QVERIFY(model.SaturationAt(-1e9) == 0.0 && model.ValueAt(-1e9) == 1.0);
    QCOMPARE(modelOf(100, 80, false, 2.0).ValueAt(40), 37.0 * 37.0 / 73.0 / 73.0);
    for (const double exponent : {1.0, 0.45, 2.2}) {
        const ColorFieldModel curved = modelOf(240, 97, true, exponent);
        for (int x = curved.Square().left(); x <= curved.Square().right(); ++x)
            QVERIFY(std::abs(curved.SaturationPixel(curved.SaturationAt(x)) - x) < 1e-9);
        for (int y = curved.Square().top() + 1; y <= curved.Square().bottom() + 1; ++y)
            QVERIFY(std::abs(curved.ValuePixel(curved.ValueAt(y)) - y) < 1e-9);
        for (int y = curved.HueStrip().top() + 1; y < curved.HueStrip().bottom(); ++y)
            QVERIFY(std::abs(curved.StripPixel(curved.StripAt(y)) - y) < 1e-9);
    }
    QCOMPARE(model.ValuePixel(40.0), 4.0);
    QCOMPARE(model.StripPixel(-2.0), 4.0);
}

void ColorFieldTest::RoundsToTheGrid()
{
    const auto isKept = [](double rounded, double exact, double steps) {
        return isWhole(rounded * steps) && std::abs(rounded - exact) * steps <= 0.5 + 1e-6;
    };
    const auto stepsOf = [](double size) { return std::pow(10.0, std::ceil(std::log10(size))); };
    for (const int size : {30, 31, 99, 106, 107, 500}) {
        const ColorFieldModel model = modelOf(size + 20, size);
        for (double at = 0.0; at < size + 20; at += 0.7) {
            for (const bool fine : {false, true}) {
                const double across = stepsOf(size - 3) * (fine ? 10.0 : 1.0);
                const double down = stepsOf(size - 6) * (fine ? 10.0 : 1.0);
                QVERIFY(
                    isKept(model.RoundedSaturationAt(at, fine), model.SaturationAt(at), across));
                QVERIFY(isKept(model.RoundedValueAt(at, fine), model.ValueAt(at), down));
                QVERIFY(isKept(model.RoundedStripAt(at, fine), model.StripAt(at), down));
            }
        }
    }
    // Up to two further decimals where a curve is flat: rows stay apart, but for the flattest.
    const ColorFieldModel curved = modelOf(100, 106, false, 3.0); // 100 rows
    for (int y = 4; y < 102; ++y) {
        const double slope = curved.ValueAt(y) - curved.ValueAt(y + 1);
        const double steps = std::clamp(stepsOf(1.0 / slope), 100.0, 10000.0);
        const double rounded = curved.RoundedValueAt(y, false);
        QVERIFY(isKept(rounded, curved.ValueAt(y), steps));
        QVERIFY(slope < 1e-4 || rounded > curved.RoundedValueAt(y + 1, false));
    }
}

void ColorFieldTest::CrossesTheLock()
{
    const ColorFieldModel model = modelOf(100, 80);
    const ColorFieldModel::Drag drag{Zone::Square, {{0.1, 0.9, {}, 4.0}, 0.3}};
    const QPoint press(40, 40);
    const auto dragged = [&](QPoint way) {
        return model.DragTo(drag, {press + way, press, false, true});
    };
    const struct {
        QPoint way;
        bool saturationFollows;
    } rows[] =
        {
            {{0, 0}, false},   {{20, 0}, false},  {{20, -5}, false},
            {{5, -20}, true},  {{-5, 20}, true},  {{0, -20}, true},
            {{-20, 5}, false}, {{76, -73}, false}}; // both go to their ends, the saturation by more
    for (const auto& row : rows) {
        const ColorFieldModel::Dragged to = dragged(row.way);
        QCOMPARE(to.active.saturation, row.saturationFollows);
        QCOMPARE(to.active.value, !row.saturationFollows);
        const QPoint at = press + row.way;
        QCOMPARE(to.values.record.saturation,
                 row.saturationFollows ? model.RoundedSaturationAt(at.x(), false) : 0.9);
        QCOMPARE(to.values.record.value,
                 row.saturationFollows ? 4.0 : model.RoundedValueAt(at.y(), false));
    }
}

// The widget -------------------------------------------------------------------------------------

void ColorFieldTest::DragsWithOneEntry()
{
    QVERIFY(field_->metaObject()->indexOfSignal("dragSatVal()") >= 0);
    Press({30.0, 40.0});
    QVERIFY(field_->IsSaturationActive() && field_->IsValueActive() && field_->IsDragged());
    QVERIFY(stage_->document->IsAutoProxy() && field_->ActivePart() == 0);
    QCOMPARE(Signalled(), QStringList{"satval"}); // the press is a move
    QCOMPARE(Shown(), (std::array{0.248, 0.681, 0.25, 1.0}));
    QCOMPARE(field_->Record().further, (std::array{7.0, 8.0}));
    Pointer::Move(*field_, {30.0, 40.0}); // stands still
    QVERIFY(Signalled().isEmpty());
    Pointer::Move(*field_, {-300.0, 500.0});
    QCOMPARE(Shown(), (std::array{0.0, 0.0, 0.25, 1.0}));
    Pointer::Release(*field_, {-300.0, 500.0});
    QVERIFY(stage_->IsIdle() && !field_->IsSaturationActive() && !field_->InGesture());
    field_->SetRecord({0.25, 0.5, {}, 4.0});
    Press({125.0, 3.0});
    QVERIFY(field_->IsHueActive() && field_->ActivePart() == 1);
    QCOMPARE(Shown(), (std::array{0.5, 4.0, 0.0, 1.0})); // the top; brighter than white stays
    Pointer::Move(*field_, {125.0, 300.0});
    QCOMPARE(field_->Hue(), 1.0);
    Pointer::Release(*field_, {125.0, 300.0});
    Press({140.0, 59.0});
    QVERIFY(field_->IsAlphaActive());
    QCOMPARE(Shown(), (std::array{0.5, 4.0, 1.0, 0.495}));
    Pointer::Release(*field_, {140.0, 59.0});
    QCOMPARE(Signalled(), (QStringList{"satval", "hue", "hue", "alpha"}));
    QCOMPARE(stage_->UndoTexts(),
             (QStringList{"Adjust Saturation/Value", "Adjust Hue", "Adjust Alpha"}));
    // Nothing changed, or nothing hit: no entry. Other buttons are not ours.
    Press({140.0, 59.0});
    Pointer::Release(*field_, {140.0, 59.0});
    Pointer::Click(*field_, {133.0, 59.0});
    Pointer::Press(*field_, {30.0, 40.0}, Qt::NoModifier, Qt::RightButton);
    QVERIFY(Signalled().isEmpty() && stage_->UndoEntries() == 3 && stage_->IsIdle());
}

void ColorFieldTest::KeepsToOneAxisAndFine()
{
    Press({60.0, 60.0});
    Pointer::Move(*field_, {64.0, 20.0}, Qt::ShiftModifier);
    QVERIFY(field_->IsSaturationActive() && !field_->IsValueActive());
    QCOMPARE(Shown(), (std::array{0.56, 0.5, 0.25, 1.0})); // the value from before the press
    Pointer::Move(*field_, {100.0, 50.0}, Qt::ShiftModifier);
    QVERIFY(!field_->IsSaturationActive() && field_->IsValueActive());
    QCOMPARE(Shown(), (std::array{0.5, 0.593, 0.25, 1.0}));
    Pointer::Move(*field_, {100.0, 50.0});
    QCOMPARE(Shown(), (std::array{0.89, 0.593, 0.25, 1.0}));
    // A tenth of the way from where Ctrl went down, on a grid ten times as fine.
    Pointer::Move(*field_, {90.0, 60.0}, Qt::ControlModifier);
    QCOMPARE(Shown(), (std::array{0.8807, 0.5841, 0.25, 1.0}));
    Pointer::Release(*field_, {90.0, 60.0}, Qt::ControlModifier);
    QCOMPARE(stage_->UndoTexts(), QStringList{"Adjust Saturation/Value"});
}

void ColorFieldTest::EndsDragsCleanly()
{
    const ColorRecord before = field_->Record();
    Press({30.0, 40.0});
    Pointer::Stroke(*field_, Qt::Key_Escape);
    QVERIFY(field_->Record() == before && !field_->IsDragged());
    QVERIFY(stage_->IsIdle() && stage_->UndoEntries() == 0);
    Press({30.0, 40.0});
    field_->SetLocked(true);
    QVERIFY(!field_->IsDragged() && stage_->IsIdle());
    Press({50.0, 40.0});
    Pointer::Stroke(*field_, Qt::Key_Right);
    QVERIFY(!field_->IsDragged());
    QCOMPARE(field_->Saturation(), 0.248);
    field_->SetLocked(false);
    Press({140.0, 40.0}); // the strip goes while it is dragged
    field_->SetShowsAlpha(false);
    Pointer::Move(*field_, {140.0, 90.0});
    QVERIFY(!field_->IsDragged() && stage_->IsIdle() && field_->ActivePart() < field_->PartCount());
    Press({30.0, 40.0});
    field_->resize(20, 100); // and the square
    Pointer::Move(*field_, {5.0, 50.0});
    QVERIFY(!field_->IsDragged());
    Pointer::Press(*field_, {5.0, 50.0});
    QVERIFY(!field_->IsSaturationActive());
    Pointer::Release(*field_, {5.0, 50.0});
    field_->resize(usual);
    Signalled();
    Press({35.0, 45.0});
    field_->SetOwner(nullptr); // and the owner
    QVERIFY(!field_->IsDragged() && stage_->IsIdle());
    Pointer::Move(*field_, {50.0, 50.0});
    QCOMPARE(Signalled(), QStringList{"satval"});
    Press({40.0, 40.0});
    Pointer::Move(*field_, {50.0, 50.0}); // without any
    QCOMPARE(Signalled(), (QStringList{"satval", "satval"}));
    const ColorRecord dragged = field_->Record();
    field_->setEnabled(false);
    QVERIFY(!field_->IsDragged() && field_->Record() == dragged);
    // Whoever listens deletes it.
    field_->setEnabled(true);
    const QPointer<CustomColorField> alive(field_);
    connect(field_, &CustomColorField::dragSatVal, this,
            [this] { delete std::exchange(field_, nullptr); });
    Pointer::Press(*alive, {90.0, 40.0});
    QVERIFY(!alive && stage_->IsIdle());
}

void ColorFieldTest::MovesByKeys()
{
    constexpr auto ctrl = Qt::ControlModifier;
    constexpr auto shift = Qt::ShiftModifier;
    const struct {
        int part, key;
        Qt::KeyboardModifiers modifiers;
        std::array<double, 4> shown;
    } rows[] = {{0, Qt::Key_Right, {}, {0.51, 0.5, 0.25, 0.5}},
                {0, Qt::Key_Up, shift, {0.5, 0.6, 0.25, 0.5}},
                {0, Qt::Key_Down, ctrl, {0.5, 0.499, 0.25, 0.5}},
                {1, Qt::Key_Up, {}, {0.5, 0.5, 0.24, 0.5}}, // the knob goes up
                {1, Qt::Key_Right, shift, {0.5, 0.5, 0.35, 0.5}},
                {2, Qt::Key_Left, {}, {0.5, 0.5, 0.25, 0.49}}};
    for (const auto& row : rows) {
        field_->SetRecord({0.25, 0.5, {}, 0.5});
        field_->SetAlpha(0.5);
        field_->SetActivePart(row.part);
        QVERIFY(Pointer::IsWanted(*field_, row.key, row.modifiers));
        Pointer::Stroke(*field_, row.key, row.modifiers);
        QCOMPARE(Shown(), row.shown);
    }
    QCOMPARE(stage_->UndoEntries(), int(std::size(rows)));
    QCOMPARE(stage_->UndoTexts().back(), QString("Adjust Alpha"));
    field_->SetRecord({1.0, 0.0, {}, 4.0});
    field_->SetActivePart(0);
    for (const int key : {Qt::Key_Left, Qt::Key_Up, Qt::Key_PageDown, Qt::Key_Down})
        Pointer::Stroke(*field_, key);
    QCOMPARE(Shown(), (std::array{0.0, 4.0, 1.0, 0.49})); // ends stay, nothing wraps
    QCOMPARE(stage_->UndoEntries(), int(std::size(rows)));
    Pointer::Stroke(*field_, Qt::Key_PageUp);
    Pointer::Stroke(*field_, Qt::Key_Down);
    QCOMPARE(field_->Value(), 3.99);

    field_->setAccessibleName("Tint");
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(field_);
    QCOMPARE(access->role(), QAccessible::ColorChooser);
    QCOMPARE(access->text(QAccessible::Name), QString("Tint"));
    QCOMPARE(access->text(QAccessible::Value), QString("Saturation 0, Value 3.99"));
    QCOMPARE(access->text(QAccessible::Description),
             QString("Saturation 0, Value 3.99; Hue 1; Alpha 0.49"));
    QAccessibleActionInterface* actions = access->actionInterface();
    QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::increaseAction()));
    actions->doAction(QAccessibleActionInterface::previousPageAction());
    actions->doAction(QAccessibleActionInterface::decreaseAction());
    QCOMPARE(access->text(QAccessible::Value), QString("Alpha 0.48"));
    QVERIFY(stage_->IsIdle() && !field_->InGesture());
    field_->setEnabled(false);
    actions->doAction(QAccessibleActionInterface::increaseAction());
    QCOMPARE(field_->Alpha(), 0.48);
    field_->SetColorSpace(2);
    QCOMPARE(field_->DescribePart(0), QString("U -0.5, V 3.49"));
}

void ColorFieldTest::KeepsItsPictures()
{
    const auto builds = [this] {
        static int square = 0;
        static int strips = 0;
        field_->grab();
        const int newSquares =
            field_->SquareBuilds() - std::exchange(square, field_->SquareBuilds());
        const int newStrips = field_->StripBuilds() - std::exchange(strips, field_->StripBuilds());
        return QPair(newSquares, newStrips);
    };
    builds();
    QCOMPARE(builds(), QPair(0, 0));
    Press({30.0, 40.0});
    QCOMPARE(builds(), QPair(0, 1)); // the alpha strip shows the colour
    // What comes back from red, green and blue is off by a rounding.
    field_->SetRecord({std::nextafter(0.25, 1.0), 0.3, {}, 0.4});
    Pointer::Move(*field_, {50.0, 50.0});
    QCOMPARE(builds(), QPair(0, 1));
    Pointer::Release(*field_, {50.0, 50.0});
    field_->SetAlpha(0.25);
    QCOMPARE(builds(), QPair(0, 0));
    field_->SetRecord({0.5, 0.3, {}, 0.4});
    QCOMPARE(builds(), QPair(1, 1));
    field_->SetValueExponent(2.0);
    QCOMPARE(builds(), QPair(1, 0));
    const QImage before = field_->grab().toImage();
    DisplayColors::Global().SetDisplay(std::make_shared<TestDisplay>());
    QCOMPARE(builds(), QPair(1, 2));
    QVERIFY(field_->grab().toImage() != before);
    field_->resize(usual.width() + 10, usual.height());
    QCOMPARE(builds(), QPair(1, 2));
    PaintWatch watch(*field_);
    field_->SetRecord({0.6, 0.3, {}, 0.4}, false);
    QVERIFY(watch.Take().isEmpty());
    field_->SetRecord({0.7, 0.3, {}, 0.4});
    QVERIFY(!watch.Take().isEmpty());
}

void ColorFieldTest::SurvivesBadNumbers()
{
    constexpr double endless = std::numeric_limits<double>::infinity();
    const double numbers[] = {NAN, endless, -endless, 1e30, -1e30, -0.0, 1e308, 5e-324};
    for (const int space : {0, 1, 2, -7}) {
        field_->SetColorSpace(space);
        for (const double hue : numbers) {
            for (const double other : numbers) {
                field_->SetRecord({hue, other, {other, hue}, hue});
                field_->SetAlpha(other);
                field_->grab();
                const auto shown = Shown();
                QVERIFY(std::all_of(shown.begin(), shown.end(),
                                    [](double number) { return std::abs(number) <= 1e30; }));
                for (int part = 0; part < 3; ++part) {
                    QVERIFY(!field_->DescribePart(part).contains("nan"));
                    field_->SetActivePart(part);
                    Pointer::Stroke(*field_, Qt::Key_Right);
                }
            }
        }
    }
    for (const double exponent : {0.0, -1.0, double(NAN), endless})
        field_->SetValueExponent(exponent);
    QCOMPARE(field_->ValueExponent(), 1.0);
    for (const QSize size : {QSize(0, 0), QSize(1, 200), QSize(200, 1), QSize(24, 7)}) {
        field_->resize(size);
        field_->grab();
        Pointer::Click(*field_, {1.0, 1.0});
    }
    QVERIFY(stage_->IsIdle());
}

QTEST_MAIN(ColorFieldTest)
#include "color_field_test.moc"
