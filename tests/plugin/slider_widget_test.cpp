#include "plugin/InspectorStage.h"

#include "script/ScriptSystem.h"
#include "system/resources/Resources.h"

#include <cmath>
#include <random>

#include <QAccessible>
#include <QApplication>
#include <QBackingStore>
#include <QMouseEvent>
#include <QtTest>

using namespace Marlox;

/// The drawn slider by itself, in an active window, 200 pixels wide.
class SliderWidgetTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void init();
    void SignalsChangesOnly();
    void RepaintsTwoRectangles();
    void LeavesNoTrails();
    void FillsTheTrackWithGradients();
    void PressesGoWhereTheyBelong();
    void DragsTheKnob();
    void StepsOnTheTrack();
    void ResetsToTheDefault();
    void TellsWhatIsHovered();
    void StepsByKeys();
    void LeavesOtherKeysAlone();
    void TurnsWithTheWheel();
    void SpeaksToAssistants();

private:
    QList<double> Signalled() { return std::exchange(signalled_, {}); }
    QPointF At(double x) const { return {x, slider_->height() / 2.0}; }
    QPointF ValueAt(double value) const { return At(slider_->ValueToPixel(value)); }
    /// No press, key or wheel is going on.
    bool IsAtRest() const { return !slider_->IsDragging() && !slider_->InGesture(); }
    std::unique_ptr<QWidget> window_;
    CustomSlider* slider_ = nullptr;
    QWidget* other_ = nullptr; // takes focus too
    QList<double> signalled_;
};

void SliderWidgetTest::init()
{
    window_ = std::make_unique<QWidget>();
    slider_ = new CustomSlider(window_.get());
    slider_->SetSteps(0.001, 0.01);
    slider_->SetTickFreq(11);
    slider_->setGeometry(10, 10, 200, 24);
    other_ = new QWidget(window_.get());
    other_->setFocusPolicy(Qt::StrongFocus);
    other_->setGeometry(10, 40, 20, 20);
    window_->resize(220, 64);
    window_->show();
    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    slider_->setFocus();
    slider_->ShowValue(0.5);
    QVERIFY(slider_->metaObject()->indexOfSignal("ValueChanged(float64)") >= 0);
    connect(slider_, &CustomSlider::ValueChanged, [this](double v) { signalled_ += v; });
    signalled_.clear();
}

void SliderWidgetTest::SignalsChangesOnly()
{
    slider_->SetValue(0.25);
    slider_->SetValue(0.25);
    slider_->ShowValue(0.75);
    slider_->SetValue(NAN);
    QCOMPARE(Signalled(), QList<double>{0.25});
    QCOMPARE(slider_->property("value").toDouble(), 0.75);
    slider_->StartDrag();
    slider_->ShowValue(0.75); // a redisplay is not the drag's first value
    slider_->SetValue(0.75);
    slider_->SetValue(0.75);
    slider_->EndDrag();
    slider_->ShowValue(1.0);
    slider_->StartDrag();
    slider_->StepUp(SliderModel::Tick, false); // the first of this one, though at the end
    slider_->EndDrag();
    QCOMPARE(Signalled(), (QList<double>{0.75, 1.0}));
    slider_->SetValue(3.0); // beyond the end: kept, shown at the end
    QCOMPARE(slider_->Value(), 3.0);
    QCOMPARE(slider_->KnobPixel(), slider_->PixelHigh());
    QCOMPARE(slider_->PixelCentre(), (slider_->PixelLow() + slider_->PixelHigh()) / 2);
    QCOMPARE(slider_->property("stepBelow").toList(), (QVariantList{0.001, 0.01, 0.1}));
}

