#pragma once

#include "system/base/MxGeometry.h"

#include <array>
#include <span>
#include <vector>

namespace Marlox {

/// Sizes along one axis in pixels.
struct LayoutExtent {
    static constexpr int Any = (1 << 24) - 1; // no upper limit; Qt's own largest widget size

    int minimum = 0;
    int preferred = 0;
    int maximum = Any;

    friend bool operator==(const LayoutExtent&, const LayoutExtent&) = default;
};

/// One part of a row or column that space is shared among.
struct LayoutShare {
    int minimum = 0;
    int maximum = LayoutExtent::Any;
    double weight = 1.0; // share of what is left above all minimums; 0 takes none
};

/// Shares `total` pixels among the parts: each gets its minimum, the rest goes by weight until a
/// part is at its maximum. When there is less than all minimums, each gets its fraction of it.
/// Sizes are whole pixels and follow each other without gaps; what nobody takes is left over.
void ShareSpace(std::span<const LayoutShare> parts, int total, std::vector<int>& sizes);

/// The box model of layouts: rows and columns of boxes with weights, and leaves that hold something
/// with sizes of its own. It knows no widgets. Measuring goes up from the leaves, arranging down
/// from the root. Axis 0 is horizontal, 1 vertical; pixels, y downwards.
struct LayoutBox {
    enum class Kind { Leaf, Row, Column, Spacer };
    /// Where content stands that is smaller than its place: Fill grows it first up to its maximum,
    /// then centres it; the others keep it at its preferred size.
    enum class Align { Fill, Start, Centre, End };

    Kind kind = Kind::Leaf;
    double weight = 1.0;                  // along the parent's direction
    int spacing = 0;                      // between shown children
    std::array<int, 4> margins{};         // of groups: left, top, right, bottom
    std::array<LayoutExtent, 2> limits{}; // given from outside; `preferred` is not used
    std::array<Align, 2> align{Align::Fill, Align::Fill};
    std::vector<LayoutBox*> children; // not owned

    // What a leaf holds.
    bool hasContent = false;
    bool contentVisible = false;
    std::array<LayoutExtent, 2> content{};

    // Computed.
    bool shown = false; // hidden boxes take no room; a group is hidden with all its content
    std::array<LayoutExtent, 2> measured{}; // `preferred` is not used
    MxRect rect;                            // the box's place
    MxRect inner;                           // of a leaf: where its content stands

    /// Fills `shown` and `measured` here and below.
    void Measure();
    /// Fills `rect` and `inner` here and below; Measure comes first.
    void Arrange(const MxRect& place);

private:
    bool IsGroup() const { return kind == Kind::Row || kind == Kind::Column; }
    int MainAxis() const { return kind == Kind::Row ? 0 : 1; }
    bool ComputeShown() const;
    LayoutExtent MeasureLeaf(int axis) const;
    LayoutExtent MeasureGroup(int axis) const;
    int Gaps() const;
    void ArrangeLeaf();
    void ArrangeGroup();
};

} // namespace Marlox
