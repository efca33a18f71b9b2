#include "plugin/OverlayRig.h"
#include "system/values/Image.h"

#include <cmath>
#include <limits>

#include <QTest>
#include <QUndoStack>

using namespace Marlox;

namespace {

constexpr u32 normalisedTag = 0x10058000;
constexpr u32 imageIdTag = 0x80058000;
constexpr u32 imagePointerTag = 0x60058000;

/// Inputs of a crop: for each an id and an overlay index; the first makes the overlay.
std::vector<RigInput> Inputs(std::initializer_list<std::pair<const char*, int>> values,
                             std::vector<TagPair> more = {})
{
    std::vector<RigInput> inputs;
    for (const auto& [id, index] : values) {
        std::vector<TagPair> tags{{IA_OverlayIndex, index}};
        if (inputs.empty()) {
            tags.push_back({IAS_Overlay, "CropControl"});
            tags.insert(tags.end(), more.begin(), more.end());
        } else {
            tags.push_back({IAS_OverlayWith, inputs.front().id});
        }
        inputs.push_back({id, CLSID_DataType_Number, tags});
    }
    return inputs;
}

std::vector<RigInput> Edges(std::vector<TagPair> more = {})
{
    return Inputs({{"x0", 0}, {"y0", 1}, {"x1", 2}, {"y1", 3}}, std::move(more));
}

std::vector<RigInput> Sizes()
{
    return Inputs({{"x0", 0}, {"y0", 1}, {"w", 4}, {"h", 5}});
}

/// A rig whose crop has these values, in the order of its inputs.
struct CropRig : OverlayRig {
    CropRig(std::vector<RigInput> inputs, std::vector<double> values)
        : OverlayRig(std::move(inputs))
    {
        for (std::size_t i = 0; i < values.size(); ++i)
            Set(tool->Inputs()[i]->GetID().c_str(), values[i]);
        document->Undo().Clear();
        TakeRedraws();
    }
    void Set(const char* id, double value) const { InputOf(id).SetValue(Number(value), 0.0); }
    PreviewControl& Crop() const { return OverlayOf("x0"); }
    QList<double> Values() const
    {
        QList<double> values;
        for (const Ref<Input>& input : tool->Inputs()) {
            if (!input->IsImage())
                values.append(std::round(input->GetNumber(0.0) * 1e6) / 1e6);
        }
        return values;
    }
    int UndoDepth() const { return document->Undo().Depth(); }
};

/// Edges 10 % within the picture: view x 140 and 460, y 70 and 230.
const std::vector<double> within{40, 20, 360, 180};
const std::vector<double> withinBySize{40, 20, 320, 160};

Image::Format FormatOf(int width, int height, double scale = 1.0)
{
    Image::Format format;
    format.displayWindow = {0, 0, width, height};
    format.dataWindow = {0, 0, 1, 1};
    format.scale = scale;
    return format;
}

} // namespace

class OverlayCropTest : public QObject {
    Q_OBJECT
private slots:
    void isDrawnInEachState();
    void grabsEdges_data();
    void grabsEdges();
    void dragsByEdgesOrSizes_data();
    void dragsByEdgesOrSizes();
    void oneEntryForEachDrag();
    void endsWithoutRelease();
    void tellsWhatIsUnderThePointer();
    void redrawsForRealChanges();
    void takesTheSizeOfAnImage();
    void survivesWildValues();
};

