#pragma once

#include "system/values/Image.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QString>

namespace Marlox {

/// The calling thread's work is behind the interface's from then on: with all cores busy, a drag is
/// painted first. For threads that do nothing else.
MARLOXSYSTEM_EXPORT void WorkBehindInterface();

/// What a running process may ask and must tell. Thread-safe.
class MARLOXSYSTEM_EXPORT RenderContext {
public:
    double time = 0.0;
    /// Pixels for each pixel at full resolution: 1, or below it while a proxy is wanted. Sizes in
    /// pixels (a blur's radius) are multiplied by the input image's Format::scale.
    double scale = 1.0;

    bool IsCancelled() const { return cancelled_.load(std::memory_order_relaxed); }
    void Cancel() { cancelled_ = true; }
    /// 0 to 1, for the part of the tool being processed that SetPart told.
    void SetProgress(double fraction) { progress_ = from_ + (to_ - from_) * fraction; }
    /// The part of the tool's work that comes next, within 0 to 1: a process that goes over the
    /// rows twice says (0, 0.5) before the first and (0.5, 1) before the second. The whole unless
    /// told.
    void SetPart(double from, double to)
    {
        from_ = from;
        to_ = to;
        progress_ = from;
    }
    double Progress() const { return progress_.load(std::memory_order_relaxed); }

    /// Runs `body(first, last)` for pieces of [0, count) on all cores and waits; skips what is left
    /// once the render is cancelled. Reports progress. Called from within a body it runs there, on
    /// that core. What a body throws reaches the caller.
    void ForRows(int count, const std::function<void(int first, int last)>& body);

private:
    std::atomic<bool> cancelled_{false};
    std::atomic<double> progress_{0.0};
    std::atomic<double> from_{0.0};
    std::atomic<double> to_{1.0};
};

/// One tool's work in one render, with its values inside. Runs on a render thread; touches no host
/// object but images. An exception that leaves Run becomes the render's error.
class MARLOXSYSTEM_EXPORT ToolProcess {
public:
    virtual ~ToolProcess();
    /// The output image from the upstream image (null for a source). Null and `error`, naming the
    /// file or value, on failure; null without an error when cancelled.
    virtual Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) = 0;
    /// Equal keys of one tool class mean equal output for equal upstream images at equal scale: the
    /// renderer keeps the result. A process that uses the time must have it in the key. Empty:
    /// never kept.
    virtual std::string CacheKey() const { return {}; }
    /// Whether a tool with a main image input can't do without it: with nothing connected Run is
    /// not called, and the user is told.
    virtual bool NeedsUpstream() const { return true; }

    /// While it runs: the image connected to a further image input of the tool; null if there is
    /// none.
    Ref<Image> Upstream(const MxID& input) const;
    void SetUpstream(const MxID& input, Ref<Image> image); // for who runs it

private:
    std::vector<std::pair<MxID, Ref<Image>>> upstream_;
};

} // namespace Marlox