void SliderWidgetTest::RepaintsTwoRectangles()
{
    PaintWatch watch(*slider_);
    const auto dirty = [this] {
        const QSize knob = ResDIB::SizeOf("Controls.Slider.Knob.1");
        const int x = int(slider_->KnobPixel()) - knob.width() / 2;
        const int top = int(std::lround((24 - (knob.height() - 1)) / 2.0 - 0.1));
        return QRegion(x - 1, top, knob.width() + 1, knob.height() - 1);
    };
    const QRegion before = dirty();
    slider_->SetValue(0.9);
    QRegion painted = watch.Take();
    QCOMPARE(painted.rectCount(), 2);
    QCOMPARE(painted, before + dirty());
    slider_->hide();
    slider_->SetValue(0.3);
    QCOMPARE(watch.Take(), QRegion());
    slider_->show();
    QTest::qWait(50);
    QCOMPARE(watch.Take(), QRegion(slider_->rect()));
    // Of a new range too, while nothing but the knob moves: counted ticks stay where they are.
    const auto repainted = [&](double high, bool redisplay = true) {
        watch.Take();
        slider_->SetRange(0.0, high, redisplay);
        const QRegion region = watch.Take();
        return region == QRegion(slider_->rect()) ? -1 : region.rectCount(); // -1: all of it
    };
    QCOMPARE(repainted(2.0), 2);
    QCOMPARE(repainted(4.0, false), 0);
    slider_->SetDefaultValue(1.0);
    QCOMPARE(repainted(8.0), -1); // the reset mark moves alone
    slider_->SetValue(1.0);
    QCOMPARE(repainted(4.0), 2); // it moves under the knob
    slider_->SetTickFreq(0);
    QCOMPARE(repainted(3.0), -1);
}

void SliderWidgetTest::LeavesNoTrails()
{
    slider_->SetDefaultValue(0.4);
    for (const bool opaque : {true, false}) {
        slider_->setAttribute(Qt::WA_OpaquePaintEvent, opaque);
        std::mt19937 random(3);
        for (int i = 0; i < 40; ++i) {
            slider_->SetValue(double(random() % 1001) / 1000.0);
            if (i % 7 == 0)
                slider_->SetRange(0.0, 1.0 + double(random() % 3), true);
            QCoreApplication::processEvents();
        }
        // What the screen shows after many small repaints, and what a single one would show.
        const auto* kept = static_cast<QImage*>(window_->backingStore()->paintDevice());
        const QImage fresh = window_->grab().toImage();
        QCOMPARE(kept->convertToFormat(QImage::Format_RGB32).copy(fresh.rect()),
                 fresh.convertToFormat(QImage::Format_RGB32));
    }
}

void SliderWidgetTest::FillsTheTrackWithGradients()
{
    const Gradient bright({{0.0, {-1.0, 0.0, 0.0, 1.0}}, {1.0, {3.0, 1.0, 0.5, 1.0}}});
    const Gradient grey({{0.0, {0.2, 0.2, 0.2, 1.0}}, {1.0, {1.0, 1.0, 1.0, 1.0}}});
    const auto check = [&](const Gradient* second) {
        slider_->SetGradients(&bright, second);
        slider_->ShowValue(0.0);
        const QImage image = slider_->grab().toImage();
        const double ratio = image.devicePixelRatio();
        const int left = int(2 * ratio); // one pixel of margin, one of border
        const int width = int((slider_->width() - 4) * ratio);
        for (int column = int(20 * ratio); column < width; ++column) {
            double position = double(column) / width;
            const Gradient* gradient = &bright;
            if (second) {
                gradient = position < 0.5 ? &bright : second;
                position = std::fmod(2.0 * position, 1.0);
            }
            const GradientColor color = gradient->QuickEvaluate(position);
            const MxColor wanted = MxColor::FromDoubles(color.red, color.green, color.blue);
            const QColor seen = image.pixelColor(left + column, image.height() / 2);
            QCOMPARE(MxColor(seen.red(), seen.green(), seen.blue()), wanted);
        }
    };
    check(nullptr);
    check(&grey);
}

