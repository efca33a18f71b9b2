#include "script/LayoutModel.h"

#include <memory>
#include <numeric>
#include <random>

#include <QtTest>

using namespace Marlox;

namespace {

using Boxes = std::vector<std::unique_ptr<LayoutBox>>;

/// A tree of boxes that owns them all; boxes are filled in after they are made.
class Tree {
public:
    LayoutBox* Leaf(int minimum, int maximum = LayoutExtent::Any, double weight = 1.0)
    {
        LayoutBox* box = Add(LayoutBox::Kind::Leaf, {});
        box->hasContent = box->contentVisible = true;
        box->content = {LayoutExtent{minimum, minimum, maximum},
                        LayoutExtent{minimum, minimum, maximum}};
        box->weight = weight;
        return box;
    }
    LayoutBox* Spacer() { return Add(LayoutBox::Kind::Spacer, {}); }
    LayoutBox* Row(std::vector<LayoutBox*> children) { return Add(LayoutBox::Kind::Row, children); }
    LayoutBox* Column(std::vector<LayoutBox*> children)
    {
        return Add(LayoutBox::Kind::Column, children);
    }

private:
    LayoutBox* Add(LayoutBox::Kind kind, std::vector<LayoutBox*> children)
    {
        boxes_.push_back(std::make_unique<LayoutBox>());
        boxes_.back()->kind = kind;
        boxes_.back()->children = std::move(children);
        return boxes_.back().get();
    }

    Boxes boxes_;
};

std::vector<int> Share(std::initializer_list<LayoutShare> parts, int total)
{
    std::vector<int> sizes;
    ShareSpace({parts.begin(), parts.size()}, total, sizes);
    return sizes;
}

void Arrange(LayoutBox* root, const MxRect& rect)
{
    root->Measure();
    root->Arrange(rect);
}

} // namespace

class LayoutModelTest : public QObject {
    Q_OBJECT
private slots:
    void SharesSurplusByWeight();
    void SharesKeepBoundsAndLeaveNoGaps();
    void MinimumSizesAddUp();
    void HiddenContentTakesNoRoom();
    void ArrangesNestedGroups();
    void AlignsContentInItsPlace();
    void LimitsBindGroups();
};

void LayoutModelTest::SharesSurplusByWeight()
{
    const int any = LayoutExtent::Any;
    using Sizes = std::vector<int>;
    QCOMPARE(Share({{10, any, 1}, {10, any, 3}}, 60), (Sizes{20, 40}));
    QCOMPARE(Share({{10, any, 0}, {10, any, 2}}, 60), (Sizes{10, 50}));
    // What one can't take goes to the others.
    QCOMPARE(Share({{10, 12, 1}, {10, any, 1}, {10, any, 1}}, 72), (Sizes{12, 30, 30}));
    // Nobody takes it.
    QCOMPARE(Share({{10, any, 0}, {10, 15, 1}}, 60), (Sizes{10, 15}));
    // Too little: each its part.
    QCOMPARE(Share({{30, any, 1}, {10, any, 1}}, 20), (Sizes{15, 5}));
    QCOMPARE(Share({{30, any, 1}, {10, any, 1}}, -5), (Sizes{0, 0}));
    QCOMPARE(Share({}, 20), Sizes{});
}

void LayoutModelTest::SharesKeepBoundsAndLeaveNoGaps()
{
    std::mt19937 random(7);
    const auto pick = [&](int low, int high) {
        return int(low + random() % unsigned(high - low + 1));
    };
    for (int round = 0; round < 2000; ++round) {
        std::vector<LayoutShare> parts;
        int needed = 0;
        bool open = false; // somebody takes whatever is left
        for (int i = pick(1, 9); i > 0; --i) {
            const int minimum = pick(0, 40);
            const bool bounded = pick(0, 2) == 0;
            const double weight = pick(0, 5) / 3.0;
            parts.push_back({minimum, bounded ? minimum + pick(0, 30) : LayoutExtent::Any, weight});
            needed += minimum;
            open = open || (!bounded && weight > 0);
        }
        const int total = pick(needed, needed + 300);
        std::vector<int> sizes;
        ShareSpace(parts, total, sizes);
        for (std::size_t i = 0; i < parts.size(); ++i)
            QVERIFY(sizes[i] >= parts[i].minimum && sizes[i] <= parts[i].maximum);
        const int used = std::accumulate(sizes.begin(), sizes.end(), 0);
        QVERIFY(open ? used == total : used <= total);
    }
}

void LayoutModelTest::MinimumSizesAddUp()
{
    Tree tree;
    LayoutBox* inner = tree.Row({tree.Leaf(10), tree.Leaf(20, 50)});
    inner->spacing = 4;
    inner->margins = {1, 2, 3, 5};
    LayoutBox* root = tree.Column({inner, tree.Leaf(60, 70)});
    root->spacing = 8;
    root->Measure();
    QCOMPARE(inner->measured[0].minimum, 10 + 20 + 4 + 1 + 3);
    QCOMPARE(inner->measured[1].minimum, 20 + 2 + 5);
    QCOMPARE(root->measured[0].minimum, 60);
    QCOMPARE(root->measured[1].minimum, 27 + 8 + 60);
    QCOMPARE(root->measured[0].maximum, int(LayoutExtent::Any));
    inner->children[0]->content[0].maximum = 30;
    root->Measure();
    QCOMPARE(inner->measured[0].maximum, 30 + 50 + 4 + 1 + 3);
}

