// An inspector page of 200 slider controls against a page of 200 rows of Qt's own widgets: opening,
// and following a change of time in which every value becomes another. The latter too for a colour
// of eight channels. All stand in a shown window of the offscreen platform, in the product's look.
// Besides what a page pays for each control.

#include "script/ScriptSystem.h"
#include "system/base/HostClassIds.h"
#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "system/resources/LookStyle.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSlider>

using namespace Marlox;

namespace {

constexpr int sliders = 200;
constexpr int channels = 8;           // of a colour
constexpr QSize panel(400, 900);      // what is seen of a page, as in the workbench
constexpr int seenRows = 25;          // at least
constexpr QSize wholePage(400, 7200); // room for all rows
constexpr double sliderTicks = 1000.0;

/// The value of a row: another one at time 0 than at time 1, and in each row.
double ValueAt(int row, double time)
{
    return (row + 1) / (sliders + 2.0) * (time > 0.0 ? 0.7 : 1.0);
}

// Ours -------------------------------------------------------------------------------------------

class NoProcess : public ToolProcess {
public:
    Ref<Image> Run(const Ref<Image>& upstream, RenderContext&, QString&) override
    {
        return upstream;
    }
};

/// A tool with animated numbers: each with a slider, or all the channels of one colour.
template <int rows, bool isColor>
class NumbersTool : public Operator {
public:
    explicit NumbersTool(const Registry* record) : Operator(record)
    {
        for (int row = 0; row < rows; ++row) {
            const std::string name = "Value " + std::to_string(row);
            TagList tags({{IAS_Name, name.c_str()},
                          {IAS_Control, isColor ? "ColorControl" : CLSID_InputControl_Slider},
                          {IAD_Minimum, 0.0},
                          {IAD_Maximum, 1.0},
                          {IAD_Default, 0.5}});
            if (isColor)
                tags.Set(IA_Channel, row);
            if (isColor && row > 0)
                tags.Set(IAS_SharedWith, "value0");
            Input& input = AddInput(MxID(("value" + std::to_string(row)).c_str()), tags);
            for (const double time : {0.0, 1.0}) {
                input.AddKey(time);
                input.SetValue(*MakeRef<Number>(ValueAt(row, time)), time);
            }
        }
    }
    std::size_t SizeOf() const override { return sizeof(*this); }
    std::unique_ptr<ToolProcess> Prepare(double) const override
    {
        return std::make_unique<NoProcess>();
    }
};

template <class Tool>
Object* MakeTool(const Registry* record, const ScriptVal&, const TagList&)
{
    return new Tool(record);
}

template <class Tool>
const TagPair toolTags[] = {
    {REG_Kind, int(ClassKind::Tool)}, {REG_Create, CreateFunction(MakeTool<Tool>)}, {}};
constexpr char sliderTool[] = "BenchSliderTool";
constexpr char colorTool[] = "BenchColorTool";
const Registry sliderRecord(sliderTool, toolTags<NumbersTool<sliders, false>>);
const Registry colorRecord(colorTool, toolTags<NumbersTool<channels, true>>);

/// The page stays in its panel, as in the workbench, and gets a tool to show.
template <const char* tool, int rowCount>
class OurPage {
public:
    static constexpr int rows = rowCount;

    explicit OurPage(QScrollArea& panel) : tool_(document_.AddTool(tool)), page_(new ControlWnd)
    {
        panel.setWidget(page_);
    }
    void Open() { page_->SetOperator(tool_); }
    void Close() { page_->SetOperator(nullptr); }
    void SetTime(double time) { document_.SetCurrentTime(time); }

private:
    MarloxDoc document_;
    Operator* tool_;
    ControlWnd* page_;
};

// The peer ---------------------------------------------------------------------------------------

template <int rowCount>
class PlainPage {
public:
    static constexpr int rows = rowCount;