void SliderWidgetTest::PressesGoWhereTheyBelong()
{
    const auto taken = [this](QWidget& widget, Qt::MouseButton button = Qt::LeftButton) {
        QMouseEvent press(QEvent::MouseButtonPress, KnobOf(*slider_), button, button,
                          Qt::NoModifier);
        static_cast<QObject&>(widget).event(&press);
        return press.isAccepted();
    };
    other_->setFocus();
    QVERIFY(!taken(*slider_, Qt::RightButton));
    slider_->SetLocked(true);
    QVERIFY(taken(*slider_)); // swallowed
    QVERIFY(IsAtRest() && !slider_->hasFocus());
    Pointer::Key(*slider_, QEvent::KeyPress, Qt::Key_Home);
    QCOMPARE(slider_->Value(), 0.5);
    slider_->SetLocked(false);
    QVERIFY(taken(*slider_));
    QVERIFY(slider_->IsDragging() && slider_->hasFocus() && slider_->InGesture());
    slider_->SetLocked(true); // ends what is under way
    QVERIFY(IsAtRest());
    CustomSlider empty;
    empty.resize(0, 10);
    QVERIFY(!taken(empty));
    QVERIFY(Signalled().isEmpty());
}

void SliderWidgetTest::DragsTheKnob()
{
    const QPointF start = KnobOf(*slider_) + QPointF(2, 0);
    Pointer::Press(*slider_, start);
    QVERIFY(Signalled().isEmpty() && slider_->property("hoverKnob").toBool());
    Pointer::Move(*slider_, start);
    QCOMPARE(Signalled(), QList<double>{0.5});
    Pointer::Move(*slider_, start + QPointF(0, 30));
    QVERIFY(Signalled().isEmpty()); // x is what counts
    const double wanted = slider_->PixelToValue(slider_->ValueToPixel(0.5) + 19);
    Pointer::Move(*slider_, start + QPointF(19, 0));
    const double dragged = slider_->Model().Scale().Rounded(wanted, false);
    QCOMPARE(Signalled(), QList<double>{dragged});
    // Ctrl anchors anew, down and up. Other keys must wait.
    Pointer::Key(*slider_, QEvent::KeyPress, Qt::Key_Control, Qt::ControlModifier);
    Pointer::Move(*slider_, start + QPointF(26, 0), Qt::ControlModifier);
    const double fine = slider_->Value();
    QVERIFY(fine > dragged && fine < dragged + 0.005);
    Signalled();
    Pointer::Key(*slider_, QEvent::KeyRelease, Qt::Key_Control);
    Pointer::Stroke(*slider_, Qt::Key_End);
    QVERIFY(slider_->InGesture());
    Pointer::Release(*slider_, start + QPointF(26, 0));
    QVERIFY(IsAtRest());
    Pointer::Move(*slider_, start + QPointF(50, 0), Qt::NoModifier, Qt::NoButton);
    // A release that was lost shows at the next move.
    Pointer::Press(*slider_, KnobOf(*slider_));
    Pointer::Move(*slider_, start, Qt::NoModifier, Qt::NoButton);
    QVERIFY(IsAtRest() && Signalled().isEmpty());
    QCOMPARE(slider_->Value(), fine);
}

void SliderWidgetTest::StepsOnTheTrack()
{
    const QPointF right = At(slider_->PixelHigh() - 1);
    Pointer::Press(*slider_, right);
    QVERIFY(slider_->IsDragging() && !slider_->property("knobGrabbed").toBool());
    Pointer::Move(*slider_, right - QPointF(4, 0)); // moves no knob
    Pointer::Release(*slider_, right);
    Pointer::Click(*slider_, At(slider_->PixelLow() + 1), Qt::ControlModifier);
    QCOMPARE(Signalled(), (QList<double>{0.6, 0.599}));
    QVERIFY(IsAtRest());
    // Held, it repeats until the knob is there, and no further before the pointer moves on.
    slider_->ShowValue(0.0);
    Pointer::Press(*slider_, ValueAt(0.25));
    QTest::qWait(200); // within the wait
    QCOMPARE(Signalled(), QList<double>{0.1});
    QTRY_COMPARE(slider_->KnobPixel(), std::round(slider_->ValueToPixel(0.3)));
    QTest::qWait(200);
    QCOMPARE(Signalled().size(), 2);
    Pointer::Move(*slider_, ValueAt(0.55));
    QTRY_VERIFY(slider_->Value() > 0.35);
    Pointer::Release(*slider_, ValueAt(0.55));
    Signalled();
    QTest::qWait(150);
    QVERIFY(Signalled().isEmpty());
}