void OverlayCropTest::isDrawnInEachState()
{
    const CropRig rig(Edges(), within);
    QVERIFY2(rig.library.IsLoaded(), rig.library.Error().constData());
    const std::string idle = "normal dashed lines: (-300, 70) (140, 70) (460, 70) (900, 70)\n"
                             "normal dashed lines: (460, -150) (460, 70) (460, 230) (460, 450)\n"
                             "normal dashed lines: (900, 230) (460, 230) (140, 230) (-300, 230)\n"
                             "normal dashed lines: (140, 450) (140, 230) (140, 70) (140, -150)\n"
                             "normal lines: (140, 70) (460, 70)\n"
                             "normal lines: (460, 70) (460, 230)\n"
                             "normal lines: (460, 230) (140, 230)\n"
                             "normal lines: (140, 230) (140, 70)\n";
    QCOMPARE(rig.Drawn(), idle);
    rig.stage->Move({458, 150}, 0);
    QCOMPARE(rig.Drawn(),
             std::string("normal dashed lines: (-300, 70) (140, 70) (460, 70) (900, 70)\n"
                         "highlight dashed lines: (460, -150) (460, 70) (460, 230) (460, 450)\n"
                         "normal dashed lines: (900, 230) (460, 230) (140, 230) (-300, 230)\n"
                         "normal dashed lines: (140, 450) (140, 230) (140, 70) (140, -150)\n"
                         "normal lines: (140, 70) (460, 70)\n"
                         "highlight lines: (460, 70) (460, 230)\n"
                         "normal lines: (460, 230) (140, 230)\n"
                         "normal lines: (140, 230) (140, 70)\n"));
    // A corner, dragged beyond the picture: the guides follow.
    rig.stage->Press({140, 230}, 0);
    rig.stage->Move({60, 270}, 0);
    const std::string dragged =
        "normal dashed lines: (-340, 70) (60, 70) (460, 70) (900, 70)\n"
        "normal dashed lines: (460, -150) (460, 70) (460, 270) (460, 470)\n"
        "highlight dashed lines: (900, 270) (460, 270) (60, 270) (-340, 270)\n"
        "highlight dashed lines: (60, 470) (60, 270) (60, 70) (60, -150)\n"
        "normal lines: (60, 70) (460, 70)\n"
        "normal lines: (460, 70) (460, 270)\n"
        "highlight lines: (460, 270) (60, 270)\n"
        "highlight lines: (60, 270) (60, 70)\n";
    QCOMPARE(rig.Drawn(), dragged);
    rig.InputOf("x0").SetAttrsTagList(TagList({{PC_HideWhileDragging, true}}));
    QCOMPARE(rig.Drawn(), std::string());
    rig.stage->CancelDrag();
    rig.stage->Leave();
    QCOMPARE(rig.Drawn(), idle);
    rig.stage->SetShown(false);
    QCOMPARE(rig.Drawn(), std::string());
}

void OverlayCropTest::grabsEdges_data()
{
    QTest::addColumn<QList<double>>("values"); // left, bottom, right, top
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<QList<double>>("after"); // a move by (20, 10)
    const QList<double> all{40, 20, 360, 180};
    const auto row = [](const char* name, QList<double> values, QPoint at, QList<double> after) {
        QTest::newRow(name) << values << at << after;
    };
    row("inside", all, {300, 150}, all);
    row("left", all, {140, 150}, {60, 20, 360, 180});
    row("left, at last", all, {145, 150}, {65, 20, 360, 180});
    row("left, too far", all, {146, 150}, all);
    row("left, far out on its guide", all, {140, 2000}, {60, 20, 360, 180});
    row("right, on its guide", all, {461, -300}, {40, 20, 381, 180});
    row("bottom, on its guide", all, {-900, 70}, {40, 30, 360, 180});
    row("top", all, {300, 229}, {40, 20, 360, 189});
    row("corner of left and top", all, {137, 233}, {57, 20, 360, 193});
    row("corner of right and bottom", all, {463, 70}, {40, 30, 383, 180});
    row("both x edges", {200, 20, 210, 180}, {305, 150}, {225, 20, 210, 180});
    row("both y edges", {40, 100, 360, 105}, {200, 154}, {40, 114, 360, 105});
    row("crossed", {300, 20, 100, 180}, {200, 150}, {300, 20, 120, 180});
    row("no width or height, x", {200, 100, 200, 100}, {303, 190}, {223, 100, 200, 100});
    row("no width or height, y", {200, 100, 200, 100}, {180, 147}, {200, 107, 200, 100});
}

void OverlayCropTest::grabsEdges()
{
    QFETCH(QList<double>, values);
    QFETCH(QPoint, at);
    QFETCH(QList<double>, after);
    const CropRig rig(Edges(), {values.begin(), values.end()});
    const MxPoint from = ToMxPoint(at);
    rig.Drag({from, from + MxPoint(20, 10)});
    QCOMPARE(rig.Values(), after);
}