    explicit PlainPage(QScrollArea& panel) : panel_(panel) {}
    void Open()
    {
        auto* page = new QWidget;
        auto* grid = new QGridLayout(page);
        grid->setContentsMargins(8, 4, 8, 8);
        grid->setVerticalSpacing(4);
        for (int row = 0; row < rows; ++row) {
            auto* slider = new QSlider(Qt::Horizontal);
            slider->setRange(0, int(sliderTicks));
            auto* edit = new QDoubleSpinBox;
            edit->setRange(0.0, 1.0);
            edit->setDecimals(4);
            edit->setFixedWidth(64);
            edit->setButtonSymbols(QAbstractSpinBox::NoButtons);
            const QString name = QStringLiteral("Value %1").arg(row);
            auto* label = new QLabel(name);
            label->setFixedWidth(110);
            label->setBuddy(slider);
            slider->setAccessibleName(name);
            edit->setAccessibleName(name);
            QObject::connect(slider, &QSlider::valueChanged, edit,
                             [edit](int ticks) { edit->setValue(ticks / sliderTicks); });
            QObject::connect(
                edit, qOverload<double>(&QDoubleSpinBox::valueChanged), slider,
                [slider](double value) { slider->setValue(qRound(value * sliderTicks)); });
            grid->addWidget(label, row, 0);
            grid->addWidget(slider, row, 1);
            grid->addWidget(edit, row, 2);
            rows_[row] = {slider, edit};
        }
        SetTime(0.0);
        panel_.setWidget(page);
    }
    void Close() { delete panel_.takeWidget(); }
    void SetTime(double time)
    {
        for (int row = 0; row < rows; ++row) {
            const auto& [slider, edit] = rows_[row];
            const QSignalBlocker quietSlider(slider);
            const QSignalBlocker quietEdit(edit);
            slider->setValue(qRound(ValueAt(row, time) * sliderTicks));
            edit->setValue(ValueAt(row, time));
        }
    }

private:
    QScrollArea& panel_;
    std::pair<QSlider*, QDoubleSpinBox*> rows_[rows];
};

// The benchmarks ---------------------------------------------------------------------------------

/// A shown panel, as the workbench's inspector has it.
class Panel : public QScrollArea {
public:
    explicit Panel(QSize size)
    {
        setFrameShape(NoFrame);
        setWidgetResizable(true);
        resize(size);
        show();
        Settle();
    }
    static void Settle()
    {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
    }
};

/// Counts the widgets that get a paint event.
class PaintCount : public QObject {
public:
    PaintCount() { qApp->installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint;
        return false;
    }
};

/// Does it once, and refuses to measure what leaves out the painting.
template <class Work>
bool Paints(benchmark::State& state, int atLeast, const Work& work)
{
    const PaintCount count;
    work();
    if (count.paints < atLeast)
        state.SkipWithError("not every slider and field is painted");
    return count.paints >= atLeast;
}

template <class Page>
void Open(benchmark::State& state)
{
    Panel area(panel);
    Page page(area);
    const auto open = [&page] {
        page.Open();
        QCoreApplication::sendPostedEvents(); // until it stands and is painted
        QCoreApplication::sendPostedEvents();
    };
    if (!Paints(state, 2 * seenRows, open))
        return;
    page.Close();
    Panel::Settle();
    for (auto _ : state) {
        open();
        state.PauseTiming();
        page.Close();
        Panel::Settle();
        state.ResumeTiming();
    }
}

template <class Page>
void Redisplay(benchmark::State& state)
{
    Panel area(wholePage);
    Page page(area);
    page.Open();
    Panel::Settle();
    double time = 0.0;
    const auto change = [&page, &time] {
        page.SetTime(time = 1.0 - time);
        QCoreApplication::sendPostedEvents();
    };
    if (!Paints(state, 2 * Page::rows, change))
        return;
    for (auto _ : state)
        change();
}

void CreateControl(benchmark::State& state)
{
    const TagList tags({{IAS_Name, "Gain"}, {IAD_Maximum, 4.0}, {IAD_Default, 1.0}});
    for (auto _ : state)
        ClassRegistry::Global().Create(CLSID_InputControl_Slider, ScriptVal(), tags)->DecRef();
}

void TenTags(benchmark::State& state)
{
    const u32 integers[] = {IA_Integer, IC_KnobStyle, IC_Time};
    const u32 doubles[] = {IAD_Minimum, IAD_Maximum, IAD_LowScale, IAD_HighScale, IAD_Default};
    const u32 strings[] = {IAS_Name, IAS_Help};
    for (auto _ : state) {
        TagList tags;
        for (const u32 tag : integers)
            tags.Add(tag, 1);
        for (const u32 tag : doubles)
            tags.Add(tag, 2.0);
        for (const u32 tag : strings)
            tags.Add(tag, "text");
        int64 sum = 0;
        for (const u32 tag : integers)
            sum += tags.GetLong(tag);
        for (const u32 tag : doubles)
            sum += int64(tags.GetDouble(tag));
        for (const u32 tag : strings)
            sum += *tags.GetString(tag);
        benchmark::DoNotOptimize(sum);
    }
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    ApplyLook(application);
    InstallScripting();
    if (!dlopen(MARLOX_BINARY_DIR "/lib/marloxcontrols.so", RTLD_NOW | RTLD_LOCAL)) {
        std::fprintf(stderr, "%s\n", dlerror());
        return EXIT_FAILURE;
    }
    using OurSliders = OurPage<sliderTool, sliders>;
    using OurColor = OurPage<colorTool, channels>;
    benchmark::RegisterBenchmark("inspector/open", Open<OurSliders>);
    benchmark::RegisterBenchmark("inspector/open-qt-rows", Open<PlainPage<sliders>>);
    benchmark::RegisterBenchmark("inspector/redisplay", Redisplay<OurSliders>);
    benchmark::RegisterBenchmark("inspector/redisplay-qt-rows", Redisplay<PlainPage<sliders>>);
    benchmark::RegisterBenchmark("inspector/redisplay-color", Redisplay<OurColor>);
    benchmark::RegisterBenchmark("inspector/redisplay-color-qt-rows",
                                 Redisplay<PlainPage<channels>>);
    benchmark::RegisterBenchmark("inspector/create-slider", CreateControl);
    benchmark::RegisterBenchmark("taglist/ten-tags", TenTags);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return EXIT_SUCCESS;
}
