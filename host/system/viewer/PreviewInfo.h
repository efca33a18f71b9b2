#pragma once

#include "system/base/MxColor.h"
#include "system/base/MxGeometry.h"

namespace Marlox {

/// The viewer's drawing context handed to overlay controls. Image coordinates are normalised to the
/// display window: 0 to 1 across width and height, y upwards. View coordinates are pixels of the
/// view, y downwards, x to the right, with the origin at its top left. Plain data plus arithmetic:
/// a viewer fills it for each call.
class MARLOXSYSTEM_EXPORT PreviewInfo {
public:
    /// Placement of the image: its display window covers [left, left + width) x [top, top + height)
    /// in view pixels (pixel aspect, zoom and pan folded in).
    double imageLeft = 0.0;
    double imageTop = 0.0;
    double imageWidth = 1.0;
    double imageHeight = 1.0;
    /// Size of the picture in its own pixels (full resolution) and the shape of these.
    int pixelWidth = 1;
    int pixelHeight = 1;
    double pixelAspect = 1.0;
    MxRect view;               // the view's rectangle
    double controlScale = 1.0; // multiplies the sizes of marks; includes the device pixel ratio
    int pickRadius = 6;        // view pixels
    int drawMode = 0;          // 3: nothing is drawn

    // Points between image and view.
    void TransformOut(double x, double y, double& viewX, double& viewY) const;
    void TransformIn(double viewX, double viewY, double& x, double& y) const;
    double TransformXOut(double x) const;
    double TransformYOut(double y) const;
    double TransformXIn(double viewX) const;
    double TransformYIn(double viewY) const;

    // Lengths along one axis with the image's aspect: one unit is the image's width as seen (pixel
    // aspect included), in x and in y, so that a circle of one radius stays a circle on the
    // picture: one unit of y is width * pixelAspect / height of the image's height. Lengths keep
    // their sign; y is not turned over. A picture of no size gives lengths of 0 and points at 0.
    double AspectScaleXOut(double length) const;
    double AspectScaleYOut(double length) const;
    double AspectScaleXIn(double viewLength) const;
    double AspectScaleYIn(double viewLength) const;

    // The current colour of the GL context, components from 0 to 255; only while one is current.
    void Color4ub(u32 red, u32 green, u32 blue, u32 alpha) const;
    void Color4ubv(const unsigned char* rgba) const;

private:
    double HeightsPerWidth() const;
};

} // namespace Marlox
