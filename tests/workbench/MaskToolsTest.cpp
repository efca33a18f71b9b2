#include "ToolBench.h"
#include "host/Rows.h"
#include "system/evaluation/Renderer.h"
#include "system/shapes/BSplinePolyLine.h"
#include "workbench/tools/MaskBase.h"
#include "workbench/tools/OverlayTags.h"
#include "workbench/tools/PictureFitted.h"

#include <array>
#include <limits>

using namespace Marlox;
using namespace Marlox::Testing;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

template <class Shape = PolyLine>
Ref<Shape> rectangle(double width, double height, ShapePlace center = {0.5, 0.5})
{
    auto shape = MakeRef<Shape>();
    shape->MakeRectangle(center, width, height, 0.0);
    return shape;
}

void draw(Operator& tool, const Ref<PolyLine>& inner, const Ref<PolyLine>& outer = {})
{
    QVERIFY(tool.FindInput("Polyline")->SetValue(*inner, TimeNone));
    if (outer)
        QVERIFY(tool.FindInput("Polyline2")->SetValue(*outer, TimeNone));
}

} // namespace

class MaskToolsTest : public QObject {
    Q_OBJECT

    const Workbench workbench_;

private slots:
    void masksCutThePicture()
    {
        const auto image = Picture(16, 8, [](int x, int y) {
            return x == 15 ? Rgba{INFINITY, float(notANumber), 1, 1}
                           : Rgba{float(x), float(y), -1.0f, 1.0f};
        });
        Bench bench("PolygonMask");
        draw(bench.Tool(), rectangle(0.5, 0.5)); // columns 4 to 12, rows 2 to 6
        const auto cut = bench.Run(image);
        QCOMPARE(cut->GetFormat().displayWindow, MxRect(0, 0, 16, 8));
        QCOMPARE(cut->GetFormat().dataWindow, MxRect(4, 2, 12, 6));
        QCOMPARE(At(*cut, 4, 2), (Rgba{4, 2, -1, 1}));
        QCOMPARE(At(*cut, 11, 5), (Rgba{11, 5, -1, 1}));
        bench.Set("Level", 0.25);
        QVERIFY(isNear(At(*bench.Run(image), 5, 3), {1.25f, 0.75f, -0.25f, 0.25f}));
        bench.Set("Invert", 1);
        QVERIFY(isNear(At(*bench.Run(image), 5, 3), {}));
        QVERIFY(isNear(At(*bench.Run(image), 1, 7), {0.25f, 1.75f, -0.25f, 0.25f}));
        // Half of a pixel's area.
        bench.Set("Invert", 0).Set("Level", 1).Set("Center", 0.5 + 0.5 / 16, 0.5);
        QVERIFY(isNear(At(*bench.Run(image), 4, 3), {2, 1.5f, -0.5f, 0.5f}));
        // What is cut away is gone, whatever it was.
        QCOMPARE(At(*bench.Set("Center", 0.75, 0.5).Set("Invert", 1).Run(image), 15, 3), Rgba{});
    }

    void whatIsNotDrawnYetCutsNothing()
    {
        const auto image = places(16, 8);
        auto open = rectangle(0.5, 0.5);
        open->Open();
        auto single = MakeRef<PolyLine>();
        single->Append({});
        auto broken = rectangle(0.5, 0.5);
        broken->GetPoint(1)->x = notANumber;
        for (const Ref<PolyLine>& shape : {MakeRef<PolyLine>(), open, single, broken}) {
            Bench bench("PolygonMask");
            draw(bench.Tool(), shape);
            QVERIFY(bench.Set("Invert", 1).Set("SoftEdge", 5).Run(image) == image);
            bench.Set("Apply", 1);
            QVERIFY(bench.Run(image)->GetFormat().dataWindow.IsEmpty());
            QCOMPARE(bench.Run()->GetFormat().displayWindow, MxRect(0, 0, 1920, 1080));
        }
    }

