#include "system/document/UndoHistory.h"

#include <QTest>

using namespace Marlox;

namespace {

/// Sets one number; absorbs later settings of the same one.
class SetStep final : public UndoStep {
public:
    SetStep(int& number, int before, int after) : number_(number), before_(before), after_(after) {}
    void Undo() override { number_ = before_; }
    void Redo() override { number_ = after_; }
    bool Absorb(UndoStep& later) override
    {
        auto* step = dynamic_cast<SetStep*>(&later);
        if (!step || &step->number_ != &number_)
            return false;
        after_ = step->after_;
        return true;
    }
    bool IsNothing() const override { return before_ == after_; }

private:
    int& number_;
    int before_;
    int after_;
};

} // namespace

class TestUndo : public QObject {
    Q_OBJECT

    std::unique_ptr<UndoHistory> history_;
    int a_ = 0;
    int b_ = 0;

    void Set(int& number, int value, const QString& text = "Set")
    {
        const int before = std::exchange(number, value);
        history_->Push(std::make_unique<SetStep>(number, before, value), text);
    }
    QStringList texts() const
    {
        QStringList all;
        for (int i = 0; i < history_->Stack().count(); ++i)
            all += history_->Stack().text(i);
        return all;
    }

private slots:
    void init()
    {
        history_ = std::make_unique<UndoHistory>();
        a_ = b_ = 0;
    }

    void outermostGroupIsTheEntry()
    {
        history_->Begin("Outer");
        Set(a_, 1);
        history_->Begin("Inner");
        Set(b_, 2);
        history_->End();
        history_->End();
        QCOMPARE(texts(), QStringList("Outer"));
        history_->Undo();
        QCOMPARE(a_, 0);
        QCOMPARE(b_, 0);
        QCOMPARE(history_->RedoText(), QString("Outer"));
        history_->Redo();
        QCOMPARE(a_, 1);
        QCOMPARE(b_, 2);
    }

    void textIsTheFirstThatIsNotEmpty()
    {
        history_->Begin("");
        Set(a_, 1, "Step");
        history_->Begin("");
        history_->Begin("Deep");
        Set(a_, 2);
        history_->End();
        history_->End();
        history_->Begin("Later");
        Set(b_, 1);
        history_->End();
        history_->End();
        history_->Begin("");
        Set(a_, 5, "Step");
        Set(b_, 5, "Other Step");
        history_->End();
        Set(a_, 6, "Alone");
        QCOMPARE(texts(), (QStringList{"Deep", "Step", "Alone"}));
    }

    void nothingLeavesNoEntry()
    {
        Set(a_, 1);
        history_->Undo();
        history_->Begin("Empty");
        history_->Begin("Empty Too");
        history_->End();
        history_->End();
        history_->Begin("Back");
        for (const int value : {5, 3, 0}) { // only together the groups lead back
            history_->Begin("Move");
            Set(a_, value);
            Set(b_, value);
            history_->End();
        }
        history_->End();
        Set(a_, 0);
        QCOMPARE(history_->Stack().count(), 1);
        QVERIFY(history_->CanRedo() && !history_->CanUndo());
        history_->Redo();
        QCOMPARE(a_, 1);
    }

    void rollBackLeavesNoTrace()
    {
        Set(a_, 1);
        history_->Undo();
        history_->Begin("Cancelled");
        Set(a_, 5);
        Set(b_, 6);
        Set(a_, 7);
        history_->End(false);
        QCOMPARE(a_, 0);
        QCOMPARE(b_, 0);
        QCOMPARE(history_->RedoText(), QString("Set"));

        history_->Begin("Kept");
        Set(a_, 2);
        history_->Begin("Cancelled");
        Set(a_, 3); // of the same number: must not vanish into the kept step
        Set(b_, 3);
        history_->End(false);
        QCOMPARE(a_, 2);
        QCOMPARE(b_, 0);
        history_->End();
        QCOMPARE(texts(), QStringList("Kept"));
        history_->Undo();
        QCOMPARE(a_, 0);
    }

    void gesturesEndInAnyOrder()
    {
        const u64 first = history_->BeginGroup("First");
        Set(a_, 1);
        const u64 second = history_->BeginGroup("Second");
        Set(b_, 2);
        history_->EndGroup(first);
        QVERIFY(!history_->IsOpen(first) && history_->IsOpen(second));
        QCOMPARE(history_->Stack().count(), 0); // the second is part of it
        history_->EndGroup(first);
        Set(b_, 3);
        history_->EndGroup(second);
        QCOMPARE(history_->Depth(), 0);
        QCOMPARE(texts(), QStringList("First"));
        history_->Begin("Other");
        history_->EndGroup(second); // long over: not this one
        QCOMPARE(history_->Depth(), 1);
        history_->End();
        history_->Undo();
        QVERIFY(a_ == 0 && b_ == 0);
    }

    void gesturesOutliveTheGroupAroundThem()
    {
        history_->Begin("Script");
        const u64 drag = history_->BeginGroup("Drag");
        Set(a_, 1);
        history_->End(); // the script's, not the drag's
        QVERIFY(history_->IsOpen(drag));
        history_->End(); // nobody's
        Set(a_, 2);
        history_->EndGroup(drag);
        QCOMPARE(history_->Depth(), 0);
        QCOMPARE(texts(), QStringList("Script"));

        history_->Begin("Script");
        const u64 other = history_->BeginGroup("Drag");
        Set(a_, 3);
        history_->End(false);
        QCOMPARE(a_, 2);
        QVERIFY(!history_->IsOpen(other));
        QCOMPARE(history_->Depth(), 0);
        QCOMPARE(texts(), QStringList("Script"));
    }

    void undoEndsOpenGroups()
    {
        history_->Begin("Drag");
        history_->Begin("Inner");
        Set(a_, 4);
        QVERIFY(history_->CanUndo());
        QCOMPARE(history_->UndoText(), QString("Drag")); // what Undo would take back
        history_->Undo();
        QCOMPARE(a_, 0);
        QCOMPARE(history_->Depth(), 0);
        history_->End(); // the gesture that did not hear of it
        history_->End(false);
        QCOMPARE(history_->RedoText(), QString("Drag"));
        history_->Redo();
        QCOMPARE(a_, 4);
    }

    void stepsOfReplaysAreDropped()
    {
        class Echo final : public UndoStep {
        public:
            Echo(UndoHistory& history, int& number) : history_(history), number_(number) {}
            void Undo() override
            {
                history_.Push(std::make_unique<SetStep>(number_, 1, 2), "Echo");
                history_.Undo(); // a listener that means well
            }
            void Redo() override {}

        private:
            UndoHistory& history_;
            int& number_;
        };
        Set(a_, 1);
        history_->Push(std::make_unique<Echo>(*history_, a_), "First");
        history_->Undo();
        QCOMPARE(texts(), (QStringList{"Set", "First"}));
        QCOMPARE(a_, 1);
    }

    void clearKeepsWhatIsUnsaved()
    {
        Set(a_, 1);
        history_->Stack().setClean();
        history_->Clear();
        QVERIFY(history_->Stack().isClean());
        Set(a_, 2);
        history_->Clear();
        QVERIFY(!history_->Stack().isClean() && !history_->CanUndo());
    }
};

QTEST_GUILESS_MAIN(TestUndo)
#include "tst_undo.moc"
