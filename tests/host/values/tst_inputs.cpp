#include "KeysOf.h"
#include "host/TestTools.h"
#include "system/document/BulkChange.h"

#include <limits>

#include <QTest>

using namespace Marlox;

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

class Counter final : public Object {
public:
    bool HandleEvent(Object*, const MxID& event, TagList&) override
    {
        events.push_back(event.c_str());
        return true;
    }
    std::vector<std::string> events;
};

} // namespace

/// Inputs of a tool: accepting, keys, undo, listeners and expressions.
class TestInputs : public QObject {
    Q_OBJECT

    TestTools tools_;
    std::unique_ptr<MarloxDoc> document_;
    Operator* tool_ = nullptr;

    Input& input(const char* id) { return *tool_->FindInput(id); }
    UndoHistory& history() { return document_->Undo(); }

private slots:
    void init()
    {
        document_ = std::make_unique<MarloxDoc>();
        tool_ = document_->AddTool(TestTools::gainClass);
        QVERIFY(tool_);
        history().Clear();
        document_->SetFrameRange(0, 100);
    }

    void cleanup() { document_.reset(); }

    void inputsHaveDefaultsAndAttributes()
    {
        QVERIFY(input("Center").GetValue(0)->IsEqual(Point(0.25, 0.5)));
        QVERIFY(input("Caption").GetValue(0)->IsEqual(Text("untitled")));
        QCOMPARE(input("Count").GetAttrS(IAS_DataType), "Number");
        std::string name = "Amount";
        input("Count").SetAttrsTagList({{IAS_Name, name.c_str()}, {IAD_Maximum, 20.0}});
        name = "######";
        QCOMPARE(input("Count").GetName(), QString("Amount"));
        QCOMPARE(NumberOf(input("Count").Accepted(Number(15)).Get()), 15.0);
    }

    void inputsAcceptWithinBounds()
    {
        QVERIFY(input("Gain").SetValue(Number(1e6), 0));
        QCOMPARE(input("Gain").GetNumber(0), 1000.0);
        QVERIFY(input("Count").SetValue(Number(2.5), 0));
        QCOMPARE(input("Count").GetNumber(0), 3.0);
        QVERIFY(input("Count").SetValue(Number(-0.6), 0));
        QCOMPARE(input("Count").GetNumber(0), 0.0);
        QVERIFY(!input("Gain").SetValue(Point(0, 0), 0));
        QVERIFY(!input("Sealed").SetValue(Number(1), 0));
        QCOMPARE(input("Sealed").GetNumber(0), 7.0);
        input("Count").SetAnimation(keysOf({{0, 0}, {10, 5}}, Interpolation::Linear));
        QCOMPARE(input("Count").GetNumber(5), 3.0); // whole between keys, too
    }

    void keysAreSetAndReplaced()
    {
        Input& gain = input("Gain");
        QVERIFY(gain.AddKey(0));
        QVERIFY(gain.SetValue(Number(5), 10));
        QCOMPARE(gain.GetAnimation().Keys().size(), std::size_t(2));
        QCOMPARE(gain.GetNumber(0), 1.0);
        QVERIFY(gain.SetValue(Number(9), TimeNone));
        QVERIFY(!gain.IsAnimated());
        QCOMPARE(gain.GetNumber(0), 9.0);
        QVERIFY(!input("Fixed").AddKey(0) && !input("Input").AddKey(0) && !gain.AddKey(infinite));
        gain.AddKey(3);
        gain.SetValue(Number(4), 3);
        QVERIFY(!gain.RemoveKey(4) && gain.RemoveKey(3));
        QVERIFY(!gain.IsAnimated());
        QCOMPARE(gain.GetNumber(0), 4.0); // the last key's value stays
        QVERIFY(gain.SetDefault());
        QCOMPARE(gain.GetNumber(0), 1.0);
    }

    void steppedInputsHoldBetweenKeys()
    {
        Input& gain = input("Gain");
        gain.SetAttrsTagList(TagList({{IA_Stepped, 1}}));
        QVERIFY(gain.AddKey(0) && gain.SetValue(Number(5), 10));
        QCOMPARE(gain.GetNumber(9), 1.0);
        QVERIFY(gain.AddKey(0, Interpolation::Linear) && gain.SetValue(Number(3), 0));
        QCOMPARE(gain.GetNumber(5), 4.0); // a key that is there keeps what it was given
    }