void SliderWidgetTest::ResetsToTheDefault()
{
    const QPointF away(slider_->PixelHigh() - 30, -20);
    Pointer::Click(*slider_, away, Qt::AltModifier); // no default: nothing
    slider_->SetDefaultValue(0.2);
    Pointer::Press(*slider_, ValueAt(0.2));
    QVERIFY(!slider_->IsDragging());
    Pointer::Release(*slider_, away); // let go elsewhere
    QVERIFY(Signalled().isEmpty());
    Pointer::Press(*slider_, ValueAt(0.2));
    Pointer::Release(*slider_, ValueAt(0.2) + QPointF(6, 2));
    slider_->ShowValue(0.9);
    Pointer::Press(*slider_, KnobOf(*slider_), Qt::AltModifier);
    QVERIFY(!slider_->IsDragging());
    Pointer::Release(*slider_, away, Qt::AltModifier);
    QCOMPARE(Signalled(), (QList<double>{0.2, 0.2}));
    QVERIFY(IsAtRest());
}

void SliderWidgetTest::TellsWhatIsHovered()
{
    slider_->SetDefaultValue(0.2);
    const auto hovered = [this](QPointF at) {
        Pointer::Move(*slider_, at, Qt::NoModifier, Qt::NoButton);
        QStringList parts;
        for (const char* part : {"hoverKnob", "hoverReset", "hoverTrack"})
            parts += slider_->property(part).toBool() ? QStringList(part) : QStringList();
        return parts.join(' ');
    };
    PaintWatch watch(*slider_);
    QCOMPARE(hovered(KnobOf(*slider_) + QPointF(3, 0)), QString("hoverKnob"));
    QCOMPARE(watch.Take(), QRegion(slider_->rect()));
    QCOMPARE(hovered(KnobOf(*slider_) + QPointF(4, 0)), QString("hoverKnob"));
    QVERIFY(watch.Take().isEmpty());
    QCOMPARE(hovered(ValueAt(0.2)), QString("hoverReset"));
    QCOMPARE(hovered(ValueAt(0.9)), QString("hoverTrack"));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(slider_, &leave);
    QVERIFY(!slider_->IsTrackHovered());
}

void SliderWidgetTest::StepsByKeys()
{
    constexpr auto ctrl = Qt::ControlModifier;
    constexpr auto shift = Qt::ShiftModifier;
    const struct {
        double value;
        int key;
        Qt::KeyboardModifiers modifiers;
    } rows[] = {{0.0, Qt::Key_Home, {}},
                {1.0, Qt::Key_End, {}},
                {0.49, Qt::Key_Left, {}},
                {0.51, Qt::Key_Right, {}},
                {0.49, Qt::Key_PageDown, {}},
                {0.51, Qt::Key_PageUp, {}},
                {0.501, Qt::Key_Right, ctrl},
                {0.4, Qt::Key_Left, shift},
                {0.499, Qt::Key_Left, ctrl | shift}};
    for (const auto& [value, key, modifiers] : rows) {
        slider_->ShowValue(0.5);
        QVERIFY(Pointer::IsWanted(*slider_, key, modifiers));
        Pointer::Key(*slider_, QEvent::KeyPress, key, modifiers);
        QCOMPARE(slider_->Value(), value);
        Pointer::Key(*slider_, QEvent::KeyRelease, key, modifiers, true);
        QVERIFY(slider_->InGesture()); // that was the keyboard's repeat
        Pointer::Key(*slider_, QEvent::KeyRelease, key, modifiers);
        QVERIFY(!slider_->InGesture());
    }
}

