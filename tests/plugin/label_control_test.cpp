#include "controls/inspector/LabelControl.h"

#include "plugin/SliderStage.h"
#include "script/ScriptSystem.h"
#include "system/base/HostClassIds.h"
#include "system/controls/Menu.h"
#include "system/resources/Resources.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/KeyFrameIndicator.h"
#include "widgets/CustomNestButton.h"
#include "widgets/CustomSeparator.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

using namespace Marlox;

namespace {

using Attributes = std::vector<TagPair>;

/// Attributes of a nest as tools give them.
Attributes nest(int rows, bool open = true, const Attributes& more = {})
{
    Attributes all{{IAS_Control, CLSID_InputControl_Nest},
                   {IA_Passive, 1},
                   {IA_Animatable, 0},
                   {IAD_Default, open ? 1.0 : 0.0},
                   {LBL_Rows, rows}};
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

LabelControl& labelOf(const SliderStage& stage, const char* id)
{
    return dynamic_cast<LabelControl&>(*stage.page->ControlOf(stage.InputOf(id)));
}

QByteArray bitmapOf(const LabelControl& control)
{
    return control.findChild<CustomNestButton*>()->Bitmap();
}

void click(QWidget& widget, QPointF at, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    Pointer::Press(widget, at, modifiers);
    Pointer::Release(widget, at, modifiers);
    QCoreApplication::processEvents();
}

bool isRowShown(const SliderStage& stage, const char* id)
{
    QCoreApplication::processEvents();
    const InputControl* control = stage.page->ControlOf(stage.InputOf(id));
    return control && control->isVisible();
}

/// Rows of pixels in which a colour runs from edge to edge.
QList<int> linesOf(const QImage& image, const QColor& color)
{
    QList<int> rows;
    for (int y = 0; y < image.height(); ++y) {
        int x = 0;
        while (x < image.width() && image.pixelColor(x, y).rgb() == color.rgb())
            ++x;
        if (x == image.width())
            rows += y;
    }
    return rows;
}

} // namespace

/// Labels, nests, separators and spacers on an inspector page.
class LabelControlTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void showsItsText();
    void wrapsLongTexts();
    void separatorIsOneCrispLine();
    void holdsNoValue();
    void buttonShowsItsState();
    void clickAnywhereFolds();
    void keysFold();
    void menuIsItsOwn();
    void remembersWithoutAnEdit();
    void followsItsInput();
    void foldsAndOpensAll();
    void nestsKeepTheirOwnState();
    void opensWhileLocked();
    void endsADragInItsRows();
    void readsAttributesAnew();
    void tellsScreenReaders();
};

void LabelControlTest::showsItsText()
{
    const SliderStage stage({{"Plain", {{IAS_Control, CLSID_InputControl_Label}}},
                             {"Given",
                              {{IAS_Control, CLSID_InputControl_Label},
                               {LBLS_Text, "Say & <b>more</b>"},
                               {IAS_DataType, CLSID_DataType_Image}}},
                             {"Group", nest(0, true, {{LBLS_Text, "Range"}})}});
    QCOMPARE(labelOf(stage, "Plain").findChild<QLabel*>("label")->text(), QString("Plain"));
    const auto* given = labelOf(stage, "Given").findChild<QLabel*>("label");
    QCOMPARE(given->text(), QString("Say & <b>more</b>"));
    QCOMPARE(given->textFormat(), Qt::PlainText);
    const auto* title = labelOf(stage, "Group").findChild<ElideLabel*>("label");
    QCOMPARE(title->Text(), QString("Range"));
    QVERIFY(title->isVisible() && title->font().bold());
    QCOMPARE(labelOf(stage, "Group").accessibleName(), QString("Range"));
}

void LabelControlTest::wrapsLongTexts()
{
    const QByteArray text = QByteArray("word ").repeated(40);
    const SliderStage stage(
        {{"Text", {{IAS_Control, CLSID_InputControl_Label}, {LBLS_Text, text.constData()}}},
         {"Below", {}}},
        700);
    const auto lines = [&stage] {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        const auto* label = labelOf(stage, "Text").findChild<QLabel*>("label");
        return label->height() / label->fontMetrics().height();
    };
    const int wide = lines();
    QVERIFY(wide >= 2);
    stage.window->resize(380, stage.window->height());
    QVERIFY(lines() >= wide + 2);
    stage.window->resize(700, stage.window->height());
    QCOMPARE(lines(), wide);
    const QRect place = labelOf(stage, "Text").geometry();
    QCOMPARE(stage.ControlOf("Below").y(), place.bottom() + 1 + 4);
    stage.InputOf("Text").SetAttrsTagList(TagList({{LBLS_Text, "short"}}));
    QCOMPARE(lines(), 1);
}

