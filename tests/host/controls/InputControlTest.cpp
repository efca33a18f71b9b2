#include "host/Rows.h"
#include "host/controls/Probe.h"

#include "system/widgets/Container.h"
#include "system/widgets/MxLineEdit.h"

#include <limits>

#include <QtTest>

using namespace Marlox;

/// What every control has from its base: writing values, gestures, keys and expressions. Its menu
/// has a test of its own.
class InputControlTest : public ProbePage {
    Q_OBJECT

    MxLineEdit* Line() const
    {
        return qobject_cast<MxLineEdit*>(static_cast<QWidget*>(a_->GetExpressionData(0, nullptr)));
    }

private slots:
    void init() { Start(); }

    void writesAcceptedValues()
    {
        Open([](Operator& tool) {
            tool.AddInput("a", ProbeAttributes("Low", {{IAD_Maximum, 1.0}}));
            tool.AddInput("high",
                          ProbeAttributes("High", {{IAS_SharedWith, "a"}, {IA_Integer, 1}}));
        });
        QVERIFY(Send(a_, 5.0));
        QCOMPARE(input_->GetNumber(0.0), 1.0);
        QCOMPARE(a_->shown, 1.0); // the control itself is told what was made of its value
        QVERIFY(Send(a_, 2.6, 0.0, 1));
        QCOMPARE(In("high").GetNumber(0.0), 3.0);
        QCOMPARE(History().UndoText(), QString("Adjust High"));
        QCOMPARE(input_->GetNumber(0.0), 1.0);
        QVERIFY(input_->AddKey(0.0));
        QVERIFY(Send(a_, 0.5, 8.0));
        QVERIFY(input_->IsKeyAt(8.0));
    }

    void refusesValues()
    {
        Open(1);
        QSignalSpy problems(page_.get(), &ControlWnd::Problem);
        QVERIFY(!a_->SetInputs(nullptr, 0.0, 0, false, nullptr));
        QVERIFY(!Send(a_, 1.0, 0.0, 7));
        QVERIFY(!a_->SetInputs(MakeRef<Text>("x").Get(), 0.0, 0, false, nullptr));
        QVERIFY(input_->SetExpression("2"));
        QVERIFY(!Send(a_, 1.0));
        QCOMPARE(problems.size(), 1);
        QVERIFY(problems.front().front().toString().contains("expression"));
        QCOMPARE(input_->GetNumber(0.0), 2.0);
        QCOMPARE(History().Depth(), 0);
    }

    void oneGestureOneEntry()
    {
        Open(1);
        a_->SetUndo(0, nullptr);
        a_->SetUndo(0, nullptr); // open already
        QCOMPARE(History().Depth(), 1);
        for (double value : {1.0, 2.0, 3.0})
            QVERIFY(Send(a_, value));
        QCOMPARE(Entries(), 0);
        a_->ResetUndo(nullptr);
        a_->ResetUndo(nullptr);
        QCOMPARE(Entries(), 1);
        QCOMPARE(History().UndoText(), QString("Adjust A"));

        a_->SetUndo(0, nullptr);
        QVERIFY(Send(a_, 9.0));
        QVERIFY(Send(a_, 3.0, 0.0, 0, true)); // back where it began
        QCOMPARE(History().Depth(), 0);       // the last value closes it
        QCOMPARE(Entries(), 1);
        QVERIFY(Send(a_, 4.0)); // a group of its own
        QCOMPARE(History().Depth(), 0);
        QCOMPARE(Entries(), 2);
        History().Undo();
        History().Undo();
        QCOMPARE(input_->GetNumber(0.0), 0.0);
    }

    void lostGestures_data()
    {
        const Rows<QString> row("how");
        for (const char* how : {"focus", "hidden", "other tool", "page ends", "asked"})
            row(how, how);
    }
    void lostGestures()
    {
        QFETCH(QString, how);
        ProbeControl::settings.spin = true;
        Open(2);
        ShowActive();
        a_->child->setFocus();
        a_->OnEditStartDrag();
        QVERIFY(Send(a_, 1.0));
        QVERIFY(document_->IsAutoProxy());
        if (how == "focus")
            Of("b")->child->setFocus();
        else if (how == "hidden")
            page_->hide();
        else if (how == "other tool")
            page_->SetOperator(nullptr);
        else if (how == "page ends")
            page_.reset();
        else
            page_->EndGestures();
        QCOMPARE(History().Depth(), 0);
        QVERIFY(!document_->IsAutoProxy());
        QCOMPARE(Entries(), 1);
    }

