#include "workbench/tools/Crop.h"

#include "workbench/tools/ImageWindows.h"
#include "workbench/tools/OverlayTags.h"
#include "workbench/tools/ToolInputs.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Marlox {

namespace {

constexpr int farthest = 32768; // pixels from the frame's corner: no edge is taken beyond
constexpr double normalWidth = 1920.0;
constexpr double normalHeight = 1080.0;

/// Pixels at full resolution, y up; left <= right and bottom <= top.
struct Region {
    double left = 0.0;
    double bottom = 0.0;
    double right = 0.0;
    double top = 0.0;

    bool IsNumber() const { return !std::isnan(left + bottom + right + top); }
};

/// The region in the picture's own pixels, y down.
MxRect windowOf(const Region& region, const Image::Format& format)
{
    const auto whole = [](double value) {
        return std::clamp(value, -1.0 * farthest, 1.0 * farthest);
    };
    const auto low = [&](double value) {
        return int(std::floor(std::round(whole(value)) * format.scale));
    };
    const auto high = [&](double value) {
        return int(std::ceil(std::round(whole(value)) * format.scale));
    };
    const MxRect& frame = format.displayWindow;
    return {frame.left + low(region.left), frame.bottom - high(region.top),
            frame.left + high(region.right), frame.bottom - low(region.bottom)};
}

class CropProcess final : public ToolProcess {
public:
    CropProcess(const Region& region, bool reformats) : region_(region), reformats_(reformats) {}

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) override
    {
        if (!upstream) {
            error = NoInputText();
            return {};
        }
        Image::Format format = upstream->GetFormat();
        if (!region_.IsNumber()) {
            MakeEmpty(format);
            return MakeRef<Image>(format);
        }
        const MxRect window = windowOf(region_, format);
        const MxRect kept = Shared(window, format.dataWindow);
        if (kept == format.dataWindow && (!reformats_ || window == format.displayWindow))
            return upstream;
        if (reformats_)
            format.displayWindow = {0, 0, std::max(window.Width(), 1),
                                    std::max(window.Height(), 1)};
        if (kept.IsEmpty()) {
            MakeEmpty(format);
            return MakeRef<Image>(format);
        }
        const MxPoint moved = reformats_ ? MxPoint(window.left, window.top) : MxPoint();
        format.dataWindow = {kept.left - moved.x, kept.top - moved.y, kept.right - moved.x,
                             kept.bottom - moved.y};
        return Copied(*upstream, kept, format, context);
    }

    std::string CacheKey() const override
    {
        return KeyOf(
            {region_.left, region_.bottom, region_.right, region_.top, double(reformats_)});
    }

private:
    static Ref<Image> Copied(const Image& source, const MxRect& kept, const Image::Format& format,
                             RenderContext& context)
    {
        auto result = MakeRef<Image>(format);
        const MxRect& from = source.GetFormat().dataWindow;
        context.ForRows(result->Height(), [&](int first, int last) {
            for (int y = first; y < last; ++y)
                std::copy_n(source.Row(kept.top - from.top + y) +
                                std::ptrdiff_t(kept.left - from.left) * 4,
                            std::ptrdiff_t(result->Width()) * 4, result->Row(y));
        });
        return context.IsCancelled() ? Ref<Image>() : result;
    }

    Region region_;
    bool reformats_;
};

struct Edge {
    const char* id;
    int index; // in the overlay
    double normal;
    const char* help;
};

constexpr std::array<Edge, 4> edges{{
    {"Left", 0, 0.0, "Left edge; full-resolution pixels from the picture's left"},
    {"Bottom", 1, 0.0, "Bottom edge; full-resolution pixels from the picture's bottom"},
    {"Right", 2, normalWidth, "Right edge; full-resolution pixels from the picture's left"},
    {"Top", 3, normalHeight, "Top edge; full-resolution pixels from the picture's bottom"},
}};
constexpr std::array<Edge, 4> sizes{{
    edges[0],
    edges[1],
    {"Width", 4, normalWidth, "Width of what is kept, in full-resolution pixels"},
    {"Height", 5, normalHeight, "Height of what is kept, in full-resolution pixels"},
}};

} // namespace

Crop::Crop(const Registry* record, Values values) : Operator(record), values_(values)
{
    AddImageInput(*this);
    for (const Edge& edge : values == Values::Edges ? edges : sizes) {
        TagList tags{{IA_OverlayIndex, edge.index}};
        if (edge.index == 0)
            tags.Add(IAS_Overlay, CLSID_PreviewControl_Crop);
        else
            tags.Add(IAS_OverlayWith, edges[0].id);
        if (edge.index > 3)
            tags.Add(IAD_Minimum, 0.0);
        AddSlider(*this, {edge.id, edge.id, 0.0, 4096.0, edge.normal, edge.help}, tags);
    }
    AddFlag(*this, "Reformat", "Reformat",
            "Makes what is kept the whole picture; switch it off to drag the edges in place",
            false);
}

void Crop::FitTo(const Image::Format& format)
{
    const std::array<double, 4> whole{0.0, 0.0,
                                      std::round(format.displayWindow.Width() / format.scale),
                                      std::round(format.displayWindow.Height() / format.scale)};
    const auto& inputs = values_ == Values::Edges ? edges : sizes;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        Input* input = FindInput(inputs[i].id);
        Input::State state = input->GetState();
        state.value = MakeRef<Number>(whole[i]);
        input->RestoreInputState(state);
    }
}

std::unique_ptr<ToolProcess> Crop::Prepare(double time) const
{
    Region region{NumberAt(*this, "Left", time), NumberAt(*this, "Bottom", time), 0.0, 0.0};
    if (values_ == Values::Edges) {
        region.right = NumberAt(*this, "Right", time);
        region.top = NumberAt(*this, "Top", time);
        if (region.right < region.left)
            std::swap(region.left, region.right);
        if (region.top < region.bottom)
            std::swap(region.bottom, region.top);
    } else {
        region.right = region.left + NumberAt(*this, "Width", time);
        region.top = region.bottom + NumberAt(*this, "Height", time);
    }
    return std::make_unique<CropProcess>(region, WholeAt(*this, "Reformat", time) != 0);
}

} // namespace Marlox
