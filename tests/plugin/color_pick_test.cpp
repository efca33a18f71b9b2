#include "controls/color/PickButton.h"
#include "controls/color/SampleButton.h"

#include "plugin/InspectorStage.h"
#include "script/ScriptSystem.h"
#include "system/color/ColorPreferences.h"
#include "system/document/Preferences.h"

#include <functional>

#include <QApplication>
#include <QMenu>
#include <QtTest>

using namespace Marlox;

namespace {

QString placeOf(const ColorSource::Footprint& taken)
{
    const auto text = [](QPointF at) { return QString("%1,%2").arg(at.x()).arg(at.y()); };
    return taken.area ? text(taken.area->topLeft()) + ".." + text(taken.area->bottomRight())
                      : text(taken.at) + QString(" (%1)").arg(taken.size);
}

/// A viewer that counts the events of the pointer that reach it.
class FakeViewer : public QWidget, public ColorSource {
public:
    using QWidget::QWidget;
    bool SampleColor(const Footprint&, Sample&) override { return false; }
    void ShowFootprint(const Footprint* footprint) override
    {
        shown = footprint ? placeOf(*footprint) : QString();
    }
    void HoldPicture(bool hold) override { held = hold; }

    QString shown; // the footprint
    bool held = false;
    int events = 0;

protected:
    bool event(QEvent* event) override
    {
        const int type = event->type();
        const bool isMouse = type >= QEvent::MouseButtonPress && type <= QEvent::MouseMove;
        events += isMouse || type == QEvent::Wheel || type == QEvent::ToolTip;
        return isMouse || QWidget::event(event);
    }
};

const QPointF onIt(5, 5);
const QPointF half(0.5, 0.5); // as on a dense screen

void send(QObject* to, QEvent::Type type)
{
    QEvent event(type);
    QApplication::sendEvent(to, &event);
}

} // namespace

/// Pick buttons beside two viewers, without a colour to write.
class ColorPickTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void init();
    void cleanup() { window_.reset(); }
    void DragsOntoViewers();
    void ArmsWithAClick();
    void LeavesTheViewerItsPicture();
    void FollowsCtrl();
    void DisarmsWithoutPicking();
    void EndsCleanly();
    void SurvivesItsOwnSignals();
    void ChoosesTheSize();

public slots:
    void OnPick(QWidget* viewer, const MxPoint& at)
    {
        const QPointF exact = button_->LastFootprint().at;
        QCOMPARE(at, MxPoint(int(exact.x()), int(exact.y())));
        log_ += (viewer == viewer_ ? "pick " : "other ") + placeOf(button_->LastFootprint()) +
                (button_->IsInputWanted() ? " of the input" : "");
    }

private:
    QStringList Taken() { return std::exchange(log_, {}); }
    /// A place of a widget, as the button counts.
    QPointF From(const QWidget& widget, QPoint at) const
    {
        return button_->mapFromGlobal(widget.mapToGlobal(at));
    }
    void StartDrag()
    {
        Pointer::Press(*button_, onIt);
        Pointer::Move(*button_, From(*viewer_, {50, 20}));
    }
    void StartArea()
    {
        Pointer::Click(*button_, onIt);
        Pointer::Press(*viewer_, {50, 20});
    }
    bool IsAtRest() const
    {
        const bool seen = viewer_ && (viewer_->held || !viewer_->shown.isEmpty());
        const bool isLit = button_ && (button_->IsPicking() || button_->isChecked());
        return !seen && !isLit && !QApplication::overrideCursor();
    }

    QStringList log_;
    std::unique_ptr<QWidget> window_;
    QPointer<PickButton> button_;
    QPointer<FakeViewer> viewer_;
    FakeViewer* other_ = nullptr;
};

void ColorPickTest::init()
{
    window_ = std::make_unique<QWidget>();
    button_ = new CCPickButton(window_.get());
    button_->setGeometry(0, 0, 24, 24);
    viewer_ = new FakeViewer(window_.get());
    viewer_->setGeometry(40, 0, 100, 60);
    other_ = new FakeViewer(window_.get());
    other_->setGeometry(150, 0, 100, 60);
    window_->resize(260, 80);
    window_->show();
    window_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    connect(button_, SIGNAL(PickColor(QWidget*, const MxPoint&)), this,
            SLOT(OnPick(QWidget*, const MxPoint&)));
    connect(button_, &PickButton::PickStarted, this, [this] { log_ += "started"; });
    connect(button_, &PickButton::PickEnded, this,
            [this](bool kept) { log_ += kept ? "kept" : "given up"; });
    log_.clear();
}

