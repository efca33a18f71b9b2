#include "workbench/tools/Blur.h"

#include "workbench/tools/BoxBlur.h"
#include "workbench/tools/ToolInputs.h"

#include <algorithm>

namespace Marlox {

namespace {

constexpr double largest = 2000.0; // pixels

class BlurProcess final : public ToolProcess {
public:
    BlurProcess(double sizeX, double sizeY, int passes, bool repeatEdges)
        : sizeX_(sizeX), sizeY_(sizeY), passes_(passes), repeatEdges_(repeatEdges)
    {
    }

    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString& error) override
    {
        if (!upstream) {
            error = NoInputText();
            return {};
        }
        const double scale = upstream->GetFormat().scale / 2.0;
        return Blurred(upstream, {sizeX_ * scale, sizeY_ * scale, passes_, repeatEdges_}, context);
    }

    std::string CacheKey() const override
    {
        return KeyOf({sizeX_, sizeY_, double(passes_), double(repeatEdges_)});
    }

private:
    double sizeX_;
    double sizeY_;
    int passes_;
    bool repeatEdges_;
};

} // namespace

Blur::Blur(const Registry* record) : Operator(record)
{
    const TagList size{{IAD_Minimum, 0.0}, {IAD_Maximum, largest}, {ICD_Gamma, 2.0}};
    AddImageInput(*this);
    AddSlider(*this, {"XSize", "Size X", 0.0, 100.0, 10.0, "Width of the blur in pixels"}, size);
    AddSlider(*this, {"YSize", "Size Y", 0.0, 100.0, 10.0, "Height of the blur in pixels"}, size);
    AddSlider(
        *this,
        {"Passes", "Passes", 1.0, 6.0, 3.0, "1 averages over a box, more come close to a bell"},
        {{IA_Integer, true},
         {IAD_Minimum, 1.0},
         {IAD_Maximum, 6.0},
         {IC_TickFreq, 6},
         {SLCS_LowName, "Box"},
         {SLCS_HighName, "Bell"}});
    AddFlag(*this, "RepeatEdges", "Repeat Edges",
            "Takes the picture's edge to go on outside instead of growing into nothing", false);
    AddMaskInput(*this);
}

std::unique_ptr<ToolProcess> Blur::Prepare(double time) const
{
    // Expressions know no limits.
    const auto size = [&](const char* id) { return std::min(NumberAt(*this, id, time), largest); };
    return std::make_unique<BlurProcess>(size("XSize"), size("YSize"),
                                         std::clamp(WholeAt(*this, "Passes", time), 1, 6),
                                         WholeAt(*this, "RepeatEdges", time) != 0);
}

} // namespace Marlox
