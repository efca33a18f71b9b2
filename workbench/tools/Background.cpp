#include "workbench/tools/Background.h"

#include "workbench/tools/ColorInputs.h"
#include "workbench/tools/ImageWindows.h"

namespace Marlox {

namespace {

class BackgroundProcess final : public ToolProcess {
public:
    explicit BackgroundProcess(const Color& color) : color_(color) {}

    Ref<Image> Run(const Ref<Image>&, RenderContext& context, QString&) override
    {
        auto result = MakeRef<Image>(StandardFormat(context));
        std::array<float, 4> pixel{};
        for (std::size_t i = 0; i < 3; ++i)
            pixel[i] = float(color_[i] * color_[3]);
        pixel[3] = float(color_[3]);
        context.ForRows(result->Height(), [&](int first, int last) {
            for (int y = first; y < last; ++y) {
                float* row = result->Row(y);
                for (int x = 0; x < result->Width(); ++x)
                    std::copy(pixel.begin(), pixel.end(), row + std::ptrdiff_t(x) * 4);
            }
        });
        return context.IsCancelled() ? Ref<Image>() : result;
    }

    std::string CacheKey() const override
    {
        return KeyOf({color_[0], color_[1], color_[2], color_[3]});
    }

private:
    Color color_;
};

} // namespace

Background::Background(const Registry* record) : Operator(record)
{
    AddColor(*this, {"", "", {0.0, 0.0, 0.0, 1.0}, true});
}

std::unique_ptr<ToolProcess> Background::Prepare(double time) const
{
    return std::make_unique<BackgroundProcess>(ColorAt(*this, "", time));
}

} // namespace Marlox
