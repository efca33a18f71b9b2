#include "plugin/ColorStage.h"
#include "system/color/ColorPreferences.h"
#include "system/controls/ColorDrag.h"
#include "system/controls/HostDialogs.h"
#include "system/widgets/CustomButton.h"
#include "system/widgets/ElideLabel.h"
#include "widgets/CustomSwatch.h"

#include <QMenu>

#include <QtTest>

using namespace Marlox;

namespace {

/// Answers the question for a colour.
class ColorDialog final : public HostDialogs {
public:
    ColorDialog() : before_(Install(this)) {}
    ~ColorDialog() override { Install(before_); }
    void Message(Kind, const QString&, const QString&) override {}
    Answer Ask(const QString&, const QString&, bool) override { return Answer::No; }
    std::optional<QString> AskText(const TextRequest&) override { return {}; }
    std::optional<double> AskNumber(const NumberRequest&) override { return {}; }
    QString OpenFile(const FileRequest&) override { return {}; }
    QString SaveFile(const FileRequest&) override { return {}; }
    std::optional<MxColor> ChooseColor(const ColorRequest& request) override
    {
        asked = request.preset;
        return keeps ? std::optional(request.preset) : answer;
    }
    std::optional<MxColor> asked;
    std::optional<MxColor> answer;
    bool keeps = false;

private:
    HostDialogs* before_;
};

} // namespace

/// What a colour control does besides its numbers and its field.
class ColorCommandsTest : public QObject {
    Q_OBJECT
private slots:
    void AsksTheColorDialog();
    void CopiesToOthers();
    void ShowsWhatTagsSay();
    void LooksWhileLocked();
    void SetsKeysOfAll();
};

void ColorCommandsTest::AsksTheColorDialog()
{
    ColorStage stage;
    auto& swatch = *stage.PartOf<CustomSwatch>("swatch");
    ColorDialog dialog;
    swatch.click(); // cancelled
    QVERIFY(dialog.asked == MxColor(128, 64, 32));
    QVERIFY(stage.HasUndo({}));
    dialog.keeps = true;
    stage.Set(0.3337, 7.0, -0.5);
    swatch.click();
    QCOMPARE(stage.Rgb(), QString("0.3337 7 -0.5"));
    QVERIFY(stage.HasUndo({}));
    dialog.keeps = false;
    dialog.answer = MxColor(85, 255, 51);
    stage.InputOf("Red").SetExpression("0.25");
    stage.document->Undo().Clear();
    swatch.click();
    QCOMPARE(stage.Rgb(), QString("0.25 7 0.2"));
    QVERIFY(stage.HasUndo({"Select Color"}));
    stage.InputOf("Red").SetExpression({});
    stage.Set(0.0, 0.0, 0.0);
    const PreferenceGuard on(PREF_GammaCorrectControls, true);
    const PreferenceGuard gamma(PREF_GammaCorrectDisplayGamma, 2.0);
    dialog.answer = MxColor(51, 0, 255);
    swatch.click();
    QCOMPARE(stage.Rgb(), QString("0.04 0 1"));
    stage.Set(0.25, 0.0, 0.0);
    swatch.click();
    QVERIFY(dialog.asked == MxColor(128, 0, 0));
    for (const char* id : {"Red", "Green", "Blue"})
        stage.InputOf(id).SetAttrsTagList({{IA_ReadOnly, 1}});
    dialog.asked.reset();
    swatch.click();
    QVERIFY(!dialog.asked);
}

void ColorCommandsTest::CopiesToOthers()
{
    std::vector<StagedInput> inputs = staged(rgba);
    inputs.push_back({"Other", {{IA_Channel, 2}}, "ColorControl"});
    inputs.push_back({"Third", {{IA_Channel, 0}, {IAS_SharedWith, "Other"}}, "ColorControl"});
    inputs.push_back({"Depth", {{IA_Channel, 12}, {IAS_SharedWith, "Other"}}, "ColorControl"});
    const InspectorStage stage(inputs);
    CopyColorEvent event(
        {&stage.InputOf("Other"), &stage.InputOf("Third"), &stage.InputOf("Depth")});
    QCoreApplication::sendEvent(&stage.ControlOf(), &event);
    QCOMPARE(stage.ValueOf("Other"), 0.125);
    QCOMPARE(stage.ValueOf("Third"), 0.5);
    QCOMPARE(stage.ValueOf("Depth"), 0.0); // there is no such channel to copy
    QCOMPARE(stage.UndoTexts(), QStringList{"Copy Color"});
    QCOMPARE(stage.ControlOf<ColorControl>("Other").Color()[2], 0.125);
}

