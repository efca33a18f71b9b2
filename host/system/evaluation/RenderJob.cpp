#include "system/evaluation/RenderJob.h"

#include "system/document/MarloxDoc.h"
#include "system/evaluation/MaskBlend.h"
#include "system/evaluation/RenderCache.h"

#include <algorithm>
#include <exception>
#include <map>
#include <new>

#include <QCoreApplication>
#include <QCryptographicHash>

namespace Marlox {

namespace {

const MxID& mainInputID()
{
    static const MxID id("Input");
    return id;
}

QString tr(const char* text)
{
    return QCoreApplication::translate("Marlox::Render", text);
}

QString named(const QString& toolName, const QString& fault)
{
    return QStringLiteral("%1: %2").arg(toolName, fault);
}

/// Runs `work`; what it throws becomes a text. The exceptions of a tool must not end the program.
template <class Work>
auto guarded(QString& error, Work work) -> decltype(work())
{
    try {
        return work();
    } catch (const std::bad_alloc&) {
        error = tr("there is not enough memory");
    } catch (const std::exception& exception) {
        error = QString::fromLocal8Bit(exception.what());
    } catch (...) {
        error = tr("it failed for an unknown reason");
    }
    return {};
}

/// The tool whose output stands for the output of `tool` (null: of the document, as for a
/// modifier).
Operator* outputTool(const MarloxDoc& document, const Operator* tool)
{
    if (tool && !tool->IsModifier()) {
        if (!tool->IsDisabled())
            return const_cast<Operator*>(tool);
        return tool->ImageInput() ? document.FeedOf(*tool->ImageInput()) : nullptr;
    }
    for (auto at = document.Tools().rbegin(); at != document.Tools().rend(); ++at) {
        if (!(*at)->IsModifier() && (!(*at)->IsDisabled() || (*at)->ImageInput()))
            return outputTool(document, at->Get());
    }
    return nullptr;
}

} // namespace

/// Walks the tools upstream of the wanted one and lists each behind those it needs.
class RenderJob::Builder {
public:
    Builder(RenderJob& job, const MarloxDoc& document) : job_(job), document_(document) {}

    /// The index of the tool's step; -1 after an error.
    int Visit(const Operator& tool)
    {
        const auto [entry, isNew] = visited_.try_emplace(&tool, underWay);
        if (!isNew) {
            if (entry->second == underWay)
                Fail(tool, tr("its image depends on itself; connect it to another tool"));
            return entry->second;
        }
        Step step;
        step.toolName = tool.GetName();
        step.hasMainInput = tool.ImageInput() != nullptr;
        for (const Ref<Input>& input : tool.Inputs()) {
            if (input->IsImage() && !VisitFeed(*input, step))
                return underWay;
        }
        QString fault;
        step.process = guarded(fault, [&] { return tool.Prepare(job_.context_.time); });
        if (!step.process)
            return Fail(tool, fault.isEmpty() ? tr("it could not be prepared") : fault);
        step.key = guarded(fault, [&] { return ChainKey(tool, step); });
        job_.steps_.push_back(std::move(step));
        return visited_[&tool] = int(job_.steps_.size()) - 1;
    }

private:
    static constexpr int underWay = -1;

    bool VisitFeed(const Input& input, Step& step)
    {
        static const MxID maskKind(CLSID_DataType_Mask);
        const Operator* feed = document_.FeedOf(input);
        const int index = feed ? Visit(*feed) : underWay;
        if (!feed)
            return true;
        if (index == underWay)
            return false;
        step.feeds.push_back({input.GetID(), index});
        if (input.GetDataType() == maskKind && step.maskInput.IsEmpty())
            step.maskInput = input.GetID();
        return true;
    }

    int Fail(const Operator& tool, const QString& fault)
    {
        if (job_.error_.isEmpty())
            job_.error_ = named(tool.GetName(), fault);
        return underWay;
    }

    std::string ChainKey(const Operator& tool, const Step& step) const
    {
        const std::string own = step.process->CacheKey();
        if (own.empty())
            return {};
        QCryptographicHash hash(QCryptographicHash::Sha256);
        const auto add = [&hash](const std::string& part) {
            hash.addData(part.c_str(), int(part.size()) + 1); // the 0 keeps parts apart
        };
        add(tool.GetToolType().c_str());
        add(own);
        add(std::to_string(job_.context_.scale));
        for (const Feed& feed : step.feeds) {
            const std::string& upstream = job_.steps_[std::size_t(feed.step)].key;
            if (upstream.empty())
                return {};
            add(feed.input.c_str());
            add(upstream);
        }
        return hash.result().toStdString();
    }