void ColorPickTest::DragsOntoViewers()
{
    StartDrag();
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::CrossCursor);
    Pointer::Move(*button_, From(*viewer_, {60, 4}) + half); // never a rectangle
    QVERIFY(viewer_->held && viewer_->shown == "60.5,4.5 (1)");
    Pointer::Move(*button_, From(*window_, {145, 4}));
    QVERIFY(viewer_->shown.isEmpty() && !QApplication::overrideCursor());
    Pointer::Release(*button_, From(*other_, {9, 8}));
    QCOMPARE(Taken(), QStringList({"started", "pick 50,20 (1)", "pick 60.5,4.5 (1)",
                                   "other 9,8 (1)", "kept"}));
    QVERIFY(IsAtRest() && !other_->held && other_->shown.isEmpty());
    StartDrag();
    Pointer::Release(*button_, onIt); // back on it: no click either
    QCOMPARE(Taken().last(), QString("given up"));
    StartDrag();
    Pointer::Stroke(*window_, Qt::Key_Escape);
    QCOMPARE(Taken().last(), QString("given up"));
    Pointer::Move(*button_, From(*viewer_, {51, 20}));
    Pointer::Move(*button_, onIt);
    Pointer::Release(*button_, onIt);
    QVERIFY(Taken().isEmpty() && IsAtRest());
}

void ColorPickTest::ArmsWithAClick()
{
    button_->SetSampleSize(5);
    Pointer::Stroke(*button_, Qt::Key_Space);
    Pointer::Move(*viewer_, {8, 9}, {}, Qt::NoButton);
    QVERIFY(button_->IsArmed() && button_->isChecked() && viewer_->shown == "8,9 (5)");
    button_->SetSampleSize(3);
    Pointer::Press(*viewer_, {8, 9});
    QVERIFY(viewer_->held && !button_->IsArmed() && button_->isChecked());
    Pointer::Move(*viewer_, {10, 6}); // as a hand shakes
    Pointer::Move(*viewer_, QPointF(3, 12) + half);
    QCOMPARE(viewer_->shown, QString("3.5,9..8,12.5"));
    Pointer::Move(*viewer_, {8, 10}); // it stays a rectangle
    Pointer::Release(*viewer_, {150, 30});
    QCOMPARE(Taken(), QStringList({"started", "pick 8,9 (3)", "pick 10,6 (3)", "pick 3.5,9..8,12.5",
                                   "pick 8,9..8,10", "pick 8,9..150,30", "kept"}));
    QVERIFY(IsAtRest());
}

void ColorPickTest::LeavesTheViewerItsPicture()
{
    Pointer::Click(*button_, onIt);
    Pointer::Press(*viewer_, onIt, {}, Qt::MiddleButton);
    Pointer::Move(*viewer_, {9, 9}, {}, Qt::MiddleButton);
    Pointer::Release(*viewer_, {9, 9}, {}, Qt::MiddleButton);
    Pointer::Wheel(*viewer_, 120);
    QVERIFY(viewer_->events == 4 && button_->IsArmed());
    ToolTipOf(*viewer_);
    Pointer::Press(*viewer_, {50, 20});
    Pointer::Wheel(*viewer_, 120);
    Pointer::Press(*viewer_, {50, 20}, {}, Qt::RightButton);
    Pointer::Release(*viewer_, {50, 20});
    QVERIFY(viewer_->events == 4 && Taken().last() == "kept");
}

void ColorPickTest::FollowsCtrl()
{
    StartArea();
    Pointer::Key(*window_, QEvent::KeyPress, Qt::Key_Control);
    Pointer::Key(*window_, QEvent::KeyPress, Qt::Key_Control, Qt::ControlModifier, true);
    Pointer::Move(*viewer_, {60, 30}, Qt::ControlModifier);
    Pointer::Key(*window_, QEvent::KeyRelease, Qt::Key_Control, Qt::ControlModifier);
    QCOMPARE(Taken().mid(2), QStringList({"pick 50,20 (1) of the input",
                                          "pick 50,20..60,30 of the input", "pick 50,20..60,30"}));
}

