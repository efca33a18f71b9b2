#include "script/FFI.h"
#include "system/base/Registry.h"

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <string>

#include <QApplication>

using namespace Marlox;

namespace {

/// dlopen alone; the unloading between is not measured.
void load(benchmark::State& state, const char* path)
{
    for (auto _ : state) {
        void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        state.PauseTiming();
        if (!library) {
            state.SkipWithError(dlerror());
            return;
        }
        dlclose(library);
        if (dlopen(path, RTLD_NOW | RTLD_NOLOAD)) {
            state.SkipWithError("the library stays loaded");
            return;
        }
        state.ResumeTiming();
    }
}

constexpr const char* controls = MARLOX_BINARY_DIR "/lib/marloxcontrols.so";

void LoadAndUnloadControls(benchmark::State& state)
{
    for (auto _ : state)
        dlclose(dlopen(controls, RTLD_NOW | RTLD_LOCAL));
}

/// Through the registry, with the library loaded: what opening an inspector pays for each control.
void CreateControl(benchmark::State& state)
{
    void* library = dlopen(controls, RTLD_NOW | RTLD_LOCAL);
    const MxID id("PointControl");
    for (auto _ : state) {
        Object* made = ClassRegistry::Global().Create(id);
        if (!made) {
            state.SkipWithError("no such class");
            break;
        }
        made->DecRef();
    }
    dlclose(library);
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv); // a host has Qt loaded long before
    FFIType::First();                     // and the script library
    benchmark::RegisterBenchmark("load/controls", load, controls);
    for (const char* peer : {"empty-library", "classes", "unregistered"}) {
        const std::string path = std::string(MARLOX_BINARY_DIR "/benchmarks/bench-") + peer + ".so";
        benchmark::RegisterBenchmark(
            (std::string("load/") + peer).c_str(),
            [path](benchmark::State& state) { load(state, path.c_str()); });
    }
    benchmark::RegisterBenchmark("load/controls-and-unload", LoadAndUnloadControls);
    benchmark::RegisterBenchmark("load/create-control", CreateControl);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
