#pragma once

#include "system/values/Image.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include <QString>

namespace Marlox {

/// What a running process may ask and must tell. Thread-safe.
class MARLOXSYSTEM_EXPORT RenderContext {
public:
    double time = 0.0;
    /// Pixels for each pixel at full resolution: 1, or below it while a proxy is wanted. Sizes in
    /// pixels (a blur's radius) are multiplied by the input image's Format::scale.
    double scale = 1.0;

    bool IsCancelled() const { return cancelled_.load(std::memory_order_relaxed); }
    void Cancel() { cancelled_ = true; }
    /// 0 to 1, for the tool being processed.
    void SetProgress(double fraction) { progress_ = fraction; }
    double Progress() const { return progress_.load(std::memory_order_relaxed); }

    /// Runs `body(first, last)` for pieces of [0, count) on all cores and waits; skips what is left
    /// once the render is cancelled. Reports progress.
    void ForRows(int count, const std::function<void(int first, int last)>& body);

private:
    std::atomic<bool> cancelled_{false};
    std::atomic<double> progress_{0.0};
};

/// One tool's work in one render, with its values inside. Runs on a render thread; touches no host
/// object but images.
class MARLOXSYSTEM_EXPORT ToolProcess {
public:
    virtual ~ToolProcess();
    /// The output image from the upstream image (null for a source). Null and `error`, naming the
    /// file or value, on failure; null without an error when cancelled.
    virtual Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) = 0;
    /// Equal keys mean equal output for equal upstream images: the renderer keeps the result. Empty:
    /// never kept.
    virtual std::string CacheKey() const { return {}; }
};

} // namespace Marlox
