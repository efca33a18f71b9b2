#include "script/FFI.h"
#include "system/base/Registry.h"

#include <benchmark/benchmark.h>
#include <dlfcn.h>

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

void LoadControls(benchmark::State& state)
{
    load(state, MARLOX_BINARY_DIR "/lib/marloxcontrols.so");
}

void LoadEmptyLibrary(benchmark::State& state)
{
    load(state, MARLOX_BINARY_DIR "/benchmarks/bench-empty-library.so");
}

void LoadAndUnloadControls(benchmark::State& state)
{
    for (auto _ : state)
        dlclose(dlopen(MARLOX_BINARY_DIR "/lib/marloxcontrols.so", RTLD_NOW | RTLD_LOCAL));
}

/// Through the registry, with the library loaded: what opening an inspector pays for each control.
void CreateControl(benchmark::State& state)
{
    void* library = dlopen(MARLOX_BINARY_DIR "/lib/marloxcontrols.so", RTLD_NOW | RTLD_LOCAL);
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
    benchmark::RegisterBenchmark("load/controls", LoadControls);
    benchmark::RegisterBenchmark("load/empty-library", LoadEmptyLibrary);
    benchmark::RegisterBenchmark("load/controls-and-unload", LoadAndUnloadControls);
    benchmark::RegisterBenchmark("load/create-control", CreateControl);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
