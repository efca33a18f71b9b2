#include "host/Rows.h"
#include "host/controls/Probe.h"

#include "system/widgets/KeyFrameIndicator.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QtTest>

using namespace Marlox;

/// Headings of a page, and the rows that they fold.
class FoldingTest : public ProbePage {
    Q_OBJECT

    /// Rows of one letter each: capitals are headings, followed by the number of inputs that they
    /// count (0: none), and by "-" where they are folded. An apostrophe marks an input that joins
    /// the row before.
    void OpenFolded(const QString& rows)
    {
        const QStringList words = rows.split(' ');
        ProbeControl::settings.onOpen = [this, words](ProbeControl& control) {
            const QString id = control.Inputs().front()->GetID().ToString();
            const QString word = words.filter(QRegularExpression('^' + id)).front();
            if (word[0].isUpper())
                page_->SetHeading(control, word.mid(1, 1).toInt(), !word.endsWith('-'));
        };
        Open([words](Operator& tool) {
            QByteArray before;
            for (const QString& word : words) {
                const QByteArray id = word.left(1).toLatin1();
                TagList tags = ProbeAttributes(id);
                if (word[0].isUpper())
                    tags.Set(IAS_Control, "ProbeHeading");
                if (word.endsWith('\''))
                    tags.Set(IAS_SharedWith, before.constData());
                tool.AddInput(MxID(id.constData()), tags);
                before = id;
            }
        });
    }
    void Fold(int inputs, bool open)
    {
        page_->SetHeading(*Of("H"), inputs, open);
        QCoreApplication::processEvents();
    }
    /// The names of what takes the keyboard, in the order of the Tab key.
    QStringList Tabs(const QWidget* line) const
    {
        QStringList tabs;
        for (QWidget* next = page_->nextInFocusChain(); next != page_.get();
             next = next->nextInFocusChain()) {
            if (next == line)
                tabs += "line";
            else if (qobject_cast<KeyFrameIndicator*>(next))
                tabs += next->accessibleName().right(1) + " key";
            else if (qobject_cast<QSpinBox*>(next))
                tabs += next->parentWidget()->objectName();
        }
        return tabs;
    }

private slots:
    void init() { Start(); }

    void headingsFold_data()
    {
        const Rows<QString, QString> row("rows", "shown");
        row("counted", "a H2- b c d", "a H d");
        row("open", "H2 a b c", "H a b c");
        row("to the next heading", "H0- a b G0 c", "H G c");
        row("to the next that counts", "H0- a G1 b c", "H G b c");
        row("to the end", "a H0- b c", "a H");
        row("more than there are", "H9- a b", "H");
        row("joined inputs count", "H3- a b' c d", "H d");
        row("inside", "H3 a G1- b c", "H a G c");
        row("inside a folded one", "H3- a G1 b c", "H c");
        row("no further than outside", "H2 a G9- b c", "H a G b c");
        row("uncounted inside", "H3 G0- a b c", "H G c");
        row("next to each other inside", "H4 G0- a K0 b c", "H G K b c");
        row("three deep", "H6 a G4 b K2- c d e", "H a G b K e");
    }
    void headingsFold()
    {
        QFETCH(QString, rows);
        OpenFolded(rows);
        QStringList seen;
        int bottom = 0;
        for (const Ref<InputControl>& control : page_->Controls()) {
            QCOMPARE(control->isHidden(), page_->IsFolded(*control));
            if (control->isHidden())
                continue;                       // a heading inside a folded one
            QCOMPARE(control->y(), bottom + 4); // no room for the folded ones
            bottom = control->geometry().bottom() + 1;
            seen += control->objectName();
        }
        QTEST(seen.join(' '), "shown");
        QCOMPARE(page_->sizeHint().height(), bottom + 8);
    }

    void foldedRowsWait()
    {
        ProbeControl::settings.spin = true;
        OpenFolded("a H3- b c d e");
        In("c").SetAttrsTagList({{IC_Hidden, 1}});
        QCOMPARE(page_->Controls().size(), std::size_t(3));
        const InputControl* asked = Of("d"); // made for whoever wants it
        QVERIFY(asked && asked->isHidden() && page_->IsFolded(*asked));
        QCOMPARE(page_->Controls()[2].Get(), asked);

        Set("b", 3.0);
        QVERIFY(Log().filter("b").empty());
        Fold(3, true);
        QString order;
        for (const Ref<InputControl>& control : page_->Controls())
            order += control->objectName();
        QCOMPARE(order, QString("aHbcde"));
        QVERIFY(!Of("b")->isHidden() && !Of("b")->size().isEmpty() && !asked->isHidden());
        QVERIFY(Of("c")->isHidden()); // for its own reason

        // Tabbing takes the rows in their order, a line that comes later too.
        In("b").SetExpression("1");
        auto* line = static_cast<QWidget*>(Of("b")->GetExpressionData(0, nullptr));
        QVERIFY(line);
        QStringList expected{"a", "a key", "H", "H key", "b", "line", "b key"};
        for (const char* id : {"c", "d", "e"})
            expected << id << QString(id) + " key";
        QCOMPARE(Tabs(line), expected);
    }