void OverlayCropTest::dragsByEdgesOrSizes_data()
{
    QTest::addColumn<bool>("sized");
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<QList<double>>("after");
    const auto row = [](const char* name, bool sized, QPoint from, QPoint to, QList<double> after) {
        QTest::newRow(name) << sized << from << to << after;
    };
    row("right edge over the left", false, {460, 150}, {120, 150}, {40, 20, 20, 180});
    row("left keeps right", true, {140, 150}, {240, 150}, {140, 20, 220, 160});
    row("left beyond right", true, {140, 150}, {480, 150}, {380, 20, 0, 160});
    row("right", true, {460, 150}, {300, 150}, {40, 20, 160, 160});
    row("right over the left", true, {460, 150}, {120, 150}, {40, 20, 0, 160});
    row("bottom keeps top", true, {300, 70}, {300, 100}, {40, 50, 320, 130});
    row("top below the bottom", true, {300, 230}, {300, 60}, {40, 20, 320, 0});
    row("corner", true, {140, 230}, {130, 240}, {30, 20, 330, 170});
}

void OverlayCropTest::dragsByEdgesOrSizes()
{
    QFETCH(bool, sized);
    QFETCH(QPoint, from);
    QFETCH(QPoint, to);
    QFETCH(QList<double>, after);
    const CropRig rig(sized ? Sizes() : Edges(), sized ? withinBySize : within);
    rig.Drag({ToMxPoint(from), ToMxPoint(to)});
    QCOMPARE(rig.Values(), after);
}

void OverlayCropTest::oneEntryForEachDrag()
{
    const CropRig rig(Sizes(), withinBySize);
    rig.stage->Press({140, 70}, 0);
    QCOMPARE(rig.UndoDepth(), 0);
    rig.stage->Move({150, 80}, 0);
    QCOMPARE(rig.UndoDepth(), 1);
    rig.stage->Move({160, 90}, 0);
    rig.stage->Release({160, 90}, 0);
    QCOMPARE(rig.Values(), (QList<double>{60, 40, 300, 140}));
    QCOMPARE(rig.UndoEntries(), 1);
    QCOMPARE(rig.UndoText(), QString("Adjust Crop"));
    rig.document->Undo().Undo();
    QCOMPARE(rig.Values(), (QList<double>{40, 20, 320, 160}));
    rig.document->Undo().Redo();

    rig.Drag({{160, 150}, {160, 180}, {160, 200}}); // along the edge
    rig.Drag({{460, 150}, {470, 150}, {460, 150}}); // there and back
    QCOMPARE(rig.UndoEntries(), 1);
    QCOMPARE(rig.UndoDepth(), 0);

    rig.InputOf("x0").SetExpression("time");
    rig.stage->Move({160, 150}, 0);
    QCOMPARE(int(rig.View().cursorShape), int(ViewCursor::Forbidden));
    rig.document->Undo().Clear();
    rig.Drag({{160, 150}, {170, 150}, {180, 150}});
    QCOMPARE(rig.UndoEntries(), 0); // the width stays too
    rig.Drag({{160, 90}, {180, 100}});
    QCOMPARE(rig.Values(), (QList<double>{60, 50, 300, 130}));
    QCOMPARE(rig.UndoEntries(), 1); // of the edge that may be dragged
}

