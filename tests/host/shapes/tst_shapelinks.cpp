#include "ShapeBench.h"
#include "system/controls/ControlWnd.h"
#include "system/shapes/ShapePublish.h"

#include <QApplication>

using namespace Marlox;

namespace {

class Counter final : public Object {
public:
    bool HandleEvent(Object*, const MxID& event, TagList&) override
    {
        changes += event == MxID("ValueChanged");
        return true;
    }
    int changes = 0;
};

} // namespace

/// Published points and points that follow.
class TestShapeLinks : public ShapeBench {
    Q_OBJECT

    Input& point(const char* id) { return *tool_->FindInput(id); }
    float picture()
    {
        const auto result = RenderJob::Take(*document_, 0, 1, nullptr)->Run(nullptr);
        return result.image->Row(0)[0];
    }
    /// A tool whose first point follows the first point of tool_.
    Operator* follower()
    {
        PublishPoints(shape(), mask(3, {0}));
        Operator* tool = add({{0.26, 0.5}, {0.9, 0.9}});
        const int followers =
            SetPointsToFollow(*tool->FindInput("Polyline"), mask(2, {0, 1}), 0, {0.02, 0.02});
        return followers == 1 ? tool : nullptr;
    }

private slots:
    void publishingKeepsTheShape()
    {
        Animation keys;
        keys.SetKey(0, line({{0.25, 0.5}, {0.5, 0.75}, {0.75, 0.5}}), Interpolation::Linear);
        keys.SetKey(10, line({{0.5, 0.5}, {0.5, 1.0}, {0.75, 0.0}}));
        shape().SetAnimation(keys);
        history().Clear();
        QCOMPARE(PublishPoints(shape(), mask(3, {0, 2})), 2);
        QCOMPARE(history().Stack().count(), 1);
        QVERIFY(near(placeOf(point("Point0"), 5), {0.375, 0.5}));
        QVERIFY(near(placeOf(point("Point1"), 10), {0.75, 0.0}));
        QVERIFY(near(at(shape(), 1, 10), {0.5, 1.0}));
        QCOMPARE(PublishPoints(shape(), mask(3, {0, 1})), 1); // one is already
        QCOMPARE(PublishedInputs(shape(), mask(3, {0, 1, 2})),
                 (std::vector{&point("Point0"), &point("Point2"), &point("Point1")}));

        point("Point0").SetValue(Point(0.1, 0.2), 0);
        QVERIFY(near(at(shape(), 0, 0), {0.1, 0.2}));
        QVERIFY(near(at(shape(), 0, 10), {0.5, 0.5}));
        QCOMPARE(UnpublishPoints(shape(), mask(3, {0, 1})), 2);
        QVERIFY(!tool_->FindInput("Point0"));
        QVERIFY(near(ShapeOf(shape(), 0)->First()->Place(), {0.1, 0.2}));
    }

    void undoSaveAndCopy()
    {
        PublishPoints(shape(), mask(3, {1}));
        Input* const input = &point("Point0");
        input->SetValue(Point(0.1, 0.1), 0);
        history().Undo();
        history().Undo();
        QVERIFY(!tool_->FindInput("Point0"));
        QVERIFY(ShapeOf(shape(), 0)->Links().empty());
        history().Redo();
        history().Redo();
        QCOMPARE(tool_->FindInput("Point0"), input);
        input->SetExpression("{0.3, 0.4}");

        const std::string text = document_->ToText();
        QString error;
        QVERIFY2(document_->FromText(text, &error), qPrintable(error));
        QCOMPARE(document_->ToText(), text);
        tool_ = document_->Tools().front().Get();
        QVERIFY(near(at(shape(), 1), {0.3, 0.4}));

        Operator* const copy = add({});
        ScriptVal state;
        tool_->SaveState(state);
        copy->AddPublishedInput("Other");
        history().Clear();
        QVERIFY(copy->RestoreState(state));
        QVERIFY(copy->FindInput("Point0") && !copy->FindInput("Other"));
        QVERIFY(near(at(*copy->FindInput("Polyline"), 1), {0.3, 0.4}));
        history().Undo();
        QVERIFY(!copy->FindInput("Point0") && copy->FindInput("Other"));

        copy->AddPublishedInputsOf(*tool_);
        QCOMPARE(copy->FindInput("Point0")->GetName(), point("Point0").GetName());

        ScriptVal wrong;
        wrong.Append(ScriptVal("Polyline")); // no list of lists
        state.Set("Published", wrong);
        QVERIFY(!copy->RestoreState(state));
        QVERIFY(copy->FindInput("Other"));
    }