    RenderJob& job_;
    const MarloxDoc& document_;
    std::map<const Operator*, int> visited_;
};

RenderJob::RenderJob() = default;
RenderJob::~RenderJob() = default;

std::unique_ptr<RenderJob> RenderJob::Take(const MarloxDoc& document, double time, double scale,
                                           const Operator* last)
{
    auto job = std::make_unique<RenderJob>();
    job->context_.time = time;
    job->context_.scale = scale;
    if (const Operator* tool = outputTool(document, last))
        Builder(*job, document).Visit(*tool);
    return job;
}

std::string RenderJob::Key() const
{
    return steps_.empty() || !error_.isEmpty() ? std::string() : steps_.back().key;
}

/// Which steps must run: those behind the last one that the cache does not cut off. Results found
/// are put into `images`.
std::vector<bool> RenderJob::Plan(RenderCache* cache, Images& images)
{
    std::vector<bool> needed(steps_.size());
    int count = 0;
    needed.back() = true;
    for (std::size_t i = steps_.size(); i-- > 0;) {
        if (!needed[i])
            continue;
        if (cache && !steps_[i].key.empty())
            images[i] = cache->Find(steps_[i].key);
        if (images[i])
            continue;
        ++count;
        for (const Feed& feed : steps_[i].feeds)
            needed[std::size_t(feed.step)] = true;
    }
    planned_ = count;
    return needed;
}

RenderResult RenderJob::Run(RenderCache* cache)
{
    RenderResult result;
    result.time = context_.time;
    result.proxy = context_.scale < 1.0;
    result.error = error_;
    if (!error_.isEmpty() || steps_.empty())
        return result;
    Images images(steps_.size());
    const std::vector<bool> needed = Plan(cache, images);
    result.rendered = planned_ > 0;
    std::vector<std::size_t> lastUse(steps_.size(), steps_.size() - 1);
    for (std::size_t i = 0; i < steps_.size(); ++i) {
        for (const Feed& feed : steps_[i].feeds) {
            if (needed[i])
                lastUse[std::size_t(feed.step)] = i;
        }
    }
    for (std::size_t i = 0; i < steps_.size() && !context_.IsCancelled(); ++i) {
        if (!needed[i] || images[i])
            continue;
        current_ = int(i);
        context_.SetPart(0.0, 1.0);
        images[i] = RunStep(steps_[i], images, result.error);
        if (!images[i])
            break;
        ++done_;
        for (std::size_t feed = 0; feed < i; ++feed) {
            if (lastUse[feed] == i)
                images[feed] = nullptr;
        }
        if (cache && !context_.IsCancelled())
            cache->Insert(steps_[i].key, images[i]);
    }
    result.cancelled = context_.IsCancelled();
    if (result.cancelled)
        result.error.clear();
    else
        result.image = images.back();
    return result;
}

/// The output, limited by the mask if one is connected; null, and `error` unless cancelled, on
/// failure.
Ref<Image> RenderJob::RunStep(Step& step, const Images& images, QString& error)
{
    const bool hasMain = std::any_of(step.feeds.begin(), step.feeds.end(),
                                     [](const Feed& feed) { return feed.input == mainInputID(); });
    if (step.hasMainInput && !hasMain && step.process->NeedsUpstream()) {
        error = named(step.toolName, tr("nothing is connected to its input"));
        return nullptr;
    }
    QString fault;
    Ref<Image> image = guarded(fault, [&] { return RunProcess(step, images, fault); });
    if (!fault.isEmpty() || (!image && !context_.IsCancelled())) {
        error = named(step.toolName, fault.isEmpty() ? tr("it gave no image") : fault);
        return nullptr;
    }
    return image;
}

Ref<Image> RenderJob::RunProcess(Step& step, const Images& images, QString& error)
{
    Ref<Image> before;
    Ref<Image> mask;
    for (const Feed& feed : step.feeds) {
        const Ref<Image>& image = images[std::size_t(feed.step)];
        if (feed.input == mainInputID())
            before = image;
        else
            step.process->SetUpstream(feed.input, image);
        if (feed.input == step.maskInput)
            mask = image;
    }
    const Ref<Image> effect = step.process->Run(before, context_, error);
    step.process.reset(); // it holds images
    return effect && mask && error.isEmpty() ? BlendByMask(before, effect, mask, context_) : effect;
}

QString RenderJob::CurrentToolName() const
{
    return steps_.empty() ? QString() : steps_[std::size_t(current_.load())].toolName;
}

double RenderJob::Progress() const
{
    const int planned = planned_;
    const int done = done_;
    return planned > 0
               ? std::min(1.0, (done + (done < planned ? context_.Progress() : 0.0)) / planned)
               : 0.0;
}

} // namespace Marlox