void LayoutModelTest::HiddenContentTakesNoRoom()
{
    Tree tree;
    LayoutBox* first = tree.Leaf(10);
    LayoutBox* second = tree.Leaf(20);
    second->limits[0].minimum = 25; // binds what is shown only
    LayoutBox* row = tree.Row({second, tree.Spacer()});
    row->limits[1].minimum = 30;
    LayoutBox* root = tree.Column({first, row});
    root->spacing = 6;
    root->Measure();
    QCOMPARE(root->measured[0].minimum, 25);
    QCOMPARE(root->measured[1].minimum, 10 + 6 + 30);

    second->contentVisible = false;
    root->Measure();
    QVERIFY(!row->shown);
    QCOMPARE(root->measured[0].minimum, 10);
    QCOMPARE(root->measured[1].minimum, 10); // the spacing is gone, too

    first->contentVisible = false;
    root->Measure();
    QVERIFY(!root->shown);
    QCOMPARE(root->measured[1].minimum, 0);

    // A place without content is nothing, unless a size is kept for it; a group of spacers is one.
    LayoutBox* place = tree.Leaf(0);
    place->hasContent = false;
    LayoutBox* padding = tree.Row({tree.Spacer()});
    LayoutBox* other = tree.Column({place, padding});
    other->Measure();
    QVERIFY(!place->shown && padding->shown);
    place->limits[0].minimum = 5;
    other->Measure();
    QVERIFY(place->shown);
    QCOMPARE(other->measured[0].minimum, 5);
}

void LayoutModelTest::ArrangesNestedGroups()
{
    // A label column of fixed width and a track above a row of marks that stands below the track.
    Tree tree;
    LayoutBox* label = tree.Leaf(10, 400, 0.0);
    label->limits[0] = {110, 0, 110};
    LayoutBox* track = tree.Leaf(20);
    LayoutBox* top = tree.Row({label, track});
    LayoutBox* indent = tree.Spacer();
    indent->weight = 0.0;
    indent->limits[0] = {110, 0, 110};
    LayoutBox* low = tree.Leaf(5, 400);
    LayoutBox* high = tree.Leaf(5, 400);
    LayoutBox* marks = tree.Row({low, high});
    LayoutBox* bottom = tree.Row({indent, marks});
    top->spacing = bottom->spacing = 8;
    LayoutBox* root = tree.Column({top, bottom});
    root->margins = {2, 3, 4, 5};
    Arrange(root, MxRect(100, 200, 400, 260));

    QCOMPARE(track->rect, MxRect(102 + 110 + 8, 203, 396, top->rect.bottom));
    QCOMPARE(marks->rect.left, track->rect.left);
    QCOMPARE(marks->rect.right, track->rect.right);
    QCOMPARE(low->rect.right, high->rect.left);
    QCOMPARE(low->rect.Width(), 88);
    QCOMPARE(top->rect.bottom, bottom->rect.top);
    QCOMPARE(bottom->rect.bottom, 255);
}

void LayoutModelTest::AlignsContentInItsPlace()
{
    using Align = LayoutBox::Align;
    Tree tree;
    LayoutBox* leaf = tree.Leaf(10, 40);
    leaf->content[0].preferred = 30;
    leaf->content[1].preferred = 20;
    const MxRect place(0, 0, 100, 60);
    Arrange(leaf, place);
    QCOMPARE(leaf->inner, MxRect(30, 10, 70, 50)); // as large as it may be, in the middle
    leaf->align = {Align::Start, Align::End};
    Arrange(leaf, place);
    QCOMPARE(leaf->inner, MxRect(0, 40, 30, 60));
    leaf->align = {Align::End, Align::Centre};
    Arrange(leaf, place);
    QCOMPARE(leaf->inner, MxRect(70, 20, 100, 40));
    Arrange(leaf, MxRect(0, 0, 8, 6)); // smaller than it should be: stays inside
    QCOMPARE(leaf->inner, MxRect(0, 0, 8, 6));

    // Aligned content lets its place grow; filling content does not.
    LayoutBox* row = tree.Row({leaf, tree.Leaf(10)});
    Arrange(row, MxRect(0, 0, 200, 20));
    QCOMPARE(leaf->rect.Width(), 100);
    leaf->align = {Align::Fill, Align::Fill};
    Arrange(row, MxRect(0, 0, 200, 20));
    QCOMPARE(leaf->rect.Width(), 40);
}

void LayoutModelTest::LimitsBindGroups()
{
    Tree tree;
    LayoutBox* inner = tree.Row({tree.Leaf(10)});
    inner->limits[0] = {0, 0, 50};
    inner->limits[1] = {0, 0, 20};
    LayoutBox* root = tree.Row({inner, tree.Leaf(10, 10)});
    Arrange(root, MxRect(0, 0, 200, 60));
    QCOMPARE(inner->rect, MxRect(0, 20, 50, 40)); // across the row: in the middle
    QCOMPARE(root->children[1]->rect.left, 50);
    root->align[0] = LayoutBox::Align::End; // what nobody takes stands before them
    Arrange(root, MxRect(0, 0, 200, 60));
    QCOMPARE(root->children[1]->rect.right, 200);
}

QTEST_GUILESS_MAIN(LayoutModelTest)
#include "LayoutModelTest.moc"
