#include "system/controls/Layout.h"
#include "host/Rows.h"
#include "script/ScriptSystem.h"
#include "system/base/ScriptServices.h"
#include "system/widgets/Container.h"

#include <QLabel>
#include <QPointer>
#include <QtTest>

using namespace Marlox;

namespace {

ScriptVal Parse(const char* text)
{
    ScriptVal value;
    QString error;
    if (!ScriptServices::Installed()->ParseValue(text, value, &error))
        qFatal("%s", qPrintable(error));
    return value;
}

/// A widget that asks for fixed sizes.
class Block : public QWidget {
public:
    Block(int width, int height, QWidget* parent = nullptr) : QWidget(parent), size_(width, height)
    {
    }
    void Resize(int width, int height)
    {
        size_ = QSize(width, height);
        updateGeometry();
    }
    QSize sizeHint() const override { return size_; }
    QSize minimumSizeHint() const override { return size_; }

private:
    QSize size_;
};

LayoutObj* Build(const char* text, QWidget& parent, QString* error = nullptr)
{
    return ScriptServices::Installed()->BuildLayout(Parse(text), &parent, nullptr, nullptr, error);
}

MxPoint MinimumOf(const LayoutObj& object)
{
    MxPoint size;
    object.MinimumSize(size.x, size.y);
    return size;
}

} // namespace

class LayoutTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { InstallScripting(); }
    void cleanupTestCase() { UninstallScripting(); }
    void TellsObjectsInOrder();
    void FollowsWidgets();
    void HidesAndShows();
    void ContainersStack();
    void LabelsDrawTheirText();
    void EndsWithItsOwner();
    void RefusesBrokenDescriptions_data();
    void RefusesBrokenDescriptions();
};

void LayoutTest::TellsObjectsInOrder()
{
    QWidget host;
    QStringList told;
    const auto callback = [](void*, LayoutObj& object, const ScriptVal& description,
                             void* context) {
        static_cast<QStringList*>(context)->append(
            object.TypeName().ToString() + '/' + object.Name().ToString() + '/' +
            QString::fromStdString(description.Get("tip").ToString()));
    };
    LayoutObj* root = ScriptServices::Installed()->BuildLayout(
        Parse("{'VGroup', name = 'all', {type = 'HGroup', {'Item', Name = 'a', tip = 'first'},"
              " {'Spacer'}}, {'Container', NAME = 'more'}}"),
        &host, callback, &told, nullptr);
    QVERIFY(root);
    QCOMPARE(told, QStringList(
                       {"VGroup/all/", "HGroup//", "Item/a/first", "Spacer//", "Container/more/"}));
    LayoutObj* item = root->Find("a");
    QVERIFY(item && item->Parent() && item->Parent()->Parent() == root);
    QVERIFY(!item->IsContainer() && root->Find("more")->IsContainer());
    QCOMPARE(root->Children().size(), std::size_t(2));
    QVERIFY(!root->Find("b"));
}

void LayoutTest::FollowsWidgets()
{
    QWidget host;
    host.resize(300, 50);
    LayoutObj* root = Build("{'HGroup', spacing = 5, margin = {1, 2, 3, 4},"
                            " {'Item', name = 'left', weight = 0}, {'Item', name = 'right'}}",
                            host);
    auto* left = new Block(40, 20);
    auto* right = new Block(30, 24);
    right->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    root->Find("left")->SetWidget(left);
    root->Find("right")->SetWidget(right);
    QCOMPARE(left->parentWidget(), &host);
    QCOMPARE(root->Find("left")->Widget(), left);
    QCOMPARE(MinimumOf(*root), MxPoint(1 + 40 + 5 + 30 + 3, 2 + 24 + 4));

    host.show();
    root->SetGeometry(ToMxRect(host.rect()));
    QVERIFY(left->isVisible());
    QCOMPARE(left->geometry(), QRect(1, 2, 40, 44));
    QCOMPARE(right->geometry(), QRect(46, 2 + (44 - 24) / 2, 251, 24));

    left->Resize(60, 20); // a new wish moves the neighbour without being asked
    QTRY_COMPARE(right->x(), 66);
    QCOMPARE(MinimumOf(*root).x, 99);
    left->setFixedWidth(10); // what is set by hand goes before the wish
    QTRY_COMPARE(right->x(), 16);
}

void LayoutTest::HidesAndShows()
{
    QWidget host;
    LayoutObj* root = Build("{'VGroup', spacing = 5, {'Item', name = 'top'},"
                            " {'HGroup', {'Spacer', minwidth = 90}, {'Item', name = 'low'}}}",
                            host);
    auto* top = new Block(40, 20);
    auto* low = new Block(40, 10);
    low->hide();
    root->Find("top")->SetWidget(top);
    root->Find("low")->SetWidget(low);
    QVERIFY(!low->isVisibleTo(&host)); // hidden on purpose stays hidden
    QCOMPARE(MinimumOf(*root), MxPoint(40, 20));
    low->show(); // the host itself is not shown: nobody tells the layout
    QCOMPARE(MinimumOf(*root), MxPoint(130, 35));

    host.resize(200, 100);
    host.show();
    root->SetGeometry(ToMxRect(host.rect()));
    const int before = top->height();
    low->hide();
    QTRY_VERIFY(top->height() > before);
    delete top; // its place is empty from now on
    QCOMPARE(MinimumOf(*root), MxPoint(0, 0));
}

