#include "system/viewer/PreviewInfo.h"

#include <GL/gl.h>

namespace Marlox {

double PreviewInfo::TransformXOut(double x) const
{
    return imageLeft + x * imageWidth;
}

double PreviewInfo::TransformYOut(double y) const
{
    return imageTop + (1.0 - y) * imageHeight;
}

double PreviewInfo::TransformXIn(double viewX) const
{
    return imageWidth != 0.0 ? (viewX - imageLeft) / imageWidth : 0.0;
}

double PreviewInfo::TransformYIn(double viewY) const
{
    return imageHeight != 0.0 ? 1.0 - (viewY - imageTop) / imageHeight : 0.0;
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

double PreviewInfo::AspectScaleXOut(double length) const
{
    return length * imageWidth;
}

double PreviewInfo::AspectScaleYOut(double length) const
{
    return length * imageHeight * HeightsPerWidth();
}

double PreviewInfo::AspectScaleXIn(double viewLength) const
{
    return imageWidth != 0.0 ? viewLength / imageWidth : 0.0;
}

double PreviewInfo::AspectScaleYIn(double viewLength) const
{
    const double scale = imageHeight * HeightsPerWidth();
    return scale != 0.0 ? viewLength / scale : 0.0;
}

double PreviewInfo::HeightsPerWidth() const
{
    return pixelHeight > 0 ? double(pixelWidth) * pixelAspect / pixelHeight : 1.0;
}

void PreviewInfo::Color4ub(u32 red, u32 green, u32 blue, u32 alpha) const
{
    glColor4ub(GLubyte(red), GLubyte(green), GLubyte(blue), GLubyte(alpha));
}

void PreviewInfo::Color4ubv(const unsigned char* rgba) const
{
    glColor4ubv(rgba);
}

} // namespace Marlox
