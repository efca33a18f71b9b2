#include "widgets/ComboList.h"

#include <cmath>
#include <limits>

#include <QtTest>

using namespace Marlox;

namespace {

ComboModel modelOf(std::initializer_list<const char*> texts)
{
    std::vector<ComboEntry> entries;
    for (const char* text : texts)
        entries.push_back({text, QString("id ") + text});
    return ComboModel(std::move(entries));
}

constexpr int none = ComboModel::none;

} // namespace

/// Entries, the search among them, and the geometry of their list.
class ChoiceModelTest : public QObject {
    Q_OBJECT
private slots:
    void FindsValues();
    void StepsStayWithin();
    void LettersFind();
    void OneLetterGoesRound();
    void ListsStandBesideTheField_data();
    void ListsStandBesideTheField();
    void ListsKeepTheLitRowInView();
};

void ChoiceModelTest::FindsValues()
{
    const ComboModel model = modelOf({"Nearest", "Bilinear", "Bicubic", "Nearest"});
    const double infinite = std::numeric_limits<double>::infinity();
    for (const auto& [number, place] :
         {std::pair{0.0, 0}, {2.0, 2}, {-0.4, 0}, {1.5, 2}, {3.49, 3}})
        QCOMPARE(model.PlaceOf(number), place);
    for (const double stranger : {-1.0, -0.6, 3.5, 4.0, 1e300, -1e300, infinite, double(NAN)})
        QCOMPARE(model.PlaceOf(stranger), none);
    QCOMPARE(model.PlaceOf(QString("id Bicubic")), 2);
    QCOMPARE(model.PlaceOf(QString("id Nearest")), 0); // the first of two
    for (const char* stranger : {"", "Bicubic", "id bicubic", "id Bicubic "})
        QCOMPARE(model.PlaceOf(QString(stranger)), none);
    QCOMPARE(ComboModel().PlaceOf(0.0), none);
}

void ChoiceModelTest::StepsStayWithin()
{
    const ComboModel model = modelOf({"a", "b", "c"});
    QCOMPARE(model.Stepped(1, 1), 2);
    QCOMPARE(model.Stepped(2, 1), 2);
    QCOMPARE(model.Stepped(1, -8), 0);
    QCOMPARE(model.Stepped(none, 1), 0);
    QCOMPARE(model.Stepped(none, -1), 2);
    QCOMPARE(ComboModel().Stepped(none, 1), none);
}

void ChoiceModelTest::LettersFind()
{
    const ComboModel model = modelOf({"Box", "Bartlett", "B spline", "bicubic", "Catmull"});
    ComboSearch search;
    QVERIFY(!search.IsGoingOn(0));
    QCOMPARE(search.Type("b", 0, model, 4), 0);
    QCOMPARE(search.Type("I", 300, model, 0), 3);
    QCOMPARE(search.Type("x", 600, model, 3), 3); // "bix": nothing, stays
    QVERIFY(search.IsGoingOn(1500) && !search.IsGoingOn(1600));
    QCOMPARE(search.Type("c", 1600, model, 3), 4); // after a pause, anew
    QCOMPARE(search.Type("b", 9000, model, 1), 2); // the next one from where it is
    QCOMPARE(search.Type(" ", 9100, model, 2), 2);
    QCOMPARE(search.Type("x", 20000, ComboModel(), none), none);
}

void ChoiceModelTest::OneLetterGoesRound()
{
    const ComboModel model = modelOf({"Box", "Cubic", "bicubic", "Bartlett"});
    ComboSearch search;
    int place = 1;
    for (const int next : {2, 3, 0, 2}) {
        place = search.Type(place == 3 ? "B" : "b", 10, model, place);
        QCOMPARE(place, next);
    }
    // Unless there is one that starts with the letter twice.
    const ComboModel twice = modelOf({"Aa", "Ab", "Ac"});
    ComboSearch again;
    QCOMPARE(again.Type("a", 10, twice, 2), 0);
    QCOMPARE(again.Type("a", 20, twice, 0), 0);
    QCOMPARE(again.Type("a", 30, twice, 0), 1);
}

void ChoiceModelTest::ListsStandBesideTheField_data()
{
    QTest::addColumn<QRect>("field");
    QTest::addColumn<int>("wantedWidth");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QRect>("expected");
    const auto row = [](const char* name, QRect field, int width, int rows, QRect expected) {
        QTest::newRow(name) << field << width << rows << expected;
    };
    // The screen is 1000 by 800; rows are 24 high, a frame of 1 around them.
    row("below", {100, 100, 200, 24}, 50, 3, {100, 124, 200, 74});
    row("wider", {100, 100, 200, 24}, 300, 3, {100, 124, 300, 74});
    row("above", {100, 760, 200, 24}, 50, 3, {100, 686, 200, 74});
    row("at most sixteen", {100, 100, 200, 24}, 50, 90, {100, 124, 200, 386});
    row("less where room is short", {100, 420, 200, 24}, 50, 90, {100, 34, 200, 386});
    row("whichever has more", {100, 300, 200, 300}, 50, 90, {100, 10, 200, 290});
    row("off the right edge", {900, 100, 90, 24}, 300, 1, {700, 124, 300, 26});
    row("off the left edge", {-40, 100, 90, 24}, 50, 1, {0, 124, 90, 26});
    row("no wider than the screen", {100, 100, 90, 24}, 4000, 1, {0, 124, 1000, 26});
}

void ChoiceModelTest::ListsStandBesideTheField()
{
    QFETCH(QRect, field);
    QFETCH(int, wantedWidth);
    QFETCH(int, rows);
    QFETCH(QRect, expected);
    const ComboPlace place = ComboPlace::Find(field, wantedWidth, rows, {0, 0, 1000, 800});
    QCOMPARE(place.rect, expected);
    QCOMPARE(place.shownRows, (expected.height() - 2) / 24);
}

void ChoiceModelTest::ListsKeepTheLitRowInView()
{
    ComboList list(100, 10);
    QVERIFY(list.Scrolls() && list.Lit() == none);
    list.Light(12);
    QCOMPARE(list.First(), 3);
    list.Light(5);
    QCOMPARE(list.First(), 3);
    list.Light(2);
    QCOMPARE(list.First(), 2);
    list.Centre(50);
    QCOMPARE(list.First(), 45);
    QCOMPARE(list.Lit(), 2); // scrolling lights nothing
    list.Centre(99);
    QCOMPARE(list.First(), 90);
    QCOMPARE(list.RowAt(0), 90);
    QCOMPARE(list.RowAt(239), 99);
    QVERIFY(list.RowAt(240) == none && list.RowAt(-1) == none);
    QVERIFY(!list.LightAt(240) && list.LightAt(30));
    QCOMPARE(list.Lit(), 91);
    QCOMPARE(list.First(), 90);
    list.Light(100);
    QCOMPARE(list.Lit(), none);
    list.ScrollTo(-5);
    QCOMPARE(list.First(), 0);
}

QTEST_GUILESS_MAIN(ChoiceModelTest)
#include "choice_model_test.moc"
