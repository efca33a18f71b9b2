#include "ShapeBench.h"
#include "system/shapes/ShapeClipboard.h"
#include "system/shapes/ShapePublish.h"

#include <set>

#include <QMimeData>

using namespace Marlox;

/// Copied shapes, points and places, within a document and as text.
class TestShapeClipboard : public ShapeBench {
    Q_OBJECT

    QString refusal_;
    Input& other() { return *tool_->FindInput("Polyline2"); }
    Input& soft() { return *tool_->FindInput("Soft"); }
    void animate(Input& input)
    {
        input.AddKey(0, Interpolation::Linear);
        input.SetValue(*line({{0.25, 0.0}, {0.5, 0.0}, {0.75, 0.0}}), 10);
    }
    ShapeClip copied(const Input& input, const SelMask& which)
    {
        const auto clip = CopyPathPoints(input, which, refusal_);
        return clip ? *clip : ShapeClip();
    }
    bool paste(Input& to, const SelMask& which, const ShapeClip& clip, ShapePlace by = {})
    {
        return PasteClip(to, which, 0, clip, by, refusal_);
    }

private slots:
    void wholeShapesTakeTheirKeys()
    {
        animate(shape());
        PublishPoints(shape(), mask(3, {0}));
        tool_->FindInput("Point0")->SetValue(Point(0.1, 0.1), 0);
        history().Clear();
        QVERIFY(paste(other(), {}, *CopyShape(shape()), {0.125, 0.0}));
        QCOMPARE(history().Stack().count(), 1);
        QVERIFY(near(at(other(), 0, 0), {0.225, 0.1}));
        QVERIFY(near(at(other(), 1, 5), {0.625, 0.375}));
        QVERIFY(ShapeOf(other(), 0)->Links().empty());
        QVERIFY(!paste(soft(), {}, *CopyShape(shape())));
        QCOMPARE(refusal_, QString("No pasting to different poly type"));
        QVERIFY(paste(shape(), {}, *CopyShape(other())));
        QVERIFY(!tool_->FindInput("Point0")); // its point is gone
        tool_->SetLocked(true);
        QVERIFY(!paste(other(), {}, *CopyShape(shape())));
        QVERIFY(refusal_.isEmpty());
    }

    void segmentsComeInOrReplace()
    {
        animate(shape());
        QVERIFY(!copied(shape(), mask(3, {0, 2})).value);
        QCOMPARE(refusal_, QString("Select segment (adjacent points), single point or none"));
        QCOMPARE(copied(shape(), mask(3, {})).animation.Keys().size(), std::size_t(2));
        const ShapeClip clip = copied(shape(), mask(3, {1, 2}));
        QVERIFY(!paste(shape(), mask(3, {0}), clip));
        QCOMPARE(refusal_, QString("Different destination points count"));
        QVERIFY(!paste(soft(), {}, clip));
        QCOMPARE(refusal_, QString("No pasting to different poly type"));

        SelMask behind(3);
        behind.SetLast(0);
        QVERIFY(paste(shape(), behind, clip, {0.0, 0.125}));
        QCOMPARE(ShapeOf(shape(), 0)->GetCount(), 5);
        QVERIFY(near(at(shape(), 1, 0), {0.5, 0.875}));
        QVERIFY(near(at(shape(), 1, 10), {0.5, 0.125}));
        QVERIFY(near(at(shape(), 3, 0), {0.5, 0.75}));
        std::set<u32> ids;
        for (const PolyPoint& point : ShapeOf(shape(), 10)->Points())
            ids.insert(point.id);
        QCOMPARE(ids.size(), std::size_t(5));

        const u32 id = ShapeOf(shape(), 0)->GetPoint(3)->id;
        QVERIFY(paste(shape(), mask(5, {3, 4}), clip, {0.25, 0.0}));
        QVERIFY(near(at(shape(), 4, 10), {1.0, 0.0}));
        QCOMPARE(ShapeOf(shape(), 0)->GetPoint(3)->id, id);
        QVERIFY(paste(other(), {}, clip)); // an empty one takes the keys, too
        QVERIFY(near(at(other(), 0, 10), {0.5, 0.0}));

        auto closed = ShapeOf(other(), 0)->CopyShape();
        closed->InsertPoint(1, ShapePlace(0.1, 0.0));
        closed->Close();
        other().SetValue(*closed, TimeNone);
        const ShapeClip around = copied(other(), mask(3, {2, 0})); // over the end
        QVERIFY(near(dynamic_cast<PolyLine&>(*around.value).Points().front().Place(), {0.1, 0}));
    }