    void undoWithinAGesture()
    {
        Open(1);
        a_->SetUndo(0, nullptr);
        QVERIFY(Send(a_, 1.0));
        History().Undo();
        QCOMPARE(input_->GetNumber(0.0), 0.0);
        for (double value : {2.0, 3.0}) // the drag goes on
            QVERIFY(Send(a_, value));
        History().Begin("Somebody else's");
        History().End();
        a_->ResetUndo(nullptr);
        QCOMPARE(History().Depth(), 0);
        QCOMPARE(Entries(), 1);
        History().Undo();
        QCOMPARE(input_->GetNumber(0.0), 0.0);
    }

    void editDrag()
    {
        Open(1);
        QSignalSpy sync(document_.get(), &MarloxDoc::SyncRenderRequested);
        a_->OnEditStartDrag();
        a_->OnEditStartDrag();
        QVERIFY(document_->IsAutoProxy());
        QVERIFY(Send(a_, 1.0) && Send(a_, 2.0));
        a_->OnEditEndDrag();
        a_->OnEditEndDrag();
        QVERIFY(!document_->IsAutoProxy());
        QCOMPARE(sync.size(), 1);
        QCOMPARE(Entries(), 1);

        QVERIFY(!a_->IsAllPassive(nullptr));
        input_->SetAttrsTagList({{IA_Passive, 1}});
        QVERIFY(a_->IsAllPassive(nullptr));
        a_->OnEditStartDrag();
        QVERIFY(!document_->IsAutoProxy());
        a_->OnEditEndDrag();
        QCOMPARE(sync.size(), 1);
    }

    void hasValueChanged()
    {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
        const auto changed = [](bool integer, double value, double shown) {
            return InputControl::HasValueChanged(integer, value, shown, 0.125);
        };
        QVERIFY(changed(false, 1.2, 1.0));
        QVERIFY(!changed(false, 1.125, 1.0)); // the tolerance itself
        QVERIFY(!changed(true, 1.4, 0.6));    // the same whole number
        QVERIFY(changed(true, 1.5, 1.49));
        QVERIFY(changed(false, 1.0, notANumber) && !changed(true, notANumber, notANumber));
        QVERIFY(changed(false, infinity, 1.0) && !changed(false, infinity, infinity));
    }

    void attachesByName()
    {
        Open(2);
        Operator* other = document_->AddTool("ProbeTool");
        const Ref<Object> made(ClassRegistry::Global().Create("ProbeControl"));
        auto* control = dynamic_cast<ProbeControl*>(made.Get());
        Input* input = nullptr;
        QVERIFY(!control->AttachInput(tool_, {{IAS_Name, "nobody"}}, input, 0, 0));
        QVERIFY(control->AttachInput(tool_, {{IAS_Name, "B"}}, input, 0, 0));
        QCOMPARE(input, &In("b"));
        QVERIFY(control->AddInput(input, nullptr));
        QVERIFY(!control->AddInput(other->FindInput("a"), nullptr)); // one control, one tool
        QVERIFY(control->DetachInput(input));
        QVERIFY(!input && !control->Owner());
    }

