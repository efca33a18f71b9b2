#include "controls/inspector/LabelControl.h"

#include "plugin/InspectorStage.h"
#include "system/controls/Menu.h"
#include "system/resources/Resources.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/KeyFrameIndicator.h"
#include "widgets/CustomNestButton.h"
#include "widgets/CustomSeparator.h"

#include <functional>

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <QtTest>

using namespace Marlox;

namespace {

/// A nest as tools give it.
StagedInput nest(const char* id, int rows, bool open = true, const std::vector<TagPair>& more = {})
{
    std::vector<TagPair> all = more;
    for (const TagPair& pair : {TagPair{IA_Passive, 1},
                                {IA_Animatable, 0},
                                {IAD_Default, open ? 1.0 : 0.0},
                                {LBL_Rows, rows}})
        all.push_back(pair);
    return {id, all, CLSID_InputControl_Nest};
}

LabelControl& labelOf(const InspectorStage& stage, const char* id = nullptr)
{
    return stage.ControlOf<LabelControl>(id);
}

QByteArray bitmapOf(const LabelControl& control)
{
    return control.findChild<CustomNestButton*>()->Bitmap();
}

void click(QWidget& widget, QPointF at = {5, 5}, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    Pointer::Click(widget, at, modifiers);
    QCoreApplication::processEvents();
}

bool isRowShown(const InspectorStage& stage, const char* id)
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
    void opensWhileLocked();
    void readsAttributesAnew();
    void tellsScreenReaders();
};

void LabelControlTest::showsItsText()
{
    const char* const markup = "Say & <b>more</b>";
    const InspectorStage stage({{"Plain", {}, CLSID_InputControl_Label},
                                {"Given",
                                 {{LBLS_Text, markup}, {IAS_DataType, CLSID_DataType_Image}},
                                 CLSID_InputControl_Label},
                                nest("Group", 0, true, {{LBLS_Text, "Range"}})});
    QCOMPARE(stage.PartOf<QLabel>("label", "Plain")->text(), QString("Plain"));
    const auto* given = stage.PartOf<QLabel>("label", "Given");
    QCOMPARE(given->text(), QString(markup));
    QCOMPARE(given->textFormat(), Qt::PlainText);
    const auto* title = stage.PartOf<ElideLabel>("label", "Group");
    QCOMPARE(title->Text(), QString("Range"));
    QVERIFY(title->isVisible() && title->font().bold());
}

void LabelControlTest::wrapsLongTexts()
{
    const QByteArray text = QByteArray("word ").repeated(40);
    const InspectorStage stage(
        {{"Text", {{LBLS_Text, text.constData()}}, CLSID_InputControl_Label}, {"Below", {}}});
    const auto lines = [&stage](int width) {
        stage.window->resize(width, stage.window->height());
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        const auto* label = stage.PartOf<QLabel>("label");
        return label->height() / label->fontMetrics().height();
    };
    const int wide = lines(700);
    QVERIFY(wide >= 2 && lines(380) >= wide + 2);
    QCOMPARE(lines(700), wide);
    QCOMPARE(stage.ControlOf("Below").y(), stage.ControlOf().geometry().bottom() + 1 + 4);
    stage.InputOf().SetAttrsTagList(TagList({{LBLS_Text, "short"}}));
    QCOMPARE(lines(700), 1);
}

void LabelControlTest::separatorIsOneCrispLine()
{
    const InspectorStage stage({{"Line", {}, CLSID_InputControl_Separator}});
    LabelControl& control = labelOf(stage);
    const QColor color = LookColor("System.LineColour");
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
        const InspectorStage stage({{"Row", {{IAD_Default, 1.0}}, id}, {"Gain", {}}});
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
    const InspectorStage stage({nest("Group", 1), {"Gain", {}}});
    LabelControl& control = labelOf(stage);
    const QPointF inside = control.rect().center();
    const auto send = [&control](QEvent::Type type) {
        QEvent event(type);
        QApplication::sendEvent(&control, &event);
    };
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"2.1", [] {}},
        {"2.2", [&] { send(QEvent::Enter); }},
        {"2.3", [&] { Pointer::Press(control, inside); }},
        {"2.1",
         [&] {
             Pointer::Move(control, {5, -20});
         }},
        {"2.3", [&] { Pointer::Move(control, inside); }},
        {"1.2", [&] { Pointer::Release(control, inside); }},
        {"1.1", [&] { send(QEvent::Leave); }},
        {"1.4", [&] {
             stage.InputOf().SetAttrsTagList(TagList({{IC_Disabled, 1}}));
         }}};
    for (const auto& [bitmap, act] : rows) {
        act();
        QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.") + bitmap);
    }
    // What is drawn is the look's bitmap, in the middle of its place.
    auto* button = control.findChild<CustomNestButton*>();
    const QImage bitmap = ResDIB::PixmapOf("Controls.Nest.Button.1.4", 1.0).toImage();
    const QPoint corner((button->width() - bitmap.width()) / 2,
                        (button->height() - bitmap.height()) / 2);
    QCOMPARE(button->grab().toImage().pixelColor(corner + QPoint(6, 6)), bitmap.pixelColor(6, 6));
}