void ColorCommandsTest::ShowsWhatTagsSay()
{
    const char* parts[] = {"buttonpick", "swatch", "buttonexpand", "slidercolor0"};
    const u32 without[] = {CLRC_NoPick, CLRC_NoSwatch, CLRC_NoWheel, CLRC_NoSliders};
    for (std::size_t i = 0; i < std::size(parts); ++i) {
        const ColorStage stage(rgba, {{without[i], 1}, {CLRC_ShowWheel, 1}});
        for (std::size_t k = 0; k < std::size(parts); ++k) {
            const auto* part = stage.PartOf<QWidget>(parts[k]);
            QVERIFY2((part && part->isVisible()) == (k != i), parts[k]);
        }
        const auto* field = stage.PartOf<QWidget>("field");
        QCOMPARE(field && field->isVisible(), without[i] != CLRC_NoWheel);
    }
    const ColorStage stage(rgba, {});
    ColorControl& control = stage.Control();
    QVERIFY(!control.IsExpanded() && !stage.PartOf<QWidget>("field"));
    const int folded = control.height();
    stage.PartOf<CustomButton>("buttonexpand")->click();
    QCoreApplication::processEvents();
    QVERIFY(control.IsExpanded() && stage.Field().isVisible() && control.height() > folded + 100);
    stage.Edit("editcolor0").setFocus(); // the rows were built anew
    stage.Edit("editcolor0").setText("0.75");
    stage.InputOf().SetAttrsTagList({{CLRC_ColorSpace, 2}}); // takes what is typed
    QCOMPARE(stage.ValueOf("Red"), 0.75);
    QCOMPARE(control.SettingsOf(0).tickFreq, 0);
    QCOMPARE(stage.PartOf<ElideLabel>("huelabel")->Text(), QString("Y"));
    QVERIFY(std::abs(stage.Edit("edithue").GetValue() -
                     (0.2126 * 0.75 + 0.7152 * 0.25 + 0.0722 * 0.125)) < 1e-6);
    int64 space = 0;
    QVERIFY(control.CopyAttr(CLRC_ColorSpace, &space) && space == 2);
    // Without a colour's components there is nothing to show of one.
    const ColorStage depth({{"Z", 12, 0.5}});
    for (const char* part : {"swatch", "buttonpick", "buttonexpand"})
        QVERIFY2(!depth.PartOf<QWidget>(part)->isVisible(), part);
}

void ColorCommandsTest::LooksWhileLocked()
{
    const ColorStage stage(rgba, {});
    stage.tool->SetLocked(true);
    stage.PartOf<CustomButton>("buttonexpand")->click();
    QCoreApplication::processEvents();
    QVERIFY(stage.Control().IsExpanded() && stage.Field().isVisible());
    for (const char* part : {"field", "edithue", "swatch", "slidercolor0", "editcolor0", "reset"})
        QVERIFY2(!stage.PartOf<QWidget>(part)->isEnabled(), part);
    stage.tool->SetLocked(false);
    for (const char* part : {"field", "edithue", "swatch", "slidercolor0", "editcolor0"})
        QVERIFY2(stage.PartOf<QWidget>(part)->isEnabled(), part);
    QVERIFY(!stage.PartOf<QWidget>("reset")->isEnabled()); // all are at their defaults
    stage.Edit("editcolor0").setFocus();
    stage.tool->SetLocked(true);
    stage.InputOf().SetAttrsTagList({{IA_Passive, 1}}); // is no result, but the others are
    QVERIFY(!stage.PartOf<QWidget>("swatch")->isEnabled() && !stage.Control().focusWidget());
    QContextMenuEvent asks(QContextMenuEvent::Mouse, {5, 5}, stage.Control().mapToGlobal({5, 5}));
    QApplication::sendEvent(&stage.Control(), &asks);
    const auto* menu = stage.Control().findChild<QMenu*>();
    QVERIFY(menu && menu->isEnabled());
    stage.tool->SetLocked(false);
    stage.InputOf().SetAttrsTagList({{IA_Passive, 0}});
    // A control made anew shows what the user chose, until the tag is set again.
    stage.page->SetOperator(nullptr);
    stage.page->SetOperator(stage.tool);
    QVERIFY(stage.Control().IsExpanded());
    stage.PartOf<CustomButton>("buttonexpand")->click();
    stage.InputOf().SetAttrsTagList({{CLRC_ShowWheel, 1}});
    QVERIFY(stage.Control().IsExpanded());
}

void ColorCommandsTest::SetsKeysOfAll()
{
    const ColorStage stage;
    QAbstractButton* keys = nullptr;
    for (QAbstractButton* button : stage.window->findChildren<QAbstractButton*>()) {
        if (button->inherits("Marlox::KeyFrameIndicator"))
            keys = button;
    }
    QVERIFY(keys);
    keys->click();
    for (const ChannelInput& channel : rgba)
        QVERIFY2(stage.InputOf(channel.id).IsKeyAt(0.0), channel.id);
    QCOMPARE(stage.UndoTexts(), QStringList{"Set Keys"});
    keys->click();
    QVERIFY(!stage.InputOf("Blue").IsAnimated());
    QCOMPARE(stage.UndoEntries(), 2);
}

QTEST_MAIN(ColorCommandsTest)
#include "color_commands_test.moc"
