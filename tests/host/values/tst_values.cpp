#include "KeysOf.h"
#include "system/values/Image.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <QTest>

using namespace Marlox;

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

double at(const Animation& animation, double time)
{
    return NumberOf(animation.Evaluate(time).Get(), notANumber);
}

} // namespace

/// Parameters, images and animations by themselves.
class TestValues : public QObject {
    Q_OBJECT

private slots:
    void parametersCompareAndConvert()
    {
        QVERIFY(Number(notANumber).IsEqual(Number(notANumber)) &&
                !Number(notANumber).IsEqual(Number(0)));
        QVERIFY(!Number(0.5).IsEqual(Point(0.5, 0)) && !Point(0, 0).IsEqual(Text("")));
        const Ref<Parameter> kinds[] = {MakeRef<Number>(0.1 + 0.2),
                                        MakeRef<Point>(1.5, -2.25, 1e-300), MakeRef<Text>("a\n\"b"),
                                        MakeRef<TransformMatrix>(), MakeRef<Number>(-infinite)};
        for (const auto& value : kinds) {
            const auto read = Parameter::FromScriptVal(value->GetDataType(), value->ToScriptVal());
            QVERIFY(read && read->IsEqual(*value));
            QVERIFY(value->Copy()->IsEqual(*value));
        }
        QVERIFY(!Parameter::FromScriptVal(CLSID_DataType_Number, ScriptVal("1")));
        QVERIFY(!Parameter::FromScriptVal(CLSID_DataType_Point, ScriptVal(1)));
        QVERIFY(!Parameter::FromScriptVal(CLSID_DataType_Text, ScriptVal::MakeTable()));
        ScriptVal three;
        for (int i = 0; i < 15; ++i)
            three.Append(i);
        QVERIFY(!Parameter::FromScriptVal(CLSID_DataType_TransformMatrix, three));
        QCOMPARE(NumberOf(Parameter::FromScriptVal(CLSID_DataType_Number, "-inf").Get()),
                 -infinite);
        QVERIFY(!Parameter::CreateDefault("Sculpture"));
    }

    void imagesSharePixelsAndRefuseNonsense()
    {
        Image::Format format;
        format.dataWindow = {-2, -1, 3, 4};
        Image image(format);
        image.Row(4)[19] = 7.0f; // the last one
        const Ref<Parameter> copy = image.Copy();
        QVERIFY(copy->IsEqual(image) && !Image(format).IsEqual(image));
        QCOMPARE(static_cast<const Image&>(*copy).Row(4)[19], 7.0f);
        format.dataWindow = {0, 0, 2000000000, 2000000000};
        QVERIFY_EXCEPTION_THROWN(Image{format}, std::bad_alloc);
    }

    void imagesStartEmptyInUsedMemory()
    {
        // Large ones, smaller and larger than the one before, while others hold their pixels.
        std::vector<Ref<Image>> held;
        for (const int height : {600, 500, 590, 610, 400, 600}) {
            Image::Format format;
            format.dataWindow = {0, 0, 1000, height};
            auto image = MakeRef<Image>(format);
            const std::size_t count = std::size_t(1000) * 4 * std::size_t(height);
            QVERIFY(std::all_of(image->Row(0), image->Row(0) + count,
                                [](float value) { return value == 0.0f; }));
            std::fill_n(image->Row(0), count, float(height));
            if (held.size() < 2)
                held.push_back(image);
        }
        QCOMPARE(held[0]->Row(599)[3999], 600.0f);
        QCOMPARE(held[1]->Row(0)[0], 500.0f);
    }

    void keysHoldOutsideAndStep()
    {
        Animation animation = keysOf({{10, 1}, {20, 3}}, Interpolation::Step);
        QCOMPARE(at(animation, -5), 1.0);
        QCOMPARE(at(animation, 19.999), 1.0);
        QCOMPARE(at(animation, 20), 3.0);
        QCOMPARE(at(animation, 99), 3.0);
        animation.SetKey(10, MakeRef<Number>(1), Interpolation::Linear);
        QCOMPARE(at(animation, 12.5), 1.5);
        animation.SetKey(10, MakeRef<Number>(2)); // keeps its interpolation
        QCOMPARE(at(animation, 15), 2.5);
        QVERIFY(!Animation().Evaluate(0));
    }