void LabelControlTest::separatorIsOneCrispLine()
{
    const SliderStage stage({{"Line", {{IAS_Control, CLSID_InputControl_Separator}}}});
    LabelControl& control = labelOf(stage, "Line");
    const QColor color = LookPack::Global().Color("System.LineColour", {1, 2, 3}).ToQColor();
    for (const auto& [ratio, thickness] :
         {std::pair{1.0, 1}, {1.25, 1}, {1.5, 2}, {2.0, 2}, {3.0, 3}}) {
        QImage image((QSizeF(control.size()) * ratio).toSize(), QImage::Format_RGB32);
        image.fill(Qt::black);
        image.setDevicePixelRatio(ratio);
        control.findChild<CustomSeparator*>()->render(&image, {}, {}, QWidget::DrawChildren);
        const QList<int> lines = linesOf(image, color);
        QCOMPARE(lines.size(), thickness);
        QVERIFY(std::abs(lines.front() + lines.back() + 1 - image.height()) <= 2); // the middle
        QCOMPARE(linesOf(image, Qt::black).size(), image.height() - thickness);    // none half lit
    }
}

void LabelControlTest::holdsNoValue()
{
    for (const char* id : {CLSID_InputControl_Label, CLSID_InputControl_Nest,
                           CLSID_InputControl_Separator, CLSID_InputControl_Spacer}) {
        const SliderStage stage({{"Row", {{IAS_Control, id}, {IAD_Default, 1.0}}}, {"Gain", {}}});
        QCOMPARE(stage.page->findChildren<KeyFrameIndicator*>().size(), 1); // the slider's
        Menu menu;
        labelOf(stage, "Row").BuildMenu(menu);
        for (const Menu::Entry& entry : menu.Entries())
            QVERIFY2(entry.id == 0 || entry.id >= InputControl::FirstOwnMenuId,
                     qPrintable(entry.text));
        if (id == std::string_view(CLSID_InputControl_Spacer))
            QCOMPARE(labelOf(stage, "Row").height(), 8); // nothing but room
    }
}

void LabelControlTest::buttonShowsItsState()
{
    const SliderStage stage({{"Group", nest(1)}, {"Gain", {}}});
    LabelControl& control = labelOf(stage, "Group");
    const QPointF inside = control.rect().center();
    const auto enter = [&control](bool in) {
        QEvent event(in ? QEvent::Enter : QEvent::Leave);
        QApplication::sendEvent(&control, &event);
    };
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.2.1"));
    enter(true);
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.2.2"));
    Pointer::Press(control, inside);
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.2.3"));
    Pointer::Move(control, QPointF(inside.x(), -20));
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.2.1"));
    Pointer::Move(control, inside);
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.2.3"));
    Pointer::Release(control, inside);
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.1.2"));
    enter(false);
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.1.1"));
    stage.InputOf("Group").SetAttrsTagList(TagList({{IC_Disabled, 1}}));
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.1.4"));
    // What is drawn is the look's bitmap, in the middle of its place.
    auto* button = control.findChild<CustomNestButton*>();
    const QImage seen = button->grab().toImage();
    const QImage bitmap = ResDIB::PixmapOf("Controls.Nest.Button.1.4", 1.0).toImage();
    const QPoint corner((button->width() - bitmap.width()) / 2,
                        (button->height() - bitmap.height()) / 2);
    QCOMPARE(seen.pixelColor(corner + QPoint(6, 6)), bitmap.pixelColor(6, 6));
}

