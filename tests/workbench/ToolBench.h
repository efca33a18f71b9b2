#pragma once

#include "TestPictures.h"
#include "script/ScriptSystem.h"
#include "system/document/MarloxDoc.h"
#include "workbench/images/ImageScale.h"
#include "workbench/tools/Tools.h"

#include <cmath>

#include <QtTest>

namespace Marlox::Testing {

/// The workbench's tools and its scripts, while this lives.
class Workbench {
public:
    Workbench()
    {
        InstallScripting();
        RegisterTools();
    }
    ~Workbench() { UninstallScripting(); }
};

inline bool isNear(Rgba a, Rgba b, float tolerance = 1e-5f)
{
    for (std::size_t i = 0; i < 4; ++i) {
        if (!(std::abs(a[i] - b[i]) <= tolerance))
            return false;
    }
    return true;
}

/// One tool on its own, with values by input id.
class Bench {
public:
    explicit Bench(const char* toolType) : tool_(document_.AddTool(toolType)) {}

    Bench& Set(const char* input, double value)
    {
        tool_->FindInput(input)->SetValue(Number(value), TimeNone, Input::ReplaceAll);
        return *this;
    }
    Bench& Set(const char* input, double x, double y)
    {
        tool_->FindInput(input)->SetValue(Point(x, y), TimeNone, Input::ReplaceAll);
        return *this;
    }
    /// Of a point both coordinates.
    Bench& Set(const Input& input, double value)
    {
        const char* id = input.GetID().c_str();
        const bool isPoint = input.GetDataType() == MxID(CLSID_DataType_Point);
        return isPoint ? Set(id, value, value) : Set(id, value);
    }
    Bench& Set(const char* input, const QString& text)
    {
        tool_->FindInput(input)->SetValue(Text(text.toStdString()), TimeNone, Input::ReplaceAll);
        return *this;
    }
    Ref<Image> Run(const Ref<Image>& upstream = {}, double time = 0.0, double scale = 1.0)
    {
        RenderContext context;
        context.time = time;
        context.scale = scale;
        error.clear();
        return tool_->Prepare(time)->Run(upstream, context, error);
    }
    std::string Key(double time = 0.0) const { return tool_->Prepare(time)->CacheKey(); }
    Operator& Tool() { return *tool_; }
    MarloxDoc& Document() { return document_; }

    QString error;

private:
    MarloxDoc document_;
    Operator* tool_;
};

inline double total(const Image& image, std::size_t channel)
{
    double sum = 0.0;
    const MxRect window = image.GetFormat().dataWindow;
    for (int y = window.top; y < window.bottom; ++y) {
        for (int x = window.left; x < window.right; ++x)
            sum += double(At(image, x, y)[channel]);
    }
    return sum;
}

/// Each pixel says where it is.
inline Ref<Image> places(int width, int height, Image::Format format = {})
{
    const auto place = [](int x, int y) { return Rgba{float(x), float(y), -1.0f, 1.0f}; };
    return Picture(width, height, place, format);
}

/// What a tool makes of a quarter of the picture is a quarter of what it makes of the whole, in the
/// pixels `of` the small one; with `edges` also where they are not opaque.
inline void compareProxy(Bench& bench, const Ref<Image>& image, MxRect of, float tolerance,
                         bool edges)
{
    RenderContext context;
    const auto proxy = bench.Run(ReducedImage(image, 4, context));
    const auto reduced = ReducedImage(bench.Run(image), 4, context);
    QCOMPARE(proxy->GetFormat().scale, 0.25);
    int compared = 0;
    for (int y = of.top; y < of.bottom; ++y) {
        for (int x = of.left; x < of.right; ++x) {
            const Rgba one = At(*proxy, x, y);
            const Rgba other = At(*reduced, x, y);
            if (!edges && (one[3] < 0.999f || other[3] < 0.999f))
                continue;
            ++compared;
            QVERIFY(isNear(one, other, tolerance));
        }
    }
    QVERIFY(compared * 4 > of.Width() * of.Height());
}

} // namespace Marlox::Testing