    void expressionLine()
    {
        Open(1);
        QVERIFY(Set("a", 0.1));
        const int low = page_->sizeHint().height();
        QVERIFY(!Line());
        QVERIFY(a_->AddExpression(input_));
        QCOMPARE(input_->GetExpression(), std::string("0.1")); // starts as what it was
        QCOMPARE(History().UndoText(), QString("Add Expression to A"));
        QVERIFY(!a_->AddExpression(input_));
        MxLineEdit* line = Line();
        QVERIFY(line && !line->isHidden());
        QCOMPARE(line->text(), QString("0.1"));
        QCoreApplication::processEvents();
        QVERIFY(page_->sizeHint().height() > low);

        a_->SetExpressions(0, QByteArray("time + 2").data());
        QCOMPARE(line->text(), QString("time + 2"));
        QCOMPARE(a_->shown, 2.0);
        QVERIFY(a_->RemoveExpression(input_));
        QVERIFY(line->isHidden());
        QCOMPARE(a_->shown, 0.1);
        QVERIFY(a_->GetExpressionRect(0, nullptr).IsEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(page_->sizeHint().height(), low);
        History().Undo();
        QVERIFY(!line->isHidden());
        QCOMPARE(line->text(), QString("time + 2"));
    }

    void expressionLineCommits()
    {
        Open(1);
        ShowActive();
        QVERIFY(a_->AddExpression(input_));
        MxLineEdit* line = Line();
        line->setFocus();
        const auto type = [line](const char* text) {
            line->selectAll();
            QTest::keyClicks(line, text);
        };
        type("3 +");
        QCOMPARE(input_->GetExpression(), std::string("0")); // not before it is committed
        QTest::keyClick(line, Qt::Key_Return);
        QCOMPARE(input_->GetExpression(), std::string("3 +"));
        QVERIFY(!line->Error().isEmpty());
        QCOMPARE(line->toolTip(), input_->ExpressionError());
        QCOMPARE(a_->shown, 0.0); // the last good value

        QTest::keyClicks(line, " 1");
        QVERIFY(line->Error().isEmpty());
        QTest::keyClick(line, Qt::Key_Escape);
        QCOMPARE(line->text(), QString("3 +"));
        QVERIFY(!line->Error().isEmpty()); // as wrong as before
        type("3 + 1");
        QTest::keyClick(line, Qt::Key_Return);
        QVERIFY(line->Error().isEmpty());
        QCOMPARE(a_->shown, 4.0);

        line->clear();
        line->clearFocus(); // leaving commits, and no text removes it
        QVERIFY(!input_->HasExpression());
        QVERIFY(line->isHidden());

        input_->SetExpression("1");
        type("8");
        a_->OnCancel();
        QCOMPARE(line->text(), QString("1"));
        type("8");
        a_->OnOK();
        QCOMPARE(a_->shown, 8.0);
    }

    void expressionPlaces()
    {
        ProbeControl::settings.layoutText = "{ \"VGroup\", { \"Spacer\", MinHeight = 24 }, "
                                            "{ \"Container\", Name = \"expression\" } }";
        Open(1);
        QVERIFY2(a_->GetLayout(), qPrintable(a_->Fault()));
        input_->SetExpression("1");
        QVERIFY(a_->isAncestorOf(Line())); // in the layout's place, not below the control
        QCoreApplication::processEvents();
        QVERIFY(a_->height() > 24);

        ProbeControl::settings.layoutText.clear();
        Open(1);
        MxRect rect(10, 4, 90, 20);
        QVERIFY(!a_->CreateExpressionEdit(3, rect, nullptr)); // no such input
        QVERIFY(a_->CreateExpressionEdit(0, rect, nullptr));
        QVERIFY(!a_->CreateExpressionEdit(0, rect, nullptr)); // has one
        input_->SetExpression("1");
        QCOMPARE(a_->GetExpressionRect(0, nullptr), rect);

        Open(1);
        Container place;
        input_->SetExpression("1"); // first: the line shows at once
        QVERIFY(!a_->CreateExpressionEdit(0, &place, nullptr));
        QVERIFY(page_->isAncestorOf(Line()));
    }

    void modifiers()
    {
        Open(1);
        document_->SetCurrentTime(4.0);
        QVERIFY(!a_->RemoveModifier(input_));
        QVERIFY(a_->AddModifierAt({1, 1}));
        QVERIFY(input_->IsKeyAt(4.0));
        QCOMPARE(History().UndoText(), QString("Animate A"));
        QVERIFY(!a_->AddModifier(input_));
        QVERIFY(Set("a", 10.0, 14.0));
        document_->SetCurrentTime(14.0);
        const int entries = Entries();
        QVERIFY(a_->RemoveModifier(input_));
        QVERIFY(!input_->IsAnimated());
        QCOMPARE(input_->GetNumber(0.0), 10.0); // stays as it was shown
        QCOMPARE(Entries(), entries + 1);
        History().Undo();
        QVERIFY(input_->IsKeyAt(4.0));

        QVERIFY(input_->SetExpression("100"));
        QVERIFY(a_->RemoveModifier(input_));
        QVERIFY(!input_->IsAnimated());
        QCOMPARE(input_->GetNumber(0.0), 100.0); // the expression goes on
        QVERIFY(a_->RemoveExpression(input_));
        QCOMPARE(input_->GetNumber(0.0), 10.0);
        input_->SetAttrsTagList({{IA_Animatable, 0}});
        QVERIFY(!a_->AddModifier(input_));
    }
};

QTEST_MAIN(InputControlTest)
#include "InputControlTest.moc"