void LabelControlTest::clickAnywhereFolds()
{
    const SliderStage stage({{"Group", nest(1)}, {"Gain", {}}, {"Lift", {}}});
    LabelControl& control = labelOf(stage, "Group");
    auto* title = control.findChild<ElideLabel*>();
    QWidget* const targets[] = {control.findChild<CustomNestButton*>(), title, &control};
    bool open = true;
    for (QWidget* target : targets) { // parts pass the press on, as the window system's would be
        click(*target, target == &control ? QPointF(control.width() - 2, 2) : QPointF(3, 3));
        open = !open;
        QCOMPARE(control.IsNestOpen(), open);
        QCOMPARE(isRowShown(stage, "Gain"), open);
        QVERIFY(isRowShown(stage, "Lift"));
    }
    Pointer::Press(control, {5, 5});
    Pointer::Release(control, {5, 200}); // thought better of it
    Pointer::Press(control, {5, 5}, Qt::NoModifier, Qt::RightButton);
    Pointer::Release(control, {5, 5}, Qt::NoModifier, Qt::RightButton);
    Pointer::Press(control, {5, 5});
    QEvent lost(QEvent::WindowDeactivate);
    QApplication::sendEvent(&control, &lost);
    Pointer::Release(control, {5, 5});
    QCOMPARE(control.IsNestOpen(), open);
}

void LabelControlTest::keysFold()
{
    const SliderStage stage({{"Group", nest(1)}, {"Gain", {}}});
    LabelControl& control = labelOf(stage, "Group");
    QVERIFY(control.focusPolicy() & Qt::TabFocus);
    stage.EditOf("Gain").setFocus();
    const QImage plain = control.grab().toImage();
    control.setFocus();
    QVERIFY(control.hasFocus());
    QVERIFY(control.grab().toImage() != plain); // the ring
    const auto press = [&control](int key, Qt::KeyboardModifiers held = Qt::NoModifier,
                                  bool repeated = false) {
        QKeyEvent asked(QEvent::ShortcutOverride, key, held);
        asked.ignore();
        QApplication::sendEvent(&control, &asked);
        Pointer::Key(control, QEvent::KeyPress, key, held, repeated);
        return asked.isAccepted(); // before any shortcut gets it
    };
    struct {
        int key;
        bool open;
    } const keys[] = {{Qt::Key_Right, true},  {Qt::Key_Left, false},  {Qt::Key_Left, false},
                      {Qt::Key_Right, true},  {Qt::Key_Space, false}, {Qt::Key_Return, true},
                      {Qt::Key_Enter, false}, {Qt::Key_Space, true}};
    for (const auto& [key, open] : keys) {
        QVERIFY(press(key));
        QCOMPARE(control.IsNestOpen(), open);
    }
    press(Qt::Key_Space, Qt::NoModifier, true); // held: once is enough
    QVERIFY(control.IsNestOpen());
    for (const auto& [key, held] : {std::pair{Qt::Key_Left, Qt::ControlModifier},
                                    {Qt::Key_Space, Qt::AltModifier},
                                    {Qt::Key_Up, Qt::NoModifier}}) {
        QVERIFY(!press(key, held)); // others'
        QVERIFY(control.IsNestOpen());
    }
}

void LabelControlTest::remembersWithoutAnEdit()
{
    const SliderStage stage({{"Group", nest(1)}, {"Gain", {}}});
    QSignalSpy modified(stage.document.get(), &MarloxDoc::ModifiedChanged);
    click(labelOf(stage, "Group"), {5, 5});
    QCOMPARE(stage.ValueOf("Group"), 0.0);
    QCOMPARE(stage.UndoEntries(), 0);
    QVERIFY(modified.empty());

    QVERIFY(stage.document->FromText(stage.document->ToText(), nullptr));
    stage.page->SetOperator(stage.document->Tools().front().Get());
    QVERIFY(stage.page->Controls().size() == 1); // the folded row waits
    QVERIFY(!dynamic_cast<LabelControl&>(*stage.page->Controls().front()).IsNestOpen());

    // An input that can't remember it folds all the same.
    const SliderStage other(
        {{"Group", nest(1, true, {{IAS_DataType, CLSID_DataType_Text}})}, {"Gain", {}}});
    click(labelOf(other, "Group"), {5, 5});
    QVERIFY(!isRowShown(other, "Gain"));
    click(labelOf(other, "Group"), {5, 5});
    QVERIFY(isRowShown(other, "Gain"));
}