void OverlayCropTest::endsWithoutRelease()
{
    CropRig rig(Edges(), within);
    const auto dragLeft = [&rig] {
        rig.stage->Press({140, 150}, 0);
        rig.stage->Move({170, 150}, 0);
        QCOMPARE(rig.UndoDepth(), 1);
    };
    dragLeft();
    rig.stage->CancelDrag();
    QCOMPARE(rig.Values(), (QList<double>{40, 20, 360, 180}));
    QCOMPARE(rig.UndoEntries(), 0);
    dragLeft();
    rig.Crop().SetInactive(nullptr);
    QCOMPARE(rig.UndoDepth(), 0);
    QCOMPARE(rig.UndoEntries(), 1);
    rig.stage->Move({200, 150}, 0); // it is over
    QCOMPARE(rig.NumberOf("x0"), 70.0);
    rig.stage->Release({200, 150}, 0);

    // Pressed again without a release, away from all edges.
    PreviewInfo& view = rig.View();
    view.cursorX = 0.175;
    view.cursorY = 0.5;
    QCOMPARE(rig.Crop().ControlDown(&view, {170, 150}, nullptr), DragType::Dragged);
    view.cursorX = 0.2;
    rig.Crop().ControlMove(&view, {180, 150}, nullptr);
    QCOMPARE(rig.UndoDepth(), 1);
    view.cursorX = 0.5;
    QCOMPARE(rig.Crop().ControlDown(&view, {300, 150}, nullptr), DragType::None);
    QCOMPARE(rig.UndoDepth(), 0);

    rig.document->Undo().Clear();
    rig.stage->Press({460, 150}, 0);
    rig.stage->Move({430, 150}, 0);
    rig.document->RemoveTool(*rig.tool);
    QCOMPARE(rig.UndoDepth(), 0);
    QCOMPARE(rig.document->Undo().Stack().text(0), QString("Adjust Crop"));
    const int entries = rig.UndoEntries();
    rig.stage->Move({400, 150}, 0);
    rig.stage->Release({400, 150}, 0);
    QCOMPARE(rig.UndoEntries(), entries);
}

void OverlayCropTest::tellsWhatIsUnderThePointer()
{
    struct {
        MxPoint at;
        const char* edge;
        const char* sized;
        ViewCursor cursor;
    } const places[] = {{{140, 150}, "x0", "x0", ViewCursor::MoveX},
                        {{300, 70}, "y0", "y0", ViewCursor::MoveY},
                        {{460, 150}, "x1", "w", ViewCursor::MoveX},
                        {{300, 230}, "y1", "h", ViewCursor::MoveY},
                        {{460, 70}, "x1", "w", ViewCursor::Move}};
    for (const bool sized : {false, true}) {
        CropRig rig(sized ? Sizes() : Edges(), sized ? withinBySize : within);
        for (const auto& place : places) {
            rig.stage->Move(place.at, 0);
            QCOMPARE(rig.stage->Tip(), QString(sized ? place.sized : place.edge));
            QCOMPARE(int(rig.View().cursorShape), int(place.cursor));
        }
        QCOMPARE(rig.View().currentControl, &rig.Crop());
        rig.TakeRedraws();
        rig.stage->Move({461, 71}, 0); // the same corner
        QCOMPARE(rig.TakeRedraws(), 0);
        // Another overlay has the pointer.
        PreviewControl another(nullptr, ScriptVal(), TagList());
        rig.View().hit.control = &another;
        QVERIFY(!rig.Crop().ControlCommand(&rig.View(), CCMD_HitTest, 0, nullptr));
        QCOMPARE(rig.TakeRedraws(), 1);
        QVERIFY(rig.Drawn().find("highlight") == std::string::npos);
        QCOMPARE(rig.Crop().ControlDown(&rig.View(), {461, 71}, nullptr), DragType::None);
        rig.View().hit = {};
        rig.stage->Move({300, 150}, 0);
        QCOMPARE(rig.View().currentControl, nullptr);
        QCOMPARE(int(rig.View().cursorShape), int(ViewCursor::Arrow));
    }
}

