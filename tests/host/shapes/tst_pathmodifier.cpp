#include "ShapeBench.h"
#include "system/shapes/PathAnimation.h"
#include "system/shapes/ShapePublish.h"

using namespace Marlox;

/// Modifiers: values that tools compute for others.
class TestPathModifier : public ShapeBench {
    Q_OBJECT

    Operator* path_ = nullptr;
    Input& of(const char* id) { return *path_->FindInput(id); }
    Operator* addPath(double aspect)
    {
        path_ = document_->AddTool(CLSID_Tool_Path);
        of("FrameAspect").SetValue(Number(aspect), 0);
        return path_;
    }
    Input* published()
    {
        PublishPoints(shape(), mask(3, {0}));
        return tool_->FindInput("Point0");
    }

private slots:
    void equalStepsAreEqualWays()
    {
        addPath(2.0); // a picture twice as wide as high
        of("PolyLine").SetValue(*line({{0.0, 0.0}, {0.5, 0.0}, {0.5, 1.0}}), 0);
        Animation along;
        along.SetKey(0, MakeRef<Number>(0.0), Interpolation::Linear);
        along.SetKey(10, MakeRef<Number>(1.0), Interpolation::Linear);
        of("Displacement").SetAnimation(along);
        QVERIFY(near(placeOf(of("Position"), 2.5), {0.25, 0.0}));
        QVERIFY(near(placeOf(of("Position"), 5), {0.5, 0.0}, 1e-6));
        QVERIFY(near(placeOf(of("Position"), 7.5), {0.5, 0.5}));
        QCOMPARE(of("Heading").GetNumber(2), 0.0);
        QCOMPARE(of("Heading").GetNumber(8), 90.0);
        of("PolyLine").SetValue(*line({{0.0, 0.0}, {0.5, 1.0}}), 0);
        QCOMPARE(of("Heading").GetNumber(8), 45.0); // as it is seen
        of("PolyLine").SetValue(*line({}), 0);
        QVERIFY(near(placeOf(of("Position"), 5), {0.5, 0.5}));

        const auto curved = MakeRef<PolyLine>(); // fast and slow by its parameter
        PolyPoint from;
        from.outX = 0.9;
        PolyPoint to;
        to.x = 1.0;
        curved->SetPoints({from, to});
        of("PolyLine").SetValue(*curved, 0);
        for (int frame = 0; frame < 10; ++frame) {
            const ShapePlace step =
                placeOf(of("Position"), frame + 1) - placeOf(of("Position"), frame);
            QVERIFY(std::abs(step.x - 0.1) < 1e-4);
        }
    }

    void computedInputsOnlyGive()
    {
        addPath(1.0);
        Input& position = of("Position");
        QVERIFY(!position.SetValue(Point(0.1, 0.1), 0));
        QVERIFY(!position.AddKey(0) && !position.SetExpression("{0, 0}"));
        QVERIFY(!position.ChangeTo({}, Input::EvenIfLocked));
        ScriptVal state;
        path_->SaveState(state);
        QVERIFY(state.Get("Inputs").Get("Position").IsNil());
        QVERIFY(path_->RestoreState(state));
    }

    void imagesFlowPast()
    {
        Operator* const path = addPath(1.0); // last in the document
        Operator* const last = add({{0.5, 0.5}});
        document_->MoveTool(*path, 1);
        const auto picture = [&](const Operator* viewed) {
            const auto result = RenderJob::Take(*document_, 0, 1, viewed)->Run(nullptr);
            return result.image ? result.image->Row(0)[0] : -1.0f;
        };
        QCOMPARE(picture(nullptr), 0.5f);
        QCOMPARE(picture(path), 0.5f);
        document_->RemoveTool(*last);
        QCOMPARE(picture(nullptr), 0.25f);
        QVERIFY(!path->DisableTool(true));
        QVERIFY(!document_->IsFedBy(*tool_, *path));
    }

