#pragma once

#include "system/evaluation/Process.h"

#include <memory>
#include <vector>

namespace Marlox {

class MarloxDoc;
class Operator;
class RenderCache;

/// What one render of a document gave.
struct RenderResult {
    Ref<Image> image; // null on failure and when there is no tool to render
    QString error;    // empty on success; names the tool and what it could not do
    double time = 0.0;
    bool proxy = false;    // rendered at reduced resolution
    bool rendered = false; // false: all of it was kept from earlier renders
    u64 serial = 0;        // counts the requests
    bool cancelled = false;
};

/// The processes behind one tool's output, taken out of a document: independent of it from then on.
class MARLOXSYSTEM_EXPORT RenderJob {
public:
    RenderJob();
    ~RenderJob();

    /// What `last` (null: the last tool) needs, following the flow and the connections, without the
    /// disabled tools. Faults met here (a loop, a tool that fails to prepare) become the error of
    /// Run. User-interface thread.
    static std::unique_ptr<RenderJob> Take(const MarloxDoc& document, double time, double scale,
                                           const Operator* last = nullptr);
    /// Runs to the end or until cancelled, on the calling thread and the cores it borrows, with
    /// results of earlier jobs from `cache` and into it. Once only.
    RenderResult Run(RenderCache* cache = nullptr);
    RenderContext& Context() { return context_; }
    /// What the result is kept by in a cache; empty: it never is.
    std::string Key() const;
    // For progress; thread-safe.
    QString CurrentToolName() const;
    double Progress() const; // 0 to 1, over all tools

private:
    class Builder;

    struct Feed {
        MxID input;
        int step; // an earlier one
    };
    /// One tool.
    struct Step {
        QString toolName;
        std::unique_ptr<ToolProcess> process;
        bool hasMainInput = false;
        MxID maskInput; // connected; empty: none
        std::vector<Feed> feeds;
        std::string key; // of the whole chain up to here; empty: not kept
    };
    using Images = std::vector<Ref<Image>>; // by step

    std::vector<bool> Plan(RenderCache* cache, Images& images);
    Ref<Image> RunStep(Step& step, const Images& images, QString& error);
    Ref<Image> RunProcess(Step& step, const Images& images, QString& error);

    RenderContext context_;
    std::vector<Step> steps_; // each behind its feeds
    QString error_;
    std::atomic<int> current_{0};
    std::atomic<int> done_{0};
    std::atomic<int> planned_{0};
};

} // namespace Marlox