    void undoRestoresExactly()
    {
        Input& gain = input("Gain");
        TestScript script([](const Input&, const std::string&, double time, QString*) {
            return MakeRef<Number>(time);
        });
        std::vector<Input::State> states{gain.GetState()};
        const std::function<bool()> changes[] = {
            [&] { return gain.SetValue(Number(0.1 + 0.2), 0); },
            [&] { return gain.AddKey(5, Interpolation::Linear); },
            [&] { return gain.SetValue(Number(notANumber), 8); },
            [&] { return gain.AddKey(8, Interpolation::Step); },
            [&] { return gain.SetExpression("time * 2"); },
            [&] { return gain.AddKey(20); },
            [&] { return gain.RemoveKey(5); },
            [&] { return gain.SetExpression(""); },
            [&] { return gain.SetValue(Number(-1), 3, Input::ReplaceAll); },
            [&] { return gain.SetDefault(); },
        };
        const int first = history().Stack().index();
        for (const auto& change : changes) {
            QVERIFY(change());
            QVERIFY(!(gain.GetState() == states.back()));
            states.push_back(gain.GetState());
        }
        QCOMPARE(history().Stack().index() - first, int(std::size(changes)));
        for (int round = 0; round < 2; ++round) {
            for (std::size_t i = states.size() - 1; i-- > 0;) {
                history().Undo();
                QVERIFY(gain.GetState() == states[i]);
            }
            for (std::size_t i = 1; i < states.size(); ++i) {
                history().Redo();
                QVERIFY(gain.GetState() == states[i]);
            }
        }
    }

    void gesturesAreOneEntry()
    {
        Input& gain = input("Gain");
        Input& center = input("Center");
        gain.SetValue(Number(2), 0);
        QCOMPARE(history().UndoText(), QString("Change Gain"));
        const int before = history().Stack().count();
        gain.SetValue(Number(2), 0);
        input("Passive").SetValue(Number(3), 0);
        QCOMPARE(history().Stack().count(), before); // neither changed anything to record
        QCOMPARE(input("Passive").GetNumber(0), 3.0);
        history().Begin("Adjust Both");
        for (int i = 1; i <= 50; ++i) {
            gain.SetValue(Number(i), 0);
            center.SetValue(Point(i, i), 0);
        }
        history().End();
        QCOMPARE(history().Stack().count(), before + 1);
        QCOMPARE(history().UndoText(), QString("Adjust Both"));
        history().Undo();
        QCOMPARE(gain.GetNumber(0), 2.0);
        QVERIFY(center.GetValue(0)->IsEqual(Point(0.25, 0.5)));
        history().Redo();
        QCOMPARE(gain.GetNumber(0), 50.0);

        history().Undo();
        history().Begin("Back Again"); // leads back: no entry, and what can be redone stays
        gain.SetValue(Number(7), 0);
        gain.SetValue(Number(2), 0);
        history().End();
        QVERIFY(history().CanRedo());
        QCOMPARE(history().Stack().count(), before + 1);
    }

    void listenersAreTold()
    {
        Counter counter;
        Input& gain = input("Gain");
        gain.AddNotify(&counter, MxID());
        gain.SetValue(Number(2), 0);
        gain.SetValue(Number(2), 0);
        history().Undo();
        gain.SetAttrsTagList({{IAD_Minimum, 0.0}});
        QCOMPARE(counter.events,
                 (std::vector<std::string>{"ValueChanged", "ValueChanged", "AttrsChanged"}));
        counter.events.clear();
        Operator* source = document_->AddTool(TestTools::sourceClass, 0);
        input("Mask").AddNotify(&counter, MxID());
        input("Mask").Connect(source);
        QCOMPARE(counter.events, (std::vector<std::string>{"ConnectionChanged", "ValueChanged"}));
        QVERIFY(!input("Mask").GetValue(0));
    }

    void lockedToolsRefuse()
    {
        Input& gain = input("Gain");
        gain.AddKey(0);
        tool_->SetLocked(true);
        const Input::State state = gain.GetState();
        QVERIFY(!gain.SetValue(Number(5), 0) && !gain.AddKey(4) && !gain.RemoveKey(0));
        QVERIFY(!gain.SetExpression("time") && !gain.SetDefault() && !gain.SetAnimation({}));
        QVERIFY(gain.GetState() == state);
    }

    void inputsOfLooseToolsSimplyChange()
    {
        const Ref<Object> made(ClassRegistry::Global().Create(TestTools::gainClass));
        auto* loose = dynamic_cast<Operator*>(made.Get());
        QVERIFY(loose->FindInput("Gain")->SetValue(Number(3), 0));
        QCOMPARE(loose->FindInput("Gain")->GetNumber(0), 3.0);
        QVERIFY(!loose->FindInput("Input")->Connect(tool_));
    }

