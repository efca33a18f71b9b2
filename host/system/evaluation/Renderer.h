#pragma once

#include "system/evaluation/Process.h"

#include <memory>
#include <vector>

#include <QObject>

namespace Marlox {

class MarloxDoc;
class Operator;

/// What one render of a document gave.
struct RenderResult {
    Ref<Image> image; // null on failure
    QString error;    // empty on success; names the tool and what it could not do
    double time = 0.0;
    bool proxy = false; // rendered at reduced resolution
    u64 serial = 0;     // counts the requests
};

/// A list of processes in flow order, taken out of a document: independent of it from then on.
class MARLOXSYSTEM_EXPORT RenderJob {
public:
    /// The tools up to and with `last` (null: all), without the disabled ones. User-interface thread.
    static std::unique_ptr<RenderJob> Take(const MarloxDoc& document, double time, double scale,
                                           const Operator* last = nullptr);
    /// Runs to the end or until cancelled, on the calling thread and the cores it borrows.
    RenderResult Run();
    RenderContext& Context() { return context_; }
    QString CurrentToolName() const; // thread-safe, for progress

private:
    struct Step {
        QString toolName;
        std::unique_ptr<ToolProcess> process;
    };
    RenderContext context_;
    std::vector<Step> steps_;
    std::atomic<int> current_{0};
};

/// Renders a document off the user-interface thread. The newest request wins: a newer one cancels
/// the running one and replaces the waiting one. While a tool has automatic proxy on, renders are at
/// reduced resolution; after MarloxDoc::SyncRender at full. The interface never waits.
class MARLOXSYSTEM_EXPORT Renderer : public QObject {
    Q_OBJECT
public:
    explicit Renderer(MarloxDoc& document, QObject* parent = nullptr);
    ~Renderer() override; // cancels and joins

    /// The tool whose output is wanted; null: the last one.
    void SetViewedTool(Operator* tool);
    Operator* ViewedTool() const;
    /// Asks for a new render at the document's current time. Requests made in one turn of the event
    /// loop become one.
    void Request();
    void Cancel();
    bool IsBusy() const;
    const RenderResult& LastResult() const;
    /// Resolution divisor while automatic proxy is on (default 4).
    void SetProxyDivisor(int divisor);
    /// Waits, running the event loop, until nothing is left to render; false after `timeout` ms.
    /// For scripts and tests; the interface never calls it.
    bool WaitUntilIdle(int timeout);

signals:
    void Started(quint64 serial);
    void Finished(const Marlox::RenderResult& result); // not for cancelled renders
    /// Sent from half a second on, at most ten times a second; fraction 0 to 1.
    void Progress(const QString& toolName, double fraction);

private:
    class Private;
    std::unique_ptr<Private> d_;
};

} // namespace Marlox

Q_DECLARE_METATYPE(Marlox::RenderResult)
