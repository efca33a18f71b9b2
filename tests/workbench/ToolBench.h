#pragma once

#include "TestPictures.h"
#include "system/document/MarloxDoc.h"

#include <cmath>

#include <QString>

namespace Marlox::Testing {

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

} // namespace Marlox::Testing