    void aPointIsAnimated()
    {
        Input* const point = published();
        history().Clear();
        document_->SetFrameRange(10, 20);
        path_ = AnimateWithPath(*point);
        QVERIFY(path_);
        QCOMPARE(history().Stack().count(), 2);
        QCOMPARE(point->GetExpression(), std::string("Path1.Position"));
        QVERIFY(near(at(shape(), 0, 15), {0.25, 0.5}));
        Ref<PolyLine> longer = ShapeOf(of("PolyLine"), 0)->CopyShape();
        longer->InsertPoint(0, ShapePlace(0.75, 0.5));
        of("PolyLine").SetValue(*longer, 0);
        QVERIFY(near(at(shape(), 0, 15), {0.5, 0.5}, 1e-6));
        path_->SetName("The path");
        QVERIFY(near(at(shape(), 0, 20), {0.75, 0.5}));
        of("Displacement").SetExpression("Shape1.Point0.X"); // round in a circle
        QVERIFY(!std::isnan(placeOf(*point, 15).x));
        QVERIFY(!point->ExpressionError().isEmpty());
        history().Undo();

        QVERIFY(ConvertToXYPath(*path_));
        QVERIFY(!point->HasExpression());
        QCOMPARE(point->GetAnimation().Keys().size(), std::size_t(11));
        QVERIFY(near(at(shape(), 0, 15), {0.5, 0.5}, 1e-6));
        QVERIFY(!document_->FindTool("The path"));
        history().Undo();
        QVERIFY(point->HasExpression() && document_->FindTool("The path"));
    }

    void keysAreReachedAtTheirTimes()
    {
        const std::vector<PathKey> keys{{30, {0.5, 0.9}}, // not in order
                                        {0, {0.1, 0.1}},
                                        {10, {0.3, 0.7}},
                                        {20, {0.3, 0.7}}, // stays
                                        {40, {0.1, 0.1}}};
        for (const PathForm form : {PathForm::Linear, PathForm::Smooth}) {
            addPath(1.5);
            QVERIFY(SetPathKeys(*path_, keys, form));
            for (const PathKey& key : keys)
                QVERIFY(near(placeOf(of("Position"), key.time), key.at, 1e-5));
            QVERIFY(near(placeOf(of("Position"), 14), {0.3, 0.7}, 1e-5));
        }
        QVERIFY(!SetPathKeys(*path_, {}, PathForm::Linear));
        const PathKey wrong[] = {{0, {NAN, 0}}};
        QVERIFY(!SetPathKeys(*path_, wrong, PathForm::Linear));

        Animation moving;
        moving.SetKey(0, MakeRef<Point>(0.25, 0.5));
        moving.SetKey(8, MakeRef<Point>(0.75, 1.0));
        Input* const point = published();
        point->SetAnimation(moving);
        QVERIFY(AnimateWithPath(*point));
        QVERIFY(near(at(shape(), 0, 8), {0.75, 1.0}, 1e-6));
    }

    void pointsGoToXYPathsAndTrackers()
    {
        const int entries = history().Stack().count();
        QCOMPARE(PublishToTracker(shape(), mask(3, {0, 1})), 2);
        QCOMPARE(history().Stack().count(), entries + 1);
        QVERIFY(near(at(shape(), 1), {0.5, 0.75}));
        document_->FindTool("Tracker2")->FindInput("PatternCenter")->SetValue(Point(0.6, 0.6), 0);
        QVERIFY(near(at(shape(), 1), {0.6, 0.6}));
        QCOMPARE(PublishToXYPath(shape(), mask(3, {2})), 1);
        QVERIFY(tool_->FindInput("Point2")->IsAnimated());
        QCOMPARE(PublishToPath(shape(), mask(3, {2})), 1);
        QVERIFY(near(at(shape(), 2), {0.75, 0.5}));
    }
};

QTEST_MAIN(TestPathModifier)
#include "tst_pathmodifier.moc"