    void masksStandAlone()
    {
        Bench bench("PolygonMask");
        draw(bench.Tool(), rectangle(0.5, 0.25));
        const auto mask = bench.Run(); // without a picture the mask itself
        QCOMPARE(mask->GetFormat().displayWindow, MxRect(0, 0, 1920, 1080));
        QCOMPARE(At(*mask, 960, 540), (Rgba{1, 1, 1, 1}));
        QVERIFY(std::abs(total(*mask, 3) - 960.0 * 270.0) < 0.5);
        const auto proxy = bench.Run({}, 0.0, 0.25);
        QCOMPARE(proxy->GetFormat().scale, 0.25);
        QVERIFY(std::abs(total(*proxy, 3) * 16.0 - 960.0 * 270.0) < 0.5);
        // Over a picture larger than its frame an inverted mask is, too.
        Image::Format wide;
        wide.dataWindow = {-3, 0, 19, 8};
        bench.Set("Apply", 1).Set("Invert", 1);
        QCOMPARE(At(*bench.Run(places(16, 8, wide)), -3, 1), (Rgba{1, 1, 1, 1}));
    }

    void placementTurnsWherePixelsAreSquare()
    {
        Image::Format format;
        format.pixelAspect = 2.0;
        const auto image = places(40, 40, format);
        Bench bench("PolygonMask");
        draw(bench.Tool(), rectangle(0.1, 0.4)); // 4 x 16 pixels, 8 x 16 as seen
        const MxRect turned(10, 20, 18, 28);     // 16 x 8 as seen
        bench.Set("Angle", 90.0).Set("Center", 14.0 / 40.0, 16.0 / 40.0);
        QCOMPARE(bench.Run(image)->GetFormat().dataWindow, turned);
        QVERIFY(std::abs(total(*bench.Run(image), 3) - 64.0) < 1e-3);
        QVERIFY(std::abs(total(*bench.Set("Size", 0.5).Run(image), 3) - 16.0) < 1e-3);
        // The places of published points are the same.
        dynamic_cast<PictureFitted&>(bench.Tool()).FitTo(image->GetFormat());
        const ShapePlace corner =
            bench.Tool().PlacementOf(*bench.Tool().FindInput("Polyline"), 0.0).Out({0.55, 0.7});
        QVERIFY(std::abs(corner.x - 12.0 / 40.0) < 1e-9 && std::abs(corner.y - 18.0 / 40.0) < 1e-9);
    }

    void edgesAreSoft()
    {
        const auto image = Plain(120, 80, {1, 1, 1, 1});
        Bench bench("PolygonMask");
        draw(bench.Tool(), rectangle(0.25, 0.25), rectangle(0.75, 0.75)); // 30 pixels, 20 high
        const auto fades = bench.Run(image);
        QCOMPARE(fades->GetFormat().dataWindow, MxRect(15, 10, 105, 70));
        QVERIFY(std::abs(At(*fades, 30, 40)[3] - 15.5f / 30.0f) < 0.01f);
        QVERIFY(std::abs(At(*fades, 60, 20)[3] - 10.5f / 20.0f) < 0.01f);
        const float value = At(*fades, 20, 40)[3];
        bench.Set("Falloff", 1);
        QVERIFY(std::abs(At(*bench.Run(image), 20, 40)[3] - value * value * (3 - 2 * value)) <
                0.01f);
    }