    void inputsAreNamedForScripts()
    {
        QCOMPARE(tool_->AddPublishedInput("Left hand")->GetID().c_str(), "Left_hand");
        QCOMPARE(tool_->AddPublishedInput("Polyline")->GetID().c_str(), "Polyline1");
        QCOMPARE(tool_->AddPublishedInput()->GetID().c_str(), "Point0");
        tool_->SetLocked(true);
        QVERIFY(!tool_->AddPublishedInput());
        QVERIFY(!tool_->RemovePublishedInput(point("Point0")));
        QCOMPARE(PublishPoints(shape(), mask(3, {0})), 0);
        tool_->SetLocked(false);
        QVERIFY(!tool_->RemovePublishedInput(shape()));
    }

    void draggingWritesTheInput()
    {
        PublishPoints(shape(), mask(3, {0, 1}));
        point("Point1").SetExpression("{0.9, 0.9}");
        const auto drag = [&](ShapePlace by) {
            ShapeKeys keys(shape());
            PolyLine* const edited = keys.At(TimeNone);
            PlaceLinkedPoints(shape(), 0, *edited);
            edited->MovePoints(mask(3, {0, 1, 2}), by);
            keys.Commit();
            QVERIFY(UpdatePublishedPointInputs(shape(), 0));
        };
        point("Point0").SetValue(Point(0.5, 0.25), 0);
        drag({0.125, 0.25});
        QVERIFY(near(placeOf(point("Point0")), {0.625, 0.5}));
        QVERIFY(near(at(shape(), 1), {0.9, 0.9})); // the expression rules
        QVERIFY(near(at(shape(), 2), {0.875, 0.75}));
    }

    void followingReachesShapesAndPictures()
    {
        Operator* const second = follower();
        QVERIFY(second);
        Input& secondShape = *second->FindInput("Polyline");
        PublishPoints(secondShape, mask(2, {1}));
        Operator* const third = add({{0.9, 0.91}});
        Input& thirdShape = *third->FindInput("Polyline");
        QCOMPARE(SetPointsToFollow(thirdShape, mask(1, {0}), 0, {0.02, 0.02}), 1);
        second->FindInput("Point0")->SetExpression("Shape1.Point0");

        const auto counter = MakeRef<Counter>();
        thirdShape.AddNotify(counter.Get(), MxID());
        point("Point0").SetValue(Point(0.0625, 0.5), 0);
        QVERIFY(counter->changes > 0);
        thirdShape.RemoveNotify(counter.Get());
        QVERIFY(near(at(secondShape, 0), {0.0625, 0.5}));
        QVERIFY(near(at(thirdShape, 0), {0.0625, 0.5}));
        QCOMPARE(picture(), 0.0625f);
        point("Point0").SetExpression("{time / 100, 0}");
        QVERIFY(near(at(thirdShape, 0, 25), {0.25, 0.0}));
        static_cast<ShapeTool*>(second)->shift = 0.25; // both are seen at one place
        QVERIFY(near(at(secondShape, 0, 25), {0.0, 0.0}));
        QVERIFY(near(at(secondShape, 1, 25), {0.25, 0.0})); // an input's place is the shape's
        QVERIFY(near(at(thirdShape, 0, 25), {0.5, 0.0}));
        QCOMPARE(SetPointsToFollow(thirdShape, mask(1, {0}), 25, {0.01, 0.01}), 1);
        QVERIFY(near(at(thirdShape, 0, 25), {0.5, 0.0}));
    }