    void expressionsRule()
    {
        TestScript script([](const Input&, const std::string& text, double time, QString* error) {
            if (text == "point")
                return Ref<Parameter>(MakeRef<Point>(time, time));
            if (text == "time")
                return Ref<Parameter>(MakeRef<Number>(time));
            *error = "line 1: no sense";
            return Ref<Parameter>();
        });
        Input& count = input("Count");
        count.SetValue(Number(4), 0);
        QVERIFY(count.SetExpression("time"));
        QCOMPARE(count.GetNumber(6.4), 6.0); // whole and within bounds
        QCOMPARE(count.GetNumber(600), 10.0);
        QVERIFY(count.ExpressionError().isEmpty());
        QVERIFY(count.SetValue(Number(1), 0)); // underneath
        QCOMPARE(count.GetNumber(2), 2.0);

        count.SetExpression("broken");
        QCOMPARE(count.GetNumber(9), 2.0); // the last good one
        QCOMPARE(count.ExpressionError(), QString("line 1: no sense"));
        count.SetExpression("point");
        QCOMPARE(count.GetNumber(9), 2.0);
        QVERIFY(count.ExpressionError().contains("Point"));
        count.SetExpression("");
        QCOMPARE(count.GetNumber(9), 1.0);
        QVERIFY(count.ExpressionError().isEmpty());
    }

    void expressionsNeedTheScriptLibrary()
    {
        ScriptServices* before = ScriptServices::Installed();
        ScriptServices::Install(nullptr);
        Input& gain = input("Gain");
        gain.SetExpression("time");
        QCOMPARE(gain.GetNumber(5), 1.0);
        QVERIFY(!gain.ExpressionError().isEmpty());
        ScriptServices::Install(before);
    }

    void expressionsInACircleFail()
    {
        Input& gain = input("Gain");
        Input& count = input("Count");
        Input& outside = input("Fixed");
        bool closed = false;
        TestScript script([&](const Input& asked, const std::string&, double time, QString*) {
            if (&asked == &outside)
                return MakeRef<Number>(count.GetNumber(time) * 10);
            if (&asked == &count)
                return MakeRef<Number>(gain.GetNumber(time) + 1);
            return MakeRef<Number>(closed ? count.GetNumber(time) : 3.0);
        });
        gain.SetExpression("a");
        count.SetExpression("b");
        outside.SetExpression("c");
        QCOMPARE(outside.GetNumber(0), 40.0);
        closed = true;
        QCOMPARE(gain.GetNumber(0), 3.0);
        QCOMPARE(count.GetNumber(0), 4.0);
        QVERIFY(!gain.ExpressionError().isEmpty() && !count.ExpressionError().isEmpty());
        QCOMPARE(outside.GetNumber(0), 40.0); // outside the circle: fed by the last good value
        QVERIFY(outside.ExpressionError().isEmpty());
        closed = false;
        QCOMPARE(count.GetNumber(0), 4.0);
        QVERIFY(gain.ExpressionError().isEmpty() && count.ExpressionError().isEmpty());
    }

    void expressionsFollowWhatTheyReferTo()
    {
        Input& gain = input("Gain");
        Input& count = input("Count");
        TestScript script([&](const Input&, const std::string&, double time, QString*) {
            return MakeRef<Number>(gain.GetNumber(time));
        });
        count.SetExpression("Gain");
        Counter counter;
        count.AddNotify(&counter, "ValueChanged");
        gain.SetValue(Number(8), 0);
        QCOMPARE(counter.events.size(), std::size_t(1));
        QCOMPARE(count.GetNumber(0), 8.0);
    }

    void bulksTellExpressionsOnce()
    {
        input("Count").SetExpression("Gain");
        input("Gain").SetValue(Number(1), 0);
        history().Clear();
        Counter counter;
        input("Count").AddNotify(&counter, "ValueChanged");
        history().Begin("Both");
        {
            const BulkChange bulk(history());
            for (const double value : {2.0, 3.0})
                input("Gain").SetValue(Number(value), 0);
            input("Center").SetValue(Point(0.5, 0.5), 0);
            QVERIFY(counter.events.empty());
        }
        QCOMPARE(counter.events.size(), std::size_t(1));
        history().End();
        history().Undo(); // two steps
        QCOMPARE(counter.events.size(), std::size_t(2));
        input("Gain").SetValue(Number(4), 0);
        QCOMPARE(counter.events.size(), std::size_t(3));
    }
};

QTEST_GUILESS_MAIN(TestInputs)
#include "tst_inputs.moc"