void LayoutTest::ContainersStack()
{
    QWidget host;
    LayoutObj* root = Build("{'VGroup', spacing = 5, {'Item', name = 'item'},"
                            " {'Container', name = 'more', spacing = 2}}",
                            host);
    root->Find("item")->SetWidget(new Block(40, 20));
    LayoutObj* more = root->Find("more");
    QCOMPARE(MinimumOf(*root), MxPoint(40, 20)); // empty: not even the spacing
    QVERIFY(qobject_cast<Container*>(more->Widget()));
    QCOMPARE(MinimumOf(*root), MxPoint(40, 20));
    auto* first = new Block(30, 10);
    auto* second = new Block(50, 12);
    more->AddWidget(first);
    more->AddWidget(second);
    QCOMPARE(MinimumOf(*root), MxPoint(50, 20 + 5 + 10 + 2 + 12));
    host.resize(100, 60);
    host.show();
    root->SetGeometry(ToMxRect(host.rect()));
    QTRY_VERIFY(second->mapTo(&host, QPoint()).y() > first->mapTo(&host, QPoint()).y());
    second->hide();
    QTRY_COMPARE(MinimumOf(*root), MxPoint(40, 20 + 5 + 10));
}

void LayoutTest::LabelsDrawTheirText()
{
    QWidget host;
    LayoutObj* root =
        Build("{'HGroup', {'Label', name = 'title', text = 'Strength', align = 'right'},"
              " {'Item', name = 'item'}}",
              host);
    QWidget* label = root->Find("title")->Widget();
    QVERIFY(label);
    QCOMPARE(label->property("text").toString(), QStringLiteral("Strength"));
    host.resize(300, 30);
    root->SetGeometry(MxRect(0, 0, 300, 30));
    QVERIFY(label->width() > 20);
    const QPointer<QWidget> watched = label;
    root->Find("title")->SetWidget(new Block(10, 10)); // another widget takes its place
    QVERIFY(!watched);
    QCOMPARE(root->Find("title")->Widget()->sizeHint(), QSize(10, 10));
}

void LayoutTest::EndsWithItsOwner()
{
    constexpr char text[] = "{'VGroup', {'Label', text = 'x'}, {'Item', name = 'a'}}";
    auto host = std::make_unique<QWidget>();
    auto* block = new Block(10, 10);
    LayoutObj* root = Build(text, *host);
    root->Find("a")->SetWidget(block);
    QCOMPARE(host->children().size(), 3);
    delete root; // the label goes, the widget stays
    QCOMPARE(host->children(), QObjectList{block});

    root = Build(text, *host);
    root->Find("a")->SetWidget(block);
    const QPointer<QWidget> watched = block;
    host.reset(); // takes the layout along
    QVERIFY(!watched);
}

void LayoutTest::RefusesBrokenDescriptions_data()
{
    const Rows<QString, QString> row("text", "expected");
    row("nothing", "nil", "a table expected, not nil");
    row("text", "'VGroup'", "a table expected, not a text");
    row("no type", "{}", "no type given");
    row("wrong type of type", "{type = 5}", "the type is a number, not a text");
    row("unknown type", "{'VGroup', {'Item'}, {'HGroup', {'HGruop'}}}",
        "VGroup[2].HGroup[1]: unknown type \"HGruop\"");
    row("nil among children", "{'VGroup', {'Item'}, nil, {'Item'}}",
        "VGroup[2]: a table expected, not nil");
    row("children of an item", "{'VGroup', {'Item', {'Item'}}}",
        "VGroup[1]: only groups hold others, not Item");
    row("weight", "{'VGroup', {'Item', Weight = 'x'}}",
        "VGroup[1].Weight: a number from 0 to 1000000 expected");
    row("negative", "{'VGroup', spacing = -1}",
        "spacing: a number of pixels from 0 to 100000 expected");
    row("not a number", "{'Item', minwidth = 0/0 * 1}",
        "minwidth: a number of pixels from 0 to 100000 expected");
    row("margin", "{'VGroup', margin = {1, 2}}",
        "margin: a number of pixels or {left, top, right, bottom} expected");
    row("limits", "{'HGroup', {'Item', minwidth = 9, maxwidth = 5}}",
        "HGroup[1]: its minimum size is above its maximum size");
    row("align", "{'Item', align = 'middle'}",
        "align: \"left\", \"right\", \"top\", \"bottom\", \"centre\" or \"fill\" expected");
    row("name", "{'Item', name = 7}", "name: a text expected");
}

void LayoutTest::RefusesBrokenDescriptions()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QWidget host;
    QString error;
    QVERIFY(!Build(text.toUtf8().constData(), host, &error));
    QCOMPARE(error, expected);
    QVERIFY(host.children().isEmpty()); // nothing half made is left
}

QTEST_MAIN(LayoutTest)
#include "LayoutTest.moc"
