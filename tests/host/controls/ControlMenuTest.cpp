#include "host/controls/Probe.h"
#include "system/controls/Connections.h"

#include <QClipboard>
#include <QMenu>
#include <QtTest>

using namespace Marlox;

namespace {

/// The text of every entry that has an id, those of submenus behind "name/", "&" left out; disabled
/// ones in brackets, checked ones with a star. Their ids go into `ids`.
QStringList TextsOf(const std::vector<Menu::Entry>& entries, QHash<QString, unsigned>& ids,
                    const QString& prefix = {})
{
    QStringList texts;
    for (const Menu::Entry& entry : entries) {
        QString text = prefix + QString(entry.text).remove(QLatin1Char('&'));
        ids.insert(text, entry.id);
        if (!entry.children.empty()) {
            texts += TextsOf(entry.children, ids, text + QLatin1Char('/'));
        } else if (entry.id != 0) {
            if (entry.checked)
                text += QLatin1Char('*');
            texts += entry.enabled ? text : QLatin1Char('[') + text + QLatin1Char(']');
        }
    }
    return texts;
}

} // namespace

/// The context menu of a control.
class ControlMenuTest : public ProbePage {
    Q_OBJECT

    QHash<QString, unsigned> ids_; // of the entries by text

    QStringList Texts(Input* only = nullptr)
    {
        Menu menu;
        a_->BuildMenu(menu, only ? InputList{only} : InputList());
        ids_.clear();
        return TextsOf(menu.Entries(), ids_);
    }
    bool Run(const QString& entry, Input* only = nullptr)
    {
        Texts(only);
        TagList tags;
        return a_->HandleMenu(ids_.value(entry), nullptr, tags);
    }
    bool Has(const char* text) { return Texts().contains(text); }

private slots:
    void init() { Start(); }

    void lists()
    {
        Open(1);
        QGuiApplication::clipboard()->setText("no number");
        QCOMPARE(Texts(),
                 QStringList({"Animate", "Set Key", "[Remove Key]", "[Previous Key]", "[Next Key]",
                              "[Interpolation/Step]", "[Interpolation/Linear]",
                              "[Interpolation/Smooth]", "Add Expression", "Reset to Default",
                              "Copy Value", "[Paste Value]", "Probe"}));
        QVERIFY(input_->AddKey(0.0, Interpolation::Linear));
        QVERIFY(input_->AddKey(5.0, Interpolation::Linear));
        input_->SetExpression("1");
        QGuiApplication::clipboard()->setText(" 0,5 ");
        for (const char* wanted : {"Remove Animation", "Remove Key", "[Previous Key]", "Next Key",
                                   "Interpolation/Linear*", "Remove Expression", "Paste Value"})
            QVERIFY2(Has(wanted), wanted);
        tool_->SetLocked(true);
        for (const char* wanted : {"[Set Key]", "[Remove Expression]", "[Reset to Default]",
                                   "[Paste Value]", "Copy Value", "Next Key"})
            QVERIFY2(Has(wanted), wanted);
        QVERIFY(!Run("Remove Animation")); // listed or not, it is refused
    }

    void runs()
    {
        Open(1);
        QVERIFY(Set("a", 2.0));
        QVERIFY(Run("Animate"));
        document_->SetCurrentTime(10.0);
        QVERIFY(Run("Set Key"));
        QVERIFY(Run("Previous Key"));
        QCOMPARE(document_->CurrentTime(), 0.0);
        QVERIFY(!Run("Previous Key"));
        QVERIFY(Run("Next Key"));
        QCOMPARE(document_->CurrentTime(), 10.0);
        document_->SetCurrentTime(3.0);
        QVERIFY(Run("Interpolation/Step"));
        QCOMPARE(input_->GetAnimation().Keys().at(0.0).interpolation, Interpolation::Step);
        QCOMPARE(input_->GetAnimation().Keys().at(10.0).interpolation, Interpolation::Smooth);
        QVERIFY(!Run("Remove Key")); // none here
        document_->SetCurrentTime(10.0);
        QVERIFY(Run("Remove Key"));
        QVERIFY(Run("Remove Animation"));
        QCOMPARE(input_->GetNumber(0.0), 2.0);
        QVERIFY(Run("Add Expression"));
        QVERIFY(Run("Remove Expression"));
        QVERIFY(Run("Reset to Default"));
        QCOMPARE(input_->GetNumber(0.0), 0.0);
        Log();
        QVERIFY(Run("Probe"));
        QCOMPARE(Log(), QStringList("menu"));
        TagList tags;
        QVERIFY(!a_->HandleMenu(0, nullptr, tags));
        QVERIFY(!a_->HandleMenu(0x501, nullptr, tags)); // there is no sixth input
        QCOMPARE(History().Depth(), 0);
    }

