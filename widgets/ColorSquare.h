#pragma once

#include "system/color/DisplayColors.h"
#include "widgets/ColorAxes.h"

#include <vector>

#include <QImage>

namespace Marlox {

/// Paints the square of the colour field: all colours of one hue (or of one number on the first
/// axis of another colour space), as the viewer would show them. It is painted anew for each step
/// of a drag along the hues, therefore each kind of display has a fast way:
///
/// - light shown as it is: arithmetic of a row and a column, vectors of it at a time; the pixels
///   are those of QColor::fromHsvF set one by one;
/// - a display that treats each component by itself: its tables;
/// - any other: it is asked for a grid of colours, dense where the axes are dark or pure, and what
///   lies between is interpolated, but for the cells where the display clips or bends too much,
///   whose pixels it is asked for one by one.
///
/// Colours that no light has, with a component below 0 or above 1, are muted.
class ColorSquare {
public:
    /// The numbers on the axes at the middles of the columns, from the left, and of the rows, from
    /// the top; from 0 to 1, monotonous.
    ColorSquare(std::vector<double> saturations, std::vector<double> values);

    /// Into `image`, which is made anew unless it has the square's size and 32 bits without alpha.
    void Paint(QImage& image, int colorSpace, double hue, const DisplayColors& display) const;

    int Columns() const { return int(saturations_.size()); }
    int Rows() const { return int(values_.size()); }

private:
    void PaintHsv(QImage& image, double hue) const;
    void PaintRows(QImage& image, const ColorAxes& axes, double hue,
                   const DisplayColors::Curves* curves) const;
    void PaintBetween(QImage& image, const ColorAxes& axes, double hue,
                      const DisplayColors& display) const;
    void Mute(QImage& image, const ColorAxes& axes, double hue) const;

    std::vector<double> saturations_;
    std::vector<double> values_;
    std::vector<float> across_; // the saturations
};

} // namespace Marlox
