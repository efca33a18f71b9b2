#include "system/viewer/PreviewInfo.h"

#include "system/viewer/OverlayPainter.h"

#include <GL/gl.h>

namespace Marlox {

double PreviewInfo::TransformXOut(double x) const
{
    return imageLeft + x * imageWidth;
}

double PreviewInfo::TransformYOut(double y) const
{
    return imageBottom + y * imageHeight;
}

double PreviewInfo::TransformXIn(double viewX) const
{
    return imageWidth != 0.0 ? (viewX - imageLeft) / imageWidth : 0.0;
}

double PreviewInfo::TransformYIn(double viewY) const
{
    return imageHeight != 0.0 ? (viewY - imageBottom) / imageHeight : 0.0;
}

void PreviewInfo::TransformOut(double x, double y, double& viewX, double& viewY) const
{
    viewX = TransformXOut(x);
    viewY = TransformYOut(y);
}

void PreviewInfo::TransformIn(double viewX, double viewY, double& x, double& y) const
{
    x = TransformXIn(viewX);
    y = TransformYIn(viewY);
}

void PreviewInfo::TransformOut(double x, double y, double w, double& viewX, double& viewY,
                               double& viewW) const
{
    viewX = imageLeft * w + x * imageWidth;
    viewY = imageBottom * w + y * imageHeight;
    viewW = w;
}

void PreviewInfo::TransformIn(double viewX, double viewY, double viewW, double& x, double& y,
                              double& w) const
{
    x = imageWidth != 0.0 ? (viewX - imageLeft * viewW) / imageWidth : 0.0;
    y = imageHeight != 0.0 ? (viewY - imageBottom * viewW) / imageHeight : 0.0;
    w = viewW;
}

double PreviewInfo::AspectScaleXOut(double length) const
{
    return length;
}

double PreviewInfo::AspectScaleYOut(double length) const
{
    return length * HeightsPerWidth();
}

double PreviewInfo::AspectScaleXIn(double length) const
{
    return length;
}

double PreviewInfo::AspectScaleYIn(double length) const
{
    return length / HeightsPerWidth();
}

double PreviewInfo::HeightsPerWidth() const
{
    const double width = double(pixelWidth) * pixelAspect;
    return pixelHeight > 0 && width > 0.0 ? width / pixelHeight : 1.0;
}

void PreviewInfo::Color4ub(u32 red, u32 green, u32 blue, u32 alpha) const
{
    ColorFu({int(red), int(green), int(blue), int(alpha)});
}

void PreviewInfo::Color4ubv(const unsigned char* rgba) const
{
    ColorFu({rgba[0], rgba[1], rgba[2], rgba[3]});
}

void PreviewInfo::ColorFu(const MxColor& color) const
{
    if (painter)
        painter->SetColor(color);
    else
        glColor4ub(color.red, color.green, color.blue, color.alpha);
}

} // namespace Marlox
