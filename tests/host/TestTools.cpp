#include "host/TestTools.h"

#include <cmath>

namespace Marlox {

namespace {

class SourceProcess final : public ToolProcess {
public:
    SourceProcess(double level, double width) : level_(level), width_(width) {}
    Ref<Image> Run(const Ref<Image>&, RenderContext& context, QString& error) override
    {
        if (width_ <= 0.0) {
            error = QStringLiteral("missing.exr is not there");
            return nullptr;
        }
        const int width = int(std::lround(width_ * context.scale));
        const int height = int(std::lround(32 * context.scale));
        Image::Format format;
        format.dataWindow = format.displayWindow = {0, 0, width, height};
        format.scale = context.scale;
        auto image = MakeRef<Image>(format);
        std::fill_n(image->Row(0), std::size_t(width) * std::size_t(height) * 4, float(level_));
        return image;
    }
    std::string CacheKey() const override
    {
        return std::to_string(level_) + "," + std::to_string(width_);
    }

private:
    double level_;
    double width_;
};

class GainProcess final : public ToolProcess {
public:
    explicit GainProcess(double gain) : gain_(gain) {}
    Ref<Image> Run(const Ref<Image>& upstream, RenderContext& context, QString&) override
    {
        TestWork& work = TestWork::Global();
        ++work.runs;
        if (work.during)
            work.during(context);
        auto image = MakeRef<Image>(upstream->GetFormat());
        const std::size_t floats = std::size_t(image->Width()) * 4;
        context.ForRows(image->Height(), [&](int first, int last) {
            work.rows += last - first;
            for (int y = first; y < last; ++y) {
                for (std::size_t i = 0; i < floats; ++i)
                    image->Row(y)[i] = upstream->Row(y)[i] * float(gain_);
            }
        });
        return image;
    }
    std::string CacheKey() const override { return std::to_string(gain_); }

private:
    double gain_;
};

class SourceTool final : public Operator {
public:
    explicit SourceTool(const Registry* record) : Operator(record)
    {
        AddInput("Level", {{IAD_Default, 0.5}});
        AddInput("Width", {{IAD_Default, 64.0}});
    }
    std::unique_ptr<ToolProcess> Prepare(double time) const override
    {
        return std::make_unique<SourceProcess>(FindInput("Level")->GetNumber(time),
                                               FindInput("Width")->GetNumber(time));
    }
};

class GainTool final : public Operator {
public:
    explicit GainTool(const Registry* record) : Operator(record)
    {
        AddInput("Input", {{IAS_DataType, CLSID_DataType_Image}});
        AddInput("Mask", {{IAS_DataType, CLSID_DataType_Mask}});
        AddInput("Gain", {{IAS_Name, "Gain"},
                          {IAD_Default, 1.0},
                          {IAD_Minimum, -1000.0},
                          {IAD_Maximum, 1000.0}});
        AddInput("Center", {{IAS_DataType, CLSID_DataType_Point}, {IAD_DefaultX, 0.25}});
        AddInput("Caption", {{IAS_DataType, CLSID_DataType_Text}, {IAS_Default, "untitled"}});
        AddInput("Count", {{IA_Integer, true}, {IAD_Minimum, 0.0}, {IAD_Maximum, 10.0}});
        AddInput("Passive", {{IA_Passive, true}});
        AddInput("Fixed", {{IA_Animatable, false}});
        AddInput("Sealed", {{IA_ReadOnly, true}, {IAD_Default, 7.0}});
    }
    std::unique_ptr<ToolProcess> Prepare(double time) const override
    {
        return std::make_unique<GainProcess>(FindInput("Gain")->GetNumber(time));
    }
};

template <class Tool>
Object* create(const Registry* record, const ScriptVal&, const TagList&)
{
    return new Tool(record);
}

constexpr TagPair sourceTags[] = {
    {REG_Kind, u32(ClassKind::Tool)}, {REG_Create, &create<SourceTool>}, {0, 0}};
constexpr TagPair gainTags[] = {
    {REG_Kind, u32(ClassKind::Tool)}, {REG_Create, &create<GainTool>}, {0, 0}};

} // namespace

TestWork& TestWork::Global()
{
    static TestWork work;
    return work;
}

TestTools::TestTools()
    : source_(std::make_unique<Registry>(sourceClass, sourceTags)),
      gain_(std::make_unique<Registry>(gainClass, gainTags))
{
}

TestTools::~TestTools() = default;

} // namespace Marlox