    void followersKeepToTheirTool()
    {
        Operator* const second = follower();
        QVERIFY(second);
        Input& following = *second->FindInput("Polyline");
        const KeyPoint key{0, 3.0};
        const auto followed = FindExternFollowingPoint(following, *ShapeOf(following, 3), key);
        QVERIFY(followed);
        QCOMPARE(followed->input, &shape());
        QCOMPARE(followed->index, 0);
        QCOMPARE(followed->time, TimeNone);
        shape().AddKey(2);
        QCOMPARE(FindExternFollowingPoint(following, *ShapeOf(following, 3), key)->time, 2.0);

        tool_->SetName("Arm");
        point("Point0").SetValue(Point(0.1, 0.2), 0);
        QVERIFY(near(at(following, 0), {0.1, 0.2}));
        history().Undo();
        history().Undo(); // the old name again
        point("Point0").SetValue(Point(0.3, 0.2), 0);
        QVERIFY(near(at(following, 0), {0.3, 0.2}));
        QVERIFY(document_->RemoveTool(*tool_));
        QVERIFY(near(at(following, 0), {0.3, 0.2}));
        QVERIFY(ShapeOf(following, 0)->Links().empty());
        history().Undo();
        QCOMPARE(ShapeOf(following, 0)->Links().size(), std::size_t(1));
        QCOMPARE(StopFollowing(following, mask(2, {0})), 1);
        QVERIFY(near(ShapeOf(following, 0)->First()->Place(), {0.3, 0.2}));
    }

    void unpublishingLeavesFollowersWhereTheyAre()
    {
        Operator* const second = follower();
        QVERIFY(second);
        Input& following = *second->FindInput("Polyline");
        Input& own = *tool_->FindInput("Polyline2");
        own.SetValue(*line({{0.25, 0.5}, {0.9, 0.9}}), TimeNone);
        PublishPoints(shape(), mask(3, {1}));
        QCOMPARE(SetPointsToFollow(own, mask(2, {0}), 0, {0.02, 0.02}), 1);
        QCOMPARE(SetPointsToFollow(following, mask(2, {0}), 0, {0.02, 0.02}), 1);
        point("Point0").SetValue(Point(0.1, 0.2), 0);
        history().Clear();
        QCOMPARE(UnpublishPoints(shape(), mask(3, {1})), 1); // followed by none
        QCOMPARE(ShapeOf(following, 0)->Links().size(), std::size_t(1));
        history().Clear();
        QCOMPARE(UnpublishPoints(shape(), mask(3, {0})), 1);
        QCOMPARE(history().Stack().count(), 1);
        for (const Input* input : {&following, &own}) {
            QVERIFY(ShapeOf(*input, 0)->Links().empty());
            QVERIFY(near(ShapeOf(*input, 0)->First()->Place(), {0.1, 0.2}));
        }
        history().Undo();
        QCOMPARE(ShapeOf(own, 0)->Links().size(), std::size_t(1));
        point("Point0").SetValue(Point(0.3, 0.4), 0);
        QVERIFY(near(at(following, 0), {0.3, 0.4}));
    }

    void loopsStayWhereTheyAre()
    {
        Input& other = *tool_->FindInput("Polyline2");
        const auto linked = [](std::vector<ShapePlace> places, std::vector<PointLink> links) {
            const Ref<PolyLine> made = line(std::move(places));
            for (const PointLink& link : links)
                made->SetLink(link);
            return made;
        };
        using Kind = PointLink::Kind;
        // Points 1 of both follow each other; point 2 of the second follows point 2 of the first.
        shape().SetValue(
            *linked({{0.1, 0.1}, {0.2, 0.2}}, {{Kind::Follows, 1, "Polyline2", "", 1}}), 0);
        other.SetValue(
            *linked({{0.3, 0.3}, {0.4, 0.4}}, {{Kind::Follows, 1, "Polyline", "Shape1", 1},
                                               {Kind::Follows, 2, "Polyline", "", 2}}),
            0);
        QVERIFY(near(at(shape(), 0), {0.1, 0.1}));
        QVERIFY(near(at(other, 0), {0.3, 0.3}));
        QVERIFY(near(at(other, 1), {0.2, 0.2}));
    }

    void theInspectorShowsThem()
    {
        QWidget window;
        ControlWnd page(&window);
        page.SetOperator(tool_);
        const int before = page.sizeHint().height();
        PublishPoints(shape(), mask(3, {0, 1}));
        QApplication::processEvents();
        QVERIFY(page.sizeHint().height() > before);
        history().Undo();
        QApplication::processEvents();
        QCOMPARE(page.sizeHint().height(), before);
        QCOMPARE(page.GetOperator(), tool_);
    }
};

QTEST_MAIN(TestShapeLinks)
#include "tst_shapelinks.moc"