    void allPointsOfClosedShapesCloseEmptyOnes()
    {
        Ref<PolyLine> closed = ShapeOf(shape(), 0)->CopyShape();
        closed->Close();
        shape().SetValue(*closed, TimeNone);
        const ShapeClip all = copied(shape(), mask(3, {0, 1, 2}));
        QVERIFY(paste(other(), {}, copied(shape(), mask(3, {0, 1}))));
        QVERIFY(!ShapeOf(other(), 0)->IsClosed());
        QVERIFY(paste(other(), {}, all)); // joins what is open
        QVERIFY(!ShapeOf(other(), 0)->IsClosed());
        other().SetValue(PolyLine(), TimeNone);
        QVERIFY(paste(other(), {}, all));
        QVERIFY(ShapeOf(other(), 0)->IsClosed());
        other().SetValue(PolyLine(), TimeNone);
        other().AddKey(0);
        QVERIFY(paste(other(), {}, all));
        QVERIFY(ShapeOf(other(), 0)->IsClosed());
        QCOMPARE(ShapeOf(other(), 0)->GetCount(), 3);
    }

    void placesAndKeysOfPoints()
    {
        SelMask two = mask(3, {0, 1});
        QVERIFY(paste(shape(), two, *CopyPathValue(shape(), mask(3, {2}), 0), {0.0, 0.25}));
        QVERIFY(near(at(shape(), 1), {0.75, 0.75}));
        QVERIFY(near(at(shape(), 0), {0.5, 0.5}));
        QVERIFY(!CopyPathValue(shape(), mask(3, {}), 0));

        Input* const point = tool_->AddPublishedInput("P", 0.2, 0.2);
        point->AddKey(0);
        point->SetValue(Point(0.6, 0.2), 10);
        QVERIFY(paste(other(), {}, copied(*point, {})));
        QVERIFY(near(at(other(), 1), {0.6, 0.2}));
        QVERIFY(!ShapeOf(other(), 0)->First()->Has(PPF_Linear));
        point->AddKey(0, Interpolation::Linear);
        QVERIFY(!paste(other(), {}, copied(*point, {})));
        QCOMPARE(refusal_, QString("Pasting xypath points with non-bezier X and Y splines is "
                                   "not supported"));
        Input* const second = tool_->AddPublishedInput("Q");
        QVERIFY(paste(*second, {}, copied(*point, mask(2, {1})), {0.0, 0.1}));
        QVERIFY(near(placeOf(*second, 0), {0.6, 0.3}));
        QVERIFY(second->IsKeyAt(10));
    }

    void textCarriesAll()
    {
        animate(shape());
        PublishPoints(shape(), mask(3, {0}));
        QString error;
        const ShapeClip clips[] = {*CopyShape(shape()), copied(shape(), mask(3, {1, 2})),
                                   copied(*tool_->FindInput("Point0"), {}),
                                   *CopyPathValue(shape(), mask(3, {0}), 5)};
        for (const ShapeClip& clip : clips) {
            const auto mime = ClipToMime(clip);
            QVERIFY(HasClip(*mime));
            const auto read = ClipFromMime(*mime, error);
            QVERIFY2(read, qPrintable(error));
            QCOMPARE(read->kind, clip.kind);
            QVERIFY(read->value->IsEqual(*clip.value));
            QVERIFY(read->animation == clip.animation);
            QMimeData plain; // from a text editor
            plain.setText(mime->text());
            QVERIFY(ClipFromMime(plain, error));
        }
    }

    void damagedTextIsRefused()
    {
        const QString whole = QString::fromStdString(ClipToText(*CopyShape(shape())));
        QVERIFY(whole.contains("Polyline") && whole.contains("0.75"));
        const auto with = [&whole](const char* before, const char* after) {
            QString text = whole;
            return text.replace(QString(before), QString(after));
        };
        const QString texts[] = {"",
                                 "{}",
                                 "hello",
                                 whole.left(whole.size() / 2),
                                 with("marlox shape", "other shape"),
                                 with("Version = 1", "Version = 2"),
                                 with("\"Shape\"", "\"Ghost\""),
                                 with("\"Shape\"", "\"PathValue\""),
                                 with("\"Polyline\"", "\"Number\""),
                                 with("\"Polyline\"", "\"Nothing\""),
                                 with("0.75", "1e400")};
        for (const QString& text : texts) {
            QString error;
            QVERIFY2(!ClipFromText(text.toStdString(), error), qPrintable(text));
            QVERIFY2(!error.isEmpty(), qPrintable(text));
        }
        ShapeClip uneven = *CopyShape(shape());
        Ref<PolyLine> fewer = ShapeOf(shape(), 0)->CopyShape();
        fewer->RemovePoints(mask(3, {1}));
        uneven.animation.SetKey(0.0, uneven.value, Interpolation::Linear);
        uneven.animation.SetKey(10.0, fewer, Interpolation::Linear);
        QString error;
        QVERIFY(!ClipFromText(ClipToText(uneven), error));
        QCOMPARE(error, QString("Different destination points count"));
        QMimeData none;
        QVERIFY(!HasClip(none));
    }
};

QTEST_MAIN(TestShapeClipboard)
#include "tst_shapeclipboard.moc"