    void splinesMatchByTheirPartOfTheWhole()
    {
        // Vertices of a square and, around it, of one with three on each side: as one with four.
        const auto image = Plain(120, 80, {1, 1, 1, 1});
        const auto square = [](double size, int each) {
            auto shape = MakeRef<BSplinePolyLine>();
            constexpr std::array<ShapePlace, 4> corners{{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}};
            for (std::size_t i = 0; i < 4; ++i) {
                for (int k = 0; k < each; ++k) {
                    const ShapePlace& next = corners[(i + 1) % 4];
                    PolyPoint point;
                    point.x = 0.5 + size * (corners[i].x + (next.x - corners[i].x) * k / each);
                    point.y = 0.5 + size * (corners[i].y + (next.y - corners[i].y) * k / each);
                    point.tension = 1.0;
                    shape->Append(point);
                }
            }
            shape->Close();
            return shape;
        };
        Bench bench("BSplineMask");
        draw(bench.Tool(), square(0.2, 1));
        const double hard = total(*bench.Run(image), 3);
        QVERIFY(std::abs(hard - 48.0 * 32.0) < 1e-3);
        draw(bench.Tool(), square(0.2, 1), square(0.4, 1));
        const auto same = bench.Run(image);
        draw(bench.Tool(), square(0.2, 1), square(0.4, 3));
        const auto other = bench.Run(image);
        for (int y = 0; y < 80; ++y) {
            for (int x = 0; x < 120; ++x)
                QVERIFY(isNear(At(*same, x, y), At(*other, x, y), 0.03f));
        }
        QVERIFY(total(*same, 3) > hard * 1.5);
    }

    void feathersKeepTheCover()
    {
        Image::Format format;
        format.pixelAspect = 2.0;
        Bench bench("PolygonMask");
        draw(bench.Tool(), rectangle(0.25, 0.5));
        const auto image = Picture(
            80, 80,
            [](int, int) {
                return Rgba{1, 1, 1, 1};
            },
            format);
        const auto feathered = bench.Set("SoftEdge", 4).Run(image);
        QVERIFY(std::abs(total(*feathered, 3) - 20.0 * 40.0) < 0.5);
        QVERIFY(std::abs(At(*feathered, 29, 40)[3] + At(*feathered, 30, 40)[3] - 1.0f) < 1e-3f);
        // As wide across as down, where pixels are square.
        QVERIFY(std::abs(At(*feathered, 28, 40)[3] -
                         (At(*feathered, 40, 16)[3] + At(*feathered, 40, 17)[3]) / 2) < 0.02f);
        // What lies outside the picture reaches in.
        bench.Set("Center", -0.13, 0.5);
        QVERIFY(At(*bench.Run(image), 0, 40)[3] > 0.2f);
        QCOMPARE(bench.Run(image)->GetFormat().dataWindow.left, 0);
        bench.Set("Invert", 1).Set("Center", 3.0, 3.0);
        QCOMPARE(At(*bench.Run(image), 40, 40), (Rgba{1, 1, 1, 1}));
    }

    void masksAreTheSameOnProxies()
    {
        const auto image = Plain(160, 96, {0.5f, 0.5f, 0.5f, 1});
        Bench bench("PolygonMask");
        draw(bench.Tool(), rectangle(0.31, 0.33), rectangle(0.7, 0.8, {0.55, 0.5}));
        bench.Set("Angle", 20.0).Set("SoftEdge", 6);
        compareProxy(bench, image, {0, 0, 40, 24}, 0.03f, true);
    }

    void everyValueChangesTheKey()
    {
        Bench bench("PolygonMask");
        std::string before = bench.Key();
        const auto changed = [&] { return before != std::exchange(before, bench.Key()); };
        auto shape = rectangle(0.5, 0.5);
        draw(bench.Tool(), shape);
        QVERIFY(changed());
        draw(bench.Tool(), rectangle(0.5, 0.5), rectangle(0.6, 0.6));
        QVERIFY(changed());
        auto curved = rectangle(0.5, 0.5);
        curved->GetPoint(2)->outX = 0.1;
        curved->GetPoint(2)->Set(PPF_Linear, false);
        draw(bench.Tool(), curved);
        QVERIFY(changed());
        for (const Ref<Input>& input : bench.Tool().Inputs()) {
            const std::string id = input->GetID().c_str();
            if (input->IsImage() || id == "FrameAspect" || id.starts_with("Polyline"))
                continue;
            bench.Set(*input, input->GetNumber(0.0) > 0.7 ? 0.25 : 1.0);
            QVERIFY2(changed(), id.c_str());
        }
    }