    void keyTimesAreTolerant()
    {
        Animation animation = keysOf({{1.0 / 3.0 * 3.0, 1}, {20, 3}});
        QVERIFY(animation.HasKeyAt(1.0 + 1e-9) && !animation.HasKeyAt(1.001));
        animation.SetKey(1.0 - 1e-9, MakeRef<Number>(5));
        QCOMPARE(animation.Keys().size(), std::size_t(2));
        QCOMPARE(animation.KeyAfter(1.0 - 1e-9).value(), 20.0);
        QVERIFY(!animation.KeyBefore(1.0 + 1e-9));
        QCOMPARE(animation.KeyBefore(20).value(), 1.0);
        QVERIFY(!animation.MoveKey(1, 20) && !animation.MoveKey(2, 3));
        QVERIFY(animation.MoveKey(1, 30));
        QCOMPARE(at(animation, 30), 5.0);
        animation.SetKey(notANumber, MakeRef<Number>(0));
        QCOMPARE(animation.Keys().size(), std::size_t(2));
    }

    void smoothKeysNeverOvershoot()
    {
        const Animation animation = keysOf(
            {{0, 0}, {1, 0.01}, {2, 10}, {40, 10.5}, {41, 10.5}, {42, -3}, {60, -2.9}, {61, 50}});
        const auto& keys = animation.Keys();
        for (auto key = keys.begin(); std::next(key) != keys.end(); ++key) {
            const double from = NumberOf(key->second.value.Get());
            const double to = NumberOf(std::next(key)->second.value.Get());
            const double length = std::next(key)->first - key->first;
            double last = from;
            for (int i = 1; i <= 200; ++i) {
                const double value = at(animation, key->first + length * i / 200);
                QVERIFY(value >= std::min(from, to) && value <= std::max(from, to));
                // Monotone, too: no dip on the way.
                QVERIFY(from <= to ? value >= last - 1e-12 : value <= last + 1e-12);
                last = value;
            }
        }
    }

    void smoothKeysAreSmooth()
    {
        const Animation animation = keysOf({{0, 0}, {10, 4}, {30, 9}, {35, 20}});
        for (const double time : {10.0, 30.0}) {
            const double before = (at(animation, time) - at(animation, time - 1e-4)) / 1e-4;
            const double behind = (at(animation, time + 1e-4) - at(animation, time)) / 1e-4;
            QVERIFY(std::abs(before - behind) < 1e-3 && before > 0.1);
        }
        QVERIFY(at(animation, 1e-3) < 1e-6); // starts flat, out of the hold before it
        const Animation even = keysOf({{0, 0}, {10, 10}, {20, 20}, {30, 30}});
        QVERIFY(std::abs(at(even, 15) - 15.0) < 1e-12); // a straight run stays straight
    }

    void pointsInterpolateAndTextsHold()
    {
        Animation path;
        path.SetKey(0, MakeRef<Point>(0, 1), Interpolation::Linear);
        path.SetKey(10, MakeRef<Point>(1, 0), Interpolation::Linear);
        QVERIFY(path.Evaluate(5)->IsEqual(Point(0.5, 0.5)));
        Animation text;
        text.SetKey(0, MakeRef<Text>("a"));
        text.SetKey(10, MakeRef<Text>("b"));
        QVERIFY(text.Evaluate(9.9)->IsEqual(Text("a")));
        const Animation broken = keysOf({{0, 1}, {10, infinite}});
        QCOMPARE(at(broken, 5), 1.0); // no NaN between a number and infinity
        QCOMPARE(at(broken, 10), infinite);
    }
};

QTEST_APPLESS_MAIN(TestValues)
#include "tst_values.moc"