void LabelControlTest::followsItsInput()
{
    const SliderStage stage({{"Group", nest(1)}, {"Gain", {}}});
    const LabelControl& control = labelOf(stage, "Group");
    stage.InputOf("Group").SetValue(Number(0.0), 0.0);
    QVERIFY(!control.IsNestOpen() && !isRowShown(stage, "Gain"));
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.1.1"));
    // What is folded follows scripts and undo.
    stage.InputOf("Gain").SetValue(Number(0.75), 0.0);
    stage.InputOf("Group").SetValue(Number(1.0), 0.0);
    QVERIFY(isRowShown(stage, "Gain"));
    QCOMPARE(stage.SliderOf("Gain").Value(), 0.75);
    stage.InputOf("Group").SetValue(Number(0.0), 0.0);
    stage.document->Undo().Undo();
    stage.InputOf("Group").SetValue(Number(1.0), 0.0);
    QCOMPARE(stage.SliderOf("Gain").Value(), 0.0);
    QCOMPARE(stage.EditOf("Gain").text(), QString("0"));
}

void LabelControlTest::foldsAndOpensAll()
{
    Attributes recorded = nest(1);
    for (TagPair& pair : recorded) {
        if (pair.tag == IA_Passive)
            pair.value = 0;
    }
    const SliderStage stage({{"Outer", nest(2)},
                             {"Inner", nest(1)},
                             {"Gain", {}},
                             {"Recorded", recorded},
                             {"Lift", {}},
                             {"Again", recorded},
                             {"Gamma", {}},
                             {"Fixed", nest(1, true, {{IC_Disabled, 1}})},
                             {"Pivot", {}}});
    const auto opened = [&stage] {
        QString states;
        for (const char* id : {"Outer", "Inner", "Recorded", "Again", "Fixed"})
            states += labelOf(stage, id).IsNestOpen() ? '+' : '-';
        return states;
    };
    click(labelOf(stage, "Outer"), {5, 5}, Qt::ControlModifier);
    QCOMPARE(opened(), QString("----+"));
    QCOMPARE(stage.UndoEntries(), 1); // of those that are recorded
    QCOMPARE(stage.document->Undo().UndoText(), QString("Fold All"));
    click(labelOf(stage, "Recorded"), {5, 5}, Qt::ControlModifier);
    QCOMPARE(opened(), QString("+++++"));
    QVERIFY(isRowShown(stage, "Gain"));
    click(labelOf(stage, "Again"), {5, 5});
    Pointer::Key(labelOf(stage, "Again"), QEvent::KeyPress, Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE(opened(), QString("+++++")); // as the one that was used
}

void LabelControlTest::nestsKeepTheirOwnState()
{
    const SliderStage stage(
        {{"Outer", nest(3)}, {"Gain", {}}, {"Inner", nest(1, false)}, {"Lift", {}}, {"Gamma", {}}});
    LabelControl& outer = labelOf(stage, "Outer");
    LabelControl& inner = labelOf(stage, "Inner");
    QVERIFY(inner.x() > outer.x()); // inside, and seen to be
    QCOMPARE(inner.geometry().right(), outer.geometry().right());
    click(outer, {5, 5});
    QVERIFY(!inner.isVisible() && isRowShown(stage, "Gamma"));
    click(outer, {5, 5});
    QVERIFY(inner.isVisible() && isRowShown(stage, "Gain") && !isRowShown(stage, "Lift"));
    click(inner, {5, 5});
    QVERIFY(isRowShown(stage, "Lift"));
}

void LabelControlTest::opensWhileLocked()
{
    const SliderStage stage({{"Group", nest(1, false)}, {"Gain", {}}});
    stage.tool->SetLocked(true);
    LabelControl& control = labelOf(stage, "Group");
    QVERIFY(control.isEnabled()); // a lock keeps values, which can be looked at
    click(control, {5, 5});
    QVERIFY(isRowShown(stage, "Gain"));
    QVERIFY(!stage.ControlOf("Gain").isEnabled());
    QCOMPARE(stage.ValueOf("Group"), 1.0);
    stage.InputOf("Group").SetAttrsTagList(TagList({{IA_Passive, 0}}));
    QVERIFY(!control.isEnabled());
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.2.4"));
}

void LabelControlTest::menuIsItsOwn()
{
    const SliderStage stage({{"Group", nest(1)}, {"Gain", {}}, {"Other", nest(1)}, {"Lift", {}}});
    LabelControl& control = labelOf(stage, "Group");
    for (const auto& [text, own, other] : {std::tuple{"Fold", false, true},
                                           {"Open", true, true},
                                           {"Fold All", false, false},
                                           {"Open All", true, true}}) {
        Menu menu;
        control.BuildMenu(menu);
        TagList tags;
        for (const Menu::Entry& entry : std::vector(menu.Entries())) {
            if (QString(entry.text).remove('&') == text)
                QVERIFY(static_cast<Object&>(control).HandleMenu(entry.id, nullptr, tags));
        }
        QCOMPARE(control.IsNestOpen(), own);
        QCOMPARE(labelOf(stage, "Other").IsNestOpen(), other);
    }
}

void LabelControlTest::endsADragInItsRows()
{
    const SliderStage stage({{"Group", nest(1)}, {"Gain", {{IAD_Default, 0.5}}}});
    CustomSlider& slider = stage.SliderOf("Gain");
    const QPointF start = KnobOf(slider);
    slider.setFocus();
    Pointer::Press(slider, start);
    Pointer::Move(slider, start + QPointF(30, 0));
    const double reached = stage.ValueOf("Gain");
    QVERIFY(reached > 0.5 && stage.document->IsAutoProxy());
    stage.InputOf("Group").SetValue(Number(0.0), 0.0); // a script
    QVERIFY(!slider.isVisible() && !slider.InGesture());
    QVERIFY(labelOf(stage, "Group").hasFocus());
    QVERIFY(!stage.document->IsAutoProxy());
    QCOMPARE(stage.document->Undo().Depth(), 0);
    QCOMPARE(stage.UndoEntries(), 1);
    Pointer::Move(slider, start + QPointF(60, 0));
    Pointer::Release(slider, start + QPointF(60, 0));
    QCOMPARE(stage.ValueOf("Gain"), reached);
}

void LabelControlTest::readsAttributesAnew()
{
    const SliderStage stage({{"Group", nest(1, false)}, {"Gain", {}}, {"Lift", {}}});
    LabelControl& control = labelOf(stage, "Group");
    QVERIFY(isRowShown(stage, "Lift"));
    stage.InputOf("Group").SetAttrsTagList(TagList({{LBL_Rows, 2}, {IAS_Help, "All of it."}}));
    QVERIFY(!isRowShown(stage, "Lift"));
    QCOMPARE(control.GetAttr(LBL_Rows), int64(2));
    QVERIFY(control.toolTip().startsWith("All of it.\n") &&
            control.toolTip().contains("Ctrl+click"));
    control.SetAttrsTagList(TagList({{LBL_Rows, 1}, {LBLS_Text, "Some"}}));
    QVERIFY(isRowShown(stage, "Lift"));
    QCOMPARE(QString(control.GetAttrS(LBLS_Text)), QString("Some"));
    QCOMPARE(control.findChild<ElideLabel*>()->Text(), QString("Some"));
    QCOMPARE(control.accessibleName(), QString("Some"));
}

void LabelControlTest::tellsScreenReaders()
{
    const SliderStage stage({{"Group", nest(1)},
                             {"Gain", {}},
                             {"Line", {{IAS_Control, CLSID_InputControl_Separator}}}});
    LabelControl& control = labelOf(stage, "Group");
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&control);
    QVERIFY(access);
    QCOMPARE(access->role(), QAccessible::Button);
    QCOMPARE(access->text(QAccessible::Name), QString("Group"));
    QVERIFY(access->state().expandable && access->state().expanded);
    access->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QVERIFY(!control.IsNestOpen());
    QVERIFY(access->state().collapsed && !access->state().expanded);
    stage.InputOf("Group").SetAttrsTagList(TagList({{IC_Disabled, 1}}));
    access->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QVERIFY(!control.IsNestOpen());
    QCOMPARE(QAccessible::queryAccessibleInterface(&labelOf(stage, "Line"))->role(),
             QAccessible::Separator);
}

QTEST_MAIN(LabelControlTest)
#include "label_control_test.moc"