void LabelControlTest::clickAnywhereFolds()
{
    const InspectorStage stage({nest("Group", 1), {"Gain", {}}, {"Lift", {}}});
    LabelControl& control = labelOf(stage);
    bool open = true;
    // Parts pass the press on, as the window system's would be.
    for (QWidget* target : {stage.PartOf<QWidget>("button"), stage.PartOf<QWidget>("label"),
                            static_cast<QWidget*>(&control)}) {
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
    const InspectorStage stage({nest("Group", 1), {"Gain", {}}});
    LabelControl& control = labelOf(stage);
    QVERIFY(control.focusPolicy() & Qt::TabFocus);
    stage.EditOf("Gain").setFocus();
    const QImage plain = control.grab().toImage();
    control.setFocus();
    QVERIFY(control.hasFocus());
    QVERIFY(control.grab().toImage() != plain); // the ring
    QString states;
    for (const int key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_Left, Qt::Key_Right, Qt::Key_Space,
                          Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        QVERIFY(Pointer::IsWanted(control, key));
        Pointer::Key(control, QEvent::KeyPress, key);
        states += control.IsNestOpen() ? '+' : '-';
    }
    QCOMPARE(states, QString("+--+-+-+"));
    Pointer::Key(control, QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, true);
    QVERIFY(control.IsNestOpen()); // held: once is enough
    for (const auto& [key, held] : {std::pair{Qt::Key_Left, Qt::ControlModifier},
                                    {Qt::Key_Space, Qt::AltModifier},
                                    {Qt::Key_Up, Qt::NoModifier}}) {
        QVERIFY(!Pointer::IsWanted(control, key, held)); // others'
        Pointer::Key(control, QEvent::KeyPress, key, held);
        QVERIFY(control.IsNestOpen());
    }
}

void LabelControlTest::remembersWithoutAnEdit()
{
    const InspectorStage stage({nest("Group", 1), {"Gain", {}}});
    QSignalSpy modified(stage.document.get(), &MarloxDoc::ModifiedChanged);
    click(labelOf(stage));
    QCOMPARE(stage.Outcome(), QString("0 (0)"));
    QVERIFY(modified.empty());

    QVERIFY(stage.document->FromText(stage.document->ToText(), nullptr));
    stage.page->SetOperator(stage.document->Tools().front().Get());
    QVERIFY(stage.page->Controls().size() == 1); // the folded row waits
    QVERIFY(!dynamic_cast<LabelControl&>(*stage.page->Controls().front()).IsNestOpen());

    // An input that can't remember it folds all the same.
    const InspectorStage other(
        {nest("Group", 1, true, {{IAS_DataType, CLSID_DataType_Text}}), {"Gain", {}}});
    for (const bool open : {false, true}) {
        click(labelOf(other));
        QCOMPARE(isRowShown(other, "Gain"), open);
    }
}

void LabelControlTest::followsItsInput()
{
    const InspectorStage stage({nest("Group", 1), {"Gain", {}}});
    for (const bool open : {false, true}) {
        stage.InputOf().SetValue(Number(open), 0.0); // a script
        QCOMPARE(labelOf(stage).IsNestOpen(), open);
        QCOMPARE(isRowShown(stage, "Gain"), open);
    }
    // What is folded follows undo.
    stage.InputOf("Gain").SetValue(Number(0.75), 0.0);
    stage.InputOf().SetValue(Number(0.0), 0.0);
    stage.document->Undo().Undo();
    stage.InputOf().SetValue(Number(1.0), 0.0);
    QCOMPARE(stage.SliderOf("Gain").Value(), 0.0);
    QCOMPARE(stage.EditOf("Gain").text(), QString("0"));
}

void LabelControlTest::foldsAndOpensAll()
{
    const auto recorded = [](const char* id) {
        StagedInput input = nest(id, 1);
        input.attributes[0].value = 0; // IA_Passive
        return input;
    };
    const InspectorStage stage({nest("Outer", 2),
                                nest("Inner", 1),
                                {"Gain", {}},
                                recorded("Recorded"),
                                {"Lift", {}},
                                recorded("Again"),
                                {"Gamma", {}},
                                nest("Fixed", 1, true, {{IC_Disabled, 1}}),
                                {"Pivot", {}}});
    const auto opened = [&stage] {
        QString states;
        for (const char* id : {"Outer", "Inner", "Recorded", "Again", "Fixed"})
            states += labelOf(stage, id).IsNestOpen() ? '+' : '-';
        return states;
    };
    QVERIFY(labelOf(stage, "Inner").x() > labelOf(stage).x()); // inside, and seen to be
    click(labelOf(stage, "Outer"), {5, 5}, Qt::ControlModifier);
    QCOMPARE(opened(), QString("----+"));
    QCOMPARE(stage.UndoTexts(), QStringList("Fold All")); // of those that are recorded
    click(labelOf(stage, "Recorded"), {5, 5}, Qt::ControlModifier);
    QCOMPARE(opened(), QString("+++++"));
    QVERIFY(isRowShown(stage, "Gain"));
    click(labelOf(stage, "Again"));
    Pointer::Key(labelOf(stage, "Again"), QEvent::KeyPress, Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE(opened(), QString("+++++")); // as the one that was used
}

void LabelControlTest::opensWhileLocked()
{
    const InspectorStage stage({nest("Group", 1, false), {"Gain", {}}});
    LabelControl& control = labelOf(stage);
    stage.tool->SetLocked(true);
    QVERIFY(control.isEnabled()); // a lock keeps values, which can be looked at
    click(control);
    QVERIFY(isRowShown(stage, "Gain") && !stage.ControlOf("Gain").isEnabled());
    QCOMPARE(stage.ValueOf(), 1.0);
    stage.InputOf().SetAttrsTagList(TagList({{IA_Passive, 0}}));
    QVERIFY(!control.isEnabled());
    QCOMPARE(bitmapOf(control), QByteArray("Controls.Nest.Button.2.4"));
}

void LabelControlTest::menuIsItsOwn()
{
    const InspectorStage stage({nest("Group", 1), {"Gain", {}}, nest("Other", 1), {"Lift", {}}});
    LabelControl& control = labelOf(stage);
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

void LabelControlTest::readsAttributesAnew()
{
    const InspectorStage stage({nest("Group", 1, false), {"Gain", {}}, {"Lift", {}}});
    LabelControl& control = labelOf(stage);
    QVERIFY(isRowShown(stage, "Lift"));
    stage.InputOf().SetAttrsTagList(TagList({{LBL_Rows, 2}, {IAS_Help, "All of it."}}));
    QVERIFY(!isRowShown(stage, "Lift"));
    QCOMPARE(control.GetAttr(LBL_Rows), int64(2));
    QVERIFY(control.toolTip().startsWith("All of it.\n"));
    QVERIFY(control.toolTip().contains("Ctrl+click"));
    control.SetAttrsTagList(TagList({{LBL_Rows, 1}, {LBLS_Text, "Some"}}));
    QVERIFY(isRowShown(stage, "Lift"));
    for (const QString& text : {QString(control.GetAttrS(LBLS_Text)), control.accessibleName(),
                                stage.PartOf<ElideLabel>("label")->Text()})
        QCOMPARE(text, QString("Some"));
    // What a script sets before there is an input counts too.
    const Ref<Object> made(ClassRegistry::Global().Create(CLSID_InputControl_Nest, ScriptVal(),
                                                          TagList({{LBL_Rows, 1}})));
    made->SetAttrsTagList(TagList({{LBL_Rows, 3}}));
    auto& bound = dynamic_cast<LabelControl&>(*made);
    QVERIFY(bound.SetAttrsTagList(&stage.InputOf("Gain"), TagList()));
    QCOMPARE(bound.GetAttr(LBL_Rows), int64(3));
}

void LabelControlTest::tellsScreenReaders()
{
    const InspectorStage stage(
        {nest("Group", 1), {"Gain", {}}, {"Line", {}, CLSID_InputControl_Separator}});
    LabelControl& control = labelOf(stage);
    QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&control);
    QCOMPARE(access->role(), QAccessible::Button);
    QCOMPARE(access->text(QAccessible::Name), QString("Group"));
    QVERIFY(access->state().expandable && access->state().expanded);
    const auto press = [access] {
        access->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    };
    press();
    QVERIFY(!control.IsNestOpen());
    QVERIFY(access->state().collapsed && !access->state().expanded);
    stage.InputOf().SetAttrsTagList(TagList({{IC_Disabled, 1}}));
    press();
    QVERIFY(!control.IsNestOpen());
    QCOMPARE(QAccessible::queryAccessibleInterface(&labelOf(stage, "Line"))->role(),
             QAccessible::Separator);
}

QTEST_MAIN(LabelControlTest)
#include "label_control_test.moc"