    void copiesAndPastes()
    {
        const std::pair<const char*, Ref<Parameter>> cases[] = {
            {CLSID_DataType_Text, MakeRef<Text>("Grüße, \"du\"")},
            {CLSID_DataType_Number, MakeRef<Number>(0.1)},
            {CLSID_DataType_Point, MakeRef<Point>(0.25, -1.5)}};
        for (const auto& [type, value] : cases) {
            Open([type = type](Operator& tool) {
                tool.AddInput("a", ProbeAttributes("A", {{IAS_DataType, type}}));
            });
            QVERIFY(input_->SetValue(*value, 0.0));
            QVERIFY(Run("Copy Value"));
            QVERIFY(input_->SetDefault());
            QVERIFY(!input_->GetValue(0.0)->IsEqual(*value));
            QVERIFY(Run("Paste Value"));
            QVERIFY(input_->GetValue(0.0)->IsEqual(*value));
            QVERIFY(History().UndoText().startsWith("Paste "));
        }
    }

    void connects()
    {
        const auto inputs = [](Operator& tool) {
            tool.AddInput("a", ProbeAttributes("Mask", {{IAS_DataType, CLSID_DataType_Image}}));
        };
        Operator* source = Open(inputs);
        source->SetName("Source");
        Open(inputs);
        QCOMPARE(Texts(),
                 QStringList({"[Disconnect]", "Connect To/None*", "Connect To/Source", "Probe"}));
        QVERIFY(Run("Connect To/Source"));
        QCOMPARE(input_->GetSource(), source);
        QVERIFY(Has("Connect To/Source*"));
        QCOMPARE(History().UndoText(), QString("Connect Mask"));
        // The other way round would make a loop.
        page_->SetOperator(source);
        a_ = Of("a");
        QVERIFY(Texts().contains("[Connect To/" + tool_->GetName() + ']'));
        Input& back = *source->FindInput("a");
        const std::vector<Connection> others = ConnectionsOf(back);
        QCOMPARE(others.size(), std::size_t(2));
        QVERIFY(others[1].tool == tool_ && !others[1].can);
        QVERIFY(others[1].tip.contains("would feed itself"));
        QVERIFY(!RunConnection(back, 1));
        page_->SetOperator(tool_);
        tool_->SetLocked(true);
        Menu locked;
        AddConnections(locked, *tool_->FindInput("a"), 1);
        QVERIFY(!locked.Entries()[0].enabled && !locked.Entries()[1].enabled);
        QCOMPARE(locked.Entries()[1].tip, QString("The tool is locked."));
        tool_->SetLocked(false);
        a_ = Of("a");
        QVERIFY(Run("Disconnect"));
        QVERIFY(!input_->GetSource());
    }

    void ofSeveralInputs()
    {
        Open([](Operator& tool) {
            tool.AddInput("a", ProbeAttributes("Low"));
            tool.AddInput("b", ProbeAttributes("High", {{IAS_SharedWith, "a"}}));
        });
        QVERIFY(Has("Low/Set Key") && Has("High/Set Key"));
        QVERIFY(Run("High/Set Key"));
        QVERIFY(In("b").IsAnimated() && !input_->IsAnimated());
        QVERIFY(Run("High/Interpolation/Step"));
        QVERIFY(Run("Remove Key", &In("b")));
        QVERIFY(!In("b").IsAnimated());
    }

    void isShown()
    {
        Open(1);
        page_->show();
        QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5}, a_->mapToGlobal({5, 5}));
        QApplication::sendEvent(a_, &event);
        auto* menu = a_->findChild<QMenu*>();
        QVERIFY(menu && menu->isVisible());
        const auto actions = menu->actions();
        const auto set = std::find_if(actions.begin(), actions.end(), [](const QAction* action) {
            return QString(action->text()).remove('&') == "Set Key";
        });
        QVERIFY(set != actions.end());
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(*set).center());
        QVERIFY(input_->IsKeyAt(0.0));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!a_->findChild<QMenu*>());
    }
};

QTEST_MAIN(ControlMenuTest)
#include "ControlMenuTest.moc"