void SliderWidgetTest::LeavesOtherKeysAlone()
{
    for (const int key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_A, Qt::Key_Escape}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        static_cast<QObject*>(slider_)->event(&event);
        QVERIFY(!event.isAccepted() && !Pointer::IsWanted(*slider_, key));
    }
    // Shift alone, while it is down.
    Pointer::Key(*slider_, QEvent::KeyPress, Qt::Key_Shift);
    Pointer::Key(*slider_, QEvent::KeyPress, Qt::Key_Right);
    Pointer::Key(*slider_, QEvent::KeyRelease, Qt::Key_Shift);
    Pointer::Key(*slider_, QEvent::KeyPress, Qt::Key_Right);
    QCOMPARE(Signalled(), (QList<double>{0.6, 0.61}));
    // Nothing is told at the end, nor where a typed value lies beyond it.
    slider_->ShowValue(5.0);
    Pointer::Key(*slider_, QEvent::KeyPress, Qt::Key_Right);
    QVERIFY(Signalled().isEmpty());
    Pointer::Key(*slider_, QEvent::KeyPress, Qt::Key_End);
    QCOMPARE(Signalled(), QList<double>{1.0});
}

void SliderWidgetTest::TurnsWithTheWheel()
{
    const auto turned = [this](int delta, Qt::ScrollPhase phase = Qt::NoScrollPhase) {
        Pointer::Wheel(*slider_, delta, Qt::NoModifier, phase);
        return Signalled().size();
    };
    Pointer::Wheel(*slider_, 120);
    Pointer::Wheel(*slider_, -120, Qt::ControlModifier);
    Pointer::Wheel(*slider_, 240, Qt::ShiftModifier);
    QCOMPARE(Signalled(), (QList<double>{0.51, 0.509, 0.609, 0.709}));
    for (const int steps : {0, 0, 1, 0, 0, 1, 0}) // a touchpad's
        QCOMPARE(turned(40), steps);
    QVERIFY(turned(-80) == 0 && turned(-40) == 1); // turning back starts anew
    QVERIFY(slider_->InGesture());
    QTRY_VERIFY(!slider_->InGesture());
    other_->setFocus();
    QVERIFY(turned(120) == 0 && !slider_->hasFocus());
    slider_->setFocus();
    Pointer::Wheel(*other_, 120); // the panel is scrolled, then this comes under the pointer
    QCOMPARE(turned(120), 0);
    QTest::qWait(CustomController::wheelPause + 50);
    QCOMPARE(turned(120), 1);
    QCOMPARE(turned(120, Qt::ScrollUpdate), 0); // began elsewhere
    QVERIFY(turned(0, Qt::ScrollBegin) == 0 && turned(120, Qt::ScrollUpdate) == 1);
}

void SliderWidgetTest::SpeaksToAssistants()
{
    slider_->setAccessibleName("Gain");
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(slider_);
    QCOMPARE(access->role(), QAccessible::Slider);
    QCOMPARE(access->text(QAccessible::Name), QString("Gain"));
    QCOMPARE(access->text(QAccessible::Value), QString("0.5"));
    QVERIFY(access->state().focusable && access->state().focused);
    QAccessibleValueInterface* value = access->valueInterface();
    QCOMPARE(
        (QList<QVariant>{value->minimumValue(), value->maximumValue(), value->minimumStepSize()}),
        (QList<QVariant>{0.0, 1.0, 0.01}));
    value->setCurrentValue(0.25);
    access->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    value->setCurrentValue(7.0);
    slider_->SetLocked(true);
    value->setCurrentValue(0.1);
    QCOMPARE(Signalled(), (QList<double>{0.25, 0.26, 1.0}));
}

QTEST_MAIN(SliderWidgetTest)
#include "slider_widget_test.moc"