    void rowsThatOpenMayChangeThePage()
    {
        OpenFolded("H0- a b c");
        ProbeControl::settings.onOpen = [this](ProbeControl&) { page_->SetOperator(nullptr); };
        Fold(0, true);
        QVERIFY(page_->Controls().empty());
        // The page shows the tool anew while its second row opens.
        int opened = 0;
        ProbeControl::settings.onOpen = [this, &opened](ProbeControl&) {
            Operator* const shown = page_->GetOperator();
            if (++opened != 2)
                return;
            page_->SetOperator(nullptr);
            page_->SetOperator(shown);
        };
        Open(4);
        QCOMPARE(page_->Controls().size(), std::size_t(4));
        QCOMPARE(opened, 6);
    }

    void foldingEndsWhatGoesOn()
    {
        ProbeControl::settings.spin = true;
        OpenFolded("H2 a b c");
        ShowActive();
        ProbeControl* heading = Of("H");
        ProbeControl* b = Of("b");
        heading->setFocusPolicy(Qt::StrongFocus);
        b->child->setFocus();
        a_->SetUndo(0, nullptr);
        Send(a_, 2.0);
        QCOMPARE(History().Depth(), 1);
        page_->SetHeading(*heading, 2, false);
        QVERIFY(b->isHidden()); // at once
        QVERIFY(heading->hasFocus());
        QCOMPARE(History().Depth(), 0);
        QCOMPARE(History().UndoText(), QString("Adjust a"));
        QVERIFY(page_->findChildren<KeyFrameIndicator*>().at(2)->isHidden());

        // What is folded goes on following its input.
        Log();
        Set("b", 5.0);
        QCOMPARE(Log(), QStringList({"notify b=5", "display b"}));

        // A heading that takes no focus: it must not stay in what is hidden, nor pass to another
        // row.
        Fold(2, true);
        b->child->setFocus();
        heading->setEnabled(false);
        Fold(2, false);
        QVERIFY(!page_->window()->focusWidget() ||
                !page_->isAncestorOf(page_->window()->focusWidget()));

        // The end of the gesture takes the page away.
        Fold(2, true);
        b->SetUndo(0, nullptr);
        b->child->setFocus();
        connect(qApp, &QApplication::focusChanged, page_.get(),
                [this] { page_->SetOperator(nullptr); });
        page_->SetHeading(*heading, 2, false);
        QVERIFY(page_->Controls().empty());
        QCOMPARE(History().Depth(), 0);
    }

    void headingsShowWhatTheyUnfold()
    {
        ProbeControl::settings.minimumHeight = 60;
        QScrollArea area;
        area.setWidgetResizable(true);
        area.setWidget(page_.get());
        const auto taken = qScopeGuard([&area] { (void)area.takeWidget(); });
        OpenFolded("a b c d H3- e f g i j");
        area.resize(300, 300);
        area.show();
        QVERIFY(QTest::qWaitForWindowExposed(&area));
        QScrollBar* bar = area.verticalScrollBar();
        ProbeControl* heading = Of("H");
        const auto unfold = [&](int inputs) {
            page_->SetHeading(*heading, inputs, true);
            page_->Reveal(*heading);
            for (int turn = 0; turn < 3; ++turn) // the page's, the area's, the scrolling
                QCoreApplication::processEvents();
        };
        bar->setValue(20);
        unfold(1);
        const QRect last = Of("e")->geometry();
        QCOMPARE(bar->value(), last.bottom() + 4 - area.viewport()->height()); // just so far
        unfold(0); // more than there is room for: the heading stays
        QCOMPARE(bar->value(), heading->y() - 4);
        Fold(0, false);
        QVERIFY(bar->value() <= bar->maximum());
        QVERIFY(area.viewport()->rect().contains(heading->mapTo(area.viewport(), QPoint(0, 0))));
    }
};

QTEST_MAIN(FoldingTest)
#include "FoldingTest.moc"