void OverlayCropTest::redrawsForRealChanges()
{
    CropRig rig(Edges(), within);
    rig.Set("x0", 40.000009);
    rig.Set("y1", std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(rig.TakeRedraws(), 0);
    rig.Set("x0", 40.00003);
    QVERIFY(rig.TakeRedraws() > 0);

    // With all six, a top edge that comes last leaves a height of the other sign behind.
    const CropRig six(Inputs({{"x0", 0}, {"y0", 1}, {"x1", 2}, {"y1", 3}, {"w", 4}, {"h", 5}}),
                      {40, 20, 360, 180, 320, 160});
    six.Set("y1", 170);
    six.Drag({{300, 70}, {300, 60}});
    QCOMPARE(six.NumberOf("h"), 0.0);
    QCOMPARE(six.NumberOf("y0"), 10.0);
}

void OverlayCropTest::takesTheSizeOfAnImage()
{
    const char* left = "normal lines: (140, 230) (140, 70)\n"; // of the picture in the view
    const char* leftOfImage = "normal lines: (120, 140) (120, 60)\n";
    for (const bool byId : {true, false}) {
        std::vector<RigInput> inputs = Edges({{normalisedTag, false}});
        inputs.push_back({"img", CLSID_DataType_Image, {}});
        CropRig rig(std::move(inputs), within);
        Input& image = rig.InputOf("img");
        PreviewControl& crop = rig.Crop();
        if (byId)
            rig.InputOf("x0").SetAttrsTagList(TagList({{imageIdTag, "img"}}));
        else
            rig.InputOf("x0").SetAttrsTagList(TagList({{imagePointerTag, &image}}));
        QCOMPARE(crop.GetAttrB(normalisedTag, true), false);
        // Without pixels it has no size.
        QVERIFY(rig.Drawn().find(left) != std::string::npos);
        QVERIFY(image.SetValue(Image(FormatOf(200, 100, 0.25)), 0.0));
        QCOMPARE(crop.GetAttr(IMG_Width), 800);
        QVERIFY2(rig.Drawn().find(leftOfImage) != std::string::npos, rig.Drawn().c_str());
        rig.Drag({{120, 100}, {130, 100}});
        rig.stage->Leave();
        QCOMPARE(rig.NumberOf("x0"), 60.0);

        // What the image tells of itself comes first.
        Image telling(FormatOf(200, 100));
        telling.Tags().Add(IMG_Width, 800);
        telling.Tags().Add(IMG_Height, 400);
        telling.Tags().Add(IMGD_PixelAspectX, 2.0);
        QVERIFY(image.SetValue(telling, 0.0));
        QCOMPARE(crop.GetAttr(IMG_Height), 400);
        QCOMPARE(crop.GetAttrD(IMGD_PixelAspectX), 2.0);
        QCOMPARE(crop.GetAttrD(IMGD_PixelAspectY), 1.0);
        rig.Set("x0", 40);
        QVERIFY(rig.Drawn().find(leftOfImage) != std::string::npos);
        QVERIFY(crop.RemoveInput(&image, nullptr));
        QCOMPARE(crop.GetAttr(IMG_Width), -1);
        QVERIFY(rig.Drawn().find(left) != std::string::npos);
    }
    // No size at all: image coordinates.
    const CropRig rig(Edges(), {0.1, 0.1, 0.9, 0.9});
    rig.View().pixelWidth = rig.View().pixelHeight = 0;
    QVERIFY(rig.Crop().GetAttrB(normalisedTag));
    QVERIFY(rig.Drawn().find(left) != std::string::npos);
}

void OverlayCropTest::survivesWildValues()
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const double huge = std::numeric_limits<double>::infinity();
    for (const bool sized : {false, true}) {
        CropRig rig(sized ? Sizes() : Edges(), sized ? withinBySize : within);
        for (const double wild : {notANumber, 1e300, -1e300, huge}) {
            for (const Ref<Input>& input : rig.tool->Inputs()) {
                const double before = input->GetNumber(0.0);
                input->SetValue(Number(wild), 0.0);
                QVERIFY(!rig.Drawn().empty());
                rig.Drag({{140, 70}, {150, 80}, {460, 230}, {140, 70}});
                input->SetValue(Number(before), 0.0);
            }
        }
        QCOMPARE(rig.Drawn().find("nan"), std::string::npos);
        PreviewInfo& view = rig.View();
        for (const double zoom : {1.0 / 64.0, 64.0, 0.0}) {
            view.imageWidth = 400 * zoom;
            view.imageHeight = 200 * zoom;
            rig.Drag({{140, 70}, {150, 80}, {int(100 + 40 * zoom), 60}, {300, 300}});
            QVERIFY(!rig.Drawn().empty());
        }
        // On a picture without extent there is nothing to hold.
        QVERIFY(!rig.stage->Press({100, 50}, 0));
        QCOMPARE(rig.UndoDepth(), 0);
        for (const double value : rig.Values())
            QVERIFY(std::isfinite(value));
    }
}

QTEST_MAIN(OverlayCropTest)
#include "overlay_crop_test.moc"
