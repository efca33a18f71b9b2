#include "workbench/tools/ImageSource.h"

#include "system/document/MarloxDoc.h"
#include "system/evaluation/RenderCache.h"
#include "workbench/images/ImageFile.h"
#include "workbench/images/ImageScale.h"
#include "workbench/images/Sequence.h"
#include "workbench/tools/ToolInputs.h"

#include <cmath>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace Marlox {

namespace {

constexpr std::size_t framesKept = std::size_t(1) << 30; // bytes

/// Frames read lately at full resolution, shared by all sources: proxies are made from them.
RenderCache& frameCache()
{
    static RenderCache cache(framesKept);
    return cache;
}

/// Names the file as it is now: a file written again is read again.
std::string stampOf(const QString& path)
{
    const QFileInfo file(path);
    return QString("%1|%2|%3")
        .arg(path)
        .arg(file.lastModified().toMSecsSinceEpoch())
        .arg(file.size())
        .toStdString();
}

class SourceProcess final : public ToolProcess {
public:
    SourceProcess(const QString& pattern, int frame, MissingFrame policy)
        : pattern_(pattern), policy_(policy)
    {
        if (QFileInfo(pattern).isFile()) { // also one really called "C#.png"
            path_ = pattern;
            return;
        }
        path_ = Sequence::FromPattern(pattern).FramePath(frame);
        isMissing_ = !QFileInfo::exists(path_);
        if (isMissing_ && policy != MissingFrame::Error) {
            const Sequence sequence = Sequence::FromPath(pattern);
            standIn_ =
                sequence.Frames().empty() ? QString() : sequence.FramePath(sequence.Nearest(frame));
        }
    }

    Ref<Image> Run(const Ref<Image>&, RenderContext& context, QString& error) override
    {
        if (pattern_.isEmpty()) {
            error = "no file is chosen";
            return {};
        }
        const bool replaces = isMissing_ && !standIn_.isEmpty();
        if (replaces && policy_ == MissingFrame::Black)
            return Black(context, error);
        return Read(replaces ? standIn_ : path_, context, error);
    }

    std::string CacheKey() const override
    {
        return std::to_string(int(policy_)) + "|" + stampOf(path_) + "|" + stampOf(standIn_);
    }

private:
    static Ref<Image> Read(const QString& path, RenderContext& context, QString& error)
    {
        const Ref<Image> image = ReadSourceFrame(path, context, error);
        return image ? ReducedImage(image, ProxyDivisor(context.scale), context) : Ref<Image>();
    }

    /// No pixels, but the windows of a frame that is there.
    Ref<Image> Black(RenderContext& context, QString& error) const
    {
        ImageFileInfo info;
        if (!ReadImageInfo(standIn_, info, &error))
            return {};
        Image::Format format = ReducedFormat(info.format, ProxyDivisor(context.scale));
        format.dataWindow = {format.displayWindow.left, format.displayWindow.top,
                             format.displayWindow.left, format.displayWindow.top};
        return MakeRef<Image>(format);
    }

    QString pattern_;
    MissingFrame policy_;
    QString path_;
    QString standIn_; // of a missing frame; empty: none
    bool isMissing_ = false;
};

} // namespace

Ref<Image> ReadSourceFrame(const QString& path, RenderContext& context, QString& error)
{
    const std::string stamp = stampOf(path);
    Ref<Image> image = frameCache().Find(stamp);
    if (!image) {
        image = ReadImage(path, &error, &context);
        if (image)
            frameCache().Insert(stamp, image);
    }
    return image;
}

ImageSource::ImageSource(const Registry* record) : Operator(record)
{
    AddInput("File", {{IAS_Name, "File"},
                      {IAS_Help, "Image file, or sequence as name.####.exr"},
                      {IAS_Control, "FileControl"},
                      {IAS_DataType, CLSID_DataType_Text},
                      {IA_Animatable, false}});
    AddSlider(*this,
              {"FrameOffset", "Frame Offset", -100.0, 100.0, 0.0,
               "Added to the document's frame to get the file's frame"},
              {{IA_Integer, true}, {IC_Centred, true}, {ICD_Centre, 0.0}});
    AddChoice(*this, "MissingFrames", "Missing Frames",
              "What stands in for a frame whose file is missing", {"Error", "Hold", "Black"},
              int(MissingFrame::Error));
}

std::unique_ptr<ToolProcess> ImageSource::Prepare(double time) const
{
    const auto value = FindInput("File")->GetValue(time);
    const auto* text = dynamic_cast<const Text*>(value.Get());
    QString pattern = text ? QString::fromStdString(text->GetValue()).trimmed() : QString();
    const MarloxDoc* document = GetDoc();
    if (!pattern.isEmpty() && document && !document->FilePath().isEmpty())
        pattern = QFileInfo(document->FilePath()).absoluteDir().absoluteFilePath(pattern);
    // Frames come from expressions and sums too: a hair below a whole number is meant to be it.
    const int frame = int(std::floor(time + 1e-6)) + WholeAt(*this, "FrameOffset", time);
    return std::make_unique<SourceProcess>(pattern, frame,
                                           MissingFrame(WholeAt(*this, "MissingFrames", time)));
}

} // namespace Marlox