    void wildValuesDoNoHarm()
    {
        Image::Format empty;
        empty.dataWindow = empty.displayWindow = {};
        const std::array pictures{places(16, 9), MakeRef<Image>(empty), MakeRef<Image>()};
        const auto tries = [&](Bench& bench) {
            for (const auto& picture : pictures) {
                for (const double use : {0.0, 1.0}) {
                    const auto image = bench.Set("Apply", use).Run(picture);
                    QVERIFY(image && image->Width() <= 16 && image->Height() <= 9);
                }
            }
        };
        for (const double wild : {notANumber, double(INFINITY), 1e308, -1e308, 0.0, 1e7}) {
            auto shape = rectangle(0.5, 0.5);
            shape->GetPoint(2)->x = wild;
            shape->GetPoint(3)->outY = wild;
            shape->GetPoint(3)->Set(PPF_Linear, false);
            Bench drawn("PolygonMask");
            draw(drawn.Tool(), shape, rectangle(0.6, 0.6));
            tries(drawn);
            for (const Ref<Input>& input : drawn.Tool().Inputs()) {
                Bench bench("PolygonMask");
                draw(bench.Tool(), rectangle(0.5, 0.5), rectangle(0.6, 0.6));
                if (!input->IsImage())
                    tries(bench.Set(*bench.Tool().FindInput(input->GetID()), wild));
            }
        }
    }

    void documentsKeepMasks()
    {
        Bench bench("PolygonMask");
        Input* input = bench.Tool().FindInput("Polyline");
        QVERIFY(input->SetValue(*rectangle(0.2, 0.5), TimeNone) && input->AddKey(0.0));
        QVERIFY(input->SetValue(*rectangle(0.4, 0.5), 10.0));
        bench.Tool().FindInput("Polyline2")->SetValue(*rectangle(0.8, 0.8), TimeNone);
        const auto half = total(*bench.Run({}, 5.0), 3);
        MarloxDoc document;
        QString error;
        QVERIFY2(document.FromText(bench.Document().ToText(), &error), qPrintable(error));
        const Operator& loaded = *document.Tools().front();
        QCOMPARE(loaded.Prepare(5.0)->CacheKey(), bench.Key(5.0));
        bench.Tool().FindInput("Polyline2")->SetDefault();
        QVERIFY(total(*bench.Run({}, 5.0), 3) < half);
        QVERIFY(std::abs(total(*bench.Run({}, 5.0), 3) - 0.3 * 1920 * 540) < 1.0);
    }

    void masksLieOnOthers()
    {
        MarloxDoc document;
        document.AddTool("ColorGradient");
        Operator* left = document.AddTool("PolygonMask");  // columns 0 to 320 of 480
        Operator* right = document.AddTool("BSplineMask"); // 160 to 480
        draw(*left, rectangle(2.0 / 3.0, 2.0, {1.0 / 3.0, 0.5}));
        draw(*right, rectangle(2.0 / 3.0, 2.0, {2.0 / 3.0, 0.5}));
        left->FindInput("Apply")->SetValue(Number(1.0), TimeNone);
        right->FindInput("Apply")->SetValue(Number(1.0), TimeNone);
        QVERIFY(right->FindInput("Base")->Connect(left));
        const auto covered = [&] {
            const auto image = RenderJob::Take(document, 0.0, 0.25, right)->Run().image;
            std::string out;
            for (const int x : {80, 240, 400})
                out += At(*image, x, 100)[3] > 0.5f ? '1' : '0';
            return out;
        };
        std::string all;
        for (int way = 0; way < 4; ++way) {
            right->FindInput("Combine")->SetValue(Number(way), TimeNone, Input::ReplaceAll);
            all += covered() + ' ';
        }
        QCOMPARE(all, std::string("111 100 010 101 "));
        right->FindInput("Invert")->SetValue(Number(1.0), TimeNone, Input::ReplaceAll);
        QCOMPARE(covered(), std::string("010"));
        right->FindInput("Invert")->SetValue(Number(0.0), TimeNone, Input::ReplaceAll);
        // The picture that shows through a mask that is off is no mask.
        left->DisableTool(true);
        QCOMPARE(covered(), std::string("011"));
        left->DisableTool(false);
        // A shape that is not drawn leaves its base as it is, whatever the frame's size.
        draw(*right, MakeRef<BSplinePolyLine>());
        right->FindInput("SoftEdge")->SetValue(Number(8.0), TimeNone, Input::ReplaceAll);
        QCOMPARE(covered(), std::string("110"));
    }

