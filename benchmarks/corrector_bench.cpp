// The colour corrector on 1920 x 1080 pixels, from a picture to a new one: on one thread and on all
// cores, the master's wheel alone and with all ranges and suppressions; beside a plain copy of the
// picture into another that is there already.

#include "system/document/MarloxDoc.h"
#include "workbench/tools/Tools.h"

#include <cstring>

#include <benchmark/benchmark.h>

using namespace Marlox;

namespace {

enum class Amount { Wheel, Everything };

/// A document with a corrector that has something to do.
class Bench {
public:
    explicit Bench(Amount amount)
    {
        static const bool registered = (RegisterTools(), true);
        tool_ = registered ? document_.AddTool("ColorCorrector") : nullptr;
        Set("MasterHue", 0.1);
        Set("MasterSaturation", 1.3);
        if (amount == Amount::Wheel)
            return;
        for (const char* range : {"Master", "Shadows", "Midtones", "Highlights"}) {
            Set((std::string(range) + "TintLength").c_str(), 0.2);
            Set((std::string(range) + "KeepGreen").c_str(), 0.5);
        }
    }
    std::unique_ptr<ToolProcess> Process() const { return tool_->Prepare(0.0); }

private:
    void Set(const char* input, double value)
    {
        tool_->FindInput(input)->SetValue(Number(value), TimeNone, Input::ReplaceAll);
    }

    MarloxDoc document_;
    Operator* tool_ = nullptr;
};

Ref<Image> Picture()
{
    Image::Format format;
    format.dataWindow = format.displayWindow = {0, 0, 1920, 1080};
    auto image = MakeRef<Image>(format);
    for (int y = 0; y < image->Height(); ++y) {
        for (int x = 0; x < image->Width(); ++x) {
            float* pixel = image->Row(y) + std::ptrdiff_t(x) * 4;
            pixel[0] = float((x * 7 + y) % 1000) / 500.0f;
            pixel[1] = float(x) / 1920.0f;
            pixel[2] = float(y) / 1080.0f;
            pixel[3] = 1.0f;
        }
    }
    return image;
}

void CountPixels(benchmark::State& state, const Image& image)
{
    const double pixels = double(image.Width()) * image.Height();
    state.counters["Mpixel/s"] =
        benchmark::Counter(pixels * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
}

void Correct(benchmark::State& state, Amount amount, bool isAlone)
{
    const Bench bench(amount);
    const Ref<Image> image = Picture();
    for (auto _ : state) {
        RenderContext context;
        QString error;
        Ref<Image> result;
        const auto run = [&] { result = bench.Process()->Run(image, context, error); };
        if (isAlone)
            context.ForRows(1, [&](int, int) { run(); }); // what runs within stays on its core
        else
            run();
        if (!result || result == image)
            return state.SkipWithError("nothing was corrected");
    }
    CountPixels(state, *image);
}

void Copy(benchmark::State& state)
{
    const Ref<Image> image = Picture();
    const auto copy = MakeRef<Image>(image->GetFormat());
    const std::size_t bytes = std::size_t(image->Width()) * image->Height() * 4 * sizeof(float);
    for (auto _ : state) {
        std::memcpy(copy->Row(0), image->Row(0), bytes);
        benchmark::DoNotOptimize(copy->Row(0));
        benchmark::ClobberMemory();
    }
    CountPixels(state, *image);
}

} // namespace

BENCHMARK_CAPTURE(Correct, wheel, Amount::Wheel, true)->Name("corrector/wheel/one")->UseRealTime();
BENCHMARK_CAPTURE(Correct, wheels, Amount::Wheel, false)
    ->Name("corrector/wheel/all")
    ->UseRealTime();
BENCHMARK_CAPTURE(Correct, every, Amount::Everything, true)
    ->Name("corrector/everything/one")
    ->UseRealTime();
BENCHMARK_CAPTURE(Correct, everys, Amount::Everything, false)
    ->Name("corrector/everything/all")
    ->UseRealTime();
BENCHMARK(Copy)->Name("corrector/copy")->UseRealTime();

BENCHMARK_MAIN();