void ColorPickTest::DisarmsWithoutPicking()
{
    auto* second = new CCPickButton(window_.get());
    second->show();
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"a second click", [this] { Pointer::Click(*button_, onIt); }},
        {"Space again", [this] { Pointer::Stroke(*button_, Qt::Key_Space); }},
        {"Escape", [this] { Pointer::Stroke(*window_, Qt::Key_Escape); }},
        {"a press elsewhere", [this] { Pointer::Press(*window_, onIt); }},
        {"a menu", [this] { Pointer::Press(*viewer_, onIt, {}, Qt::RightButton); }},
        {"hidden", [this] { button_->hide(); }},
        {"another one", [second] { second->setFocus(); }}};
    for (const auto& [way, disarm] : ways) {
        button_->show();
        button_->setFocus();
        Pointer::Click(*button_, onIt);
        Pointer::Move(*viewer_, onIt, {}, Qt::NoButton);
        QVERIFY2(button_->IsArmed() && !IsAtRest(), way);
        disarm();
        QVERIFY2(!button_->IsArmed() && IsAtRest() && Taken().isEmpty(), way);
    }
}

void ColorPickTest::EndsCleanly()
{
    const std::pair<const char*, std::function<void()>> ends[] = {
        {"another application", [] { send(qApp, QEvent::ApplicationDeactivate); }},
        {"a dialog", [this] { send(window_.get(), QEvent::WindowBlocked); }},
        {"disabled", [this] { window_->setEnabled(false); }},
        {"hidden", [this] { window_->hide(); }},
        {"a lost release", [this] { Pointer::Move(*window_, onIt, {}, Qt::NoButton); }},
        {"the button gone", [this] { delete button_; }},
        {"all gone", [this] { window_.reset(); }}};
    for (const auto& [what, end] : ends) {
        for (const auto start : {&ColorPickTest::StartDrag, &ColorPickTest::StartArea}) {
            init();
            (this->*start)();
            QVERIFY2(button_->IsPicking() && viewer_->held && !viewer_->shown.isEmpty(), what);
            end();
            QVERIFY2(Taken().last() == "given up" && IsAtRest(), what);
        }
    }
    init();
    StartArea();
    delete viewer_;
    QVERIFY(Taken().last() == "given up" && IsAtRest());
    init();
    StartDrag();
    delete viewer_;
    QVERIFY(!QApplication::overrideCursor() && button_->IsPicking()); // it may go on elsewhere
}

void ColorPickTest::SurvivesItsOwnSignals()
{
    // What is written may close the page of the button: with the first value or with the last.
    for (const auto start : {&ColorPickTest::StartDrag, &ColorPickTest::StartArea}) {
        for (int left : {1, 2}) {
            init();
            connect(button_, &PickButton::PickColor, this, [this, &left] {
                if (--left == 0)
                    delete button_;
            });
            (this->*start)();
            QWidget* dragged = button_ && !button_->isChecked() ? button_.data() : nullptr;
            Pointer::Release(dragged ? *dragged : *viewer_, {60, 8});
            QVERIFY(!button_ && Taken().last() == "given up" && IsAtRest());
        }
    }
}

void ColorPickTest::ChoosesTheSize()
{
    Preferences::Global().Remove(PREF_ColorSampleSize);
    auto* choice = new SampleButton(window_.get());
    const SampleButton alike;
    choice->show();
    Pointer::Stroke(*choice, Qt::Key_Space);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    QVERIFY(menu && menu->actions().size() == 3 && menu->actions()[0]->isChecked());
    menu->actions()[2]->trigger();
    menu->close();
    choice->SetSampleSize(4);
    QVERIFY(choice->accessibleName().contains("5 x 5") && alike.SampleSize() == 5);
    Preferences::Global().Set(PREF_ColorSampleSize, "many");
    QCOMPARE(alike.SampleSize(), 1);
}

QTEST_MAIN(ColorPickTest)
#include "color_pick_test.moc"