    void basesOfAnotherSizeAreStretched()
    {
        const auto base = Picture(8, 4, [](int x, int) {
            return Rgba{0, 0, 0, x < 4 ? 1.0f : 0.0f};
        });
        const MaskBase mask(base, MaskCombine::Subtract, true);
        Image::Format format;
        format.displayWindow = format.dataWindow = {0, 0, 16, 8};
        std::vector<float> row(16, 0.0f);
        row[2] = 1.0f;
        mask.Join(format, 0, 3, row.data(), 16);
        QCOMPARE(row[1], 1.0f);
        QCOMPARE(row[2], 0.0f);
        QCOMPARE(row[7], 0.75f); // between two pixels of the base
        QCOMPARE(row[9], 0.0f);
        const MxRect covered = mask.Covered(format, {8, 0, 16, 8}); // it can only take away
        QVERIFY(covered.left <= 0 && covered.right >= 9);
    }

    void masksLimitOtherTools()
    {
        // A gradient, graded in the left half alone, where the mask is.
        MarloxDoc document;
        Operator* source = document.AddTool("ColorGradient");
        Operator* mask = document.AddTool("PolygonMask");
        draw(*mask, rectangle(0.5, 2.0, {0.25, 0.5}));
        mask->FindInput("Apply")->SetValue(Number(1.0), TimeNone);
        for (const char* type : {"BrightnessContrast", "Blur"}) {
            Operator* tool = document.AddTool(type);
            QVERIFY(tool->FindInput("Input")->Connect(source));
            QVERIFY(tool->FindInput("EffectMask")->Connect(mask));
            if (Input* gain = tool->FindInput("Gain"))
                gain->SetValue(Number(3.0), TimeNone);
            else
                tool->FindInput("XSize")->SetValue(Number(300.0), TimeNone);
            const auto rendered = RenderJob::Take(document, 0.0, 0.25, tool)->Run();
            const auto plain = RenderJob::Take(document, 0.0, 0.25, source)->Run();
            QVERIFY2(rendered.image, qPrintable(rendered.error));
            QCOMPARE(At(*rendered.image, 300, 100), At(*plain.image, 300, 100));
            QVERIFY(!isNear(At(*rendered.image, 130, 100), At(*plain.image, 130, 100), 1e-3f));
        }
    }

    void overlaysFindTheirInputs()
    {
        for (const char* type : {"PolygonMask", "BSplineMask"}) {
            Bench bench(type);
            int found = 0;
            const TagList& tags = bench.Tool().FindInput("Polyline")->Attributes();
            for (const TagPair* pair = tags.First(); pair; pair = tags.Next(pair)) {
                if (TypeOfTag(u32(pair->tag)) != TagType::InputID)
                    continue;
                ++found;
                QVERIFY2(bench.Tool().FindInput(pair->value.text), pair->value.text);
            }
            QCOMPARE(found, 4);
        }
    }
};

QTEST_GUILESS_MAIN(MaskToolsTest)
#include "MaskToolsTest.moc"
