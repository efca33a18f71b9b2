#pragma once

#include "system/shapes/ShapeKeys.h"

#include <memory>
#include <optional>

#include <QString>

class QMimeData;

namespace Marlox {

/// What was copied of a shape or a path, without the links of its points.
struct ShapeClip {
    enum class Kind {
        Shape,      // a whole shape with all keys
        PathPoints, // neighbouring points of one, with all keys
        XYPath,     // the keys of a point: x and y as splines
        PathValue,  // one place
    };
    Kind kind = Kind::Shape;
    Ref<Parameter> value; // a shape, or a Point
    Animation animation;  // of such values; empty: not animated
};

// Refusals, for a message to the user.
inline constexpr char RefusesPolyType[] = "No pasting to different poly type";
inline constexpr char RefusesCount[] = "Different destination points count";
inline constexpr char RefusesXYPath[] =
    "Pasting xypath points with non-bezier X and Y splines is not supported";
inline constexpr char RefusesSelection[] = "Select segment (adjacent points), single point or none";

// Copying. Linked points are taken where they are. Nothing: the input holds no such value.
MARLOXSYSTEM_EXPORT std::optional<ShapeClip> CopyShape(const Input& shape);
/// The selected points, which must be neighbours; all when none is selected. Of a Point input, its
/// keys (`mask` is over the keys). Nothing and `refusal` for another selection.
MARLOXSYSTEM_EXPORT std::optional<ShapeClip> CopyPathPoints(const Input& input, const SelMask& mask,
                                                            QString& refusal);
/// The place that a Point input has at a time, or the selected point (the last one) of a shape.
MARLOXSYSTEM_EXPORT std::optional<ShapeClip> CopyPathValue(const Input& input, const SelMask& mask,
                                                           double time);

/// Pastes what was copied, moved by `offset` (normalised image coordinates), as one undo entry.
///
/// A shape replaces the one that is there, with all keys; links of points that are gone go, too.
/// Path points take the places of the selected points, of which there must be as many, and with
/// none selected come in behind the last one clicked (`mask`'s last), else at the end; at each key
/// of the shape as they were at that time. All points of a closed shape close an empty one. Keys of
/// a point become points of a path, or keys of a Point input. A place moves the selected points so
/// that the last one gets there, at `time`.
///
/// False and `refusal` (empty: the tool is locked): nothing was changed.
MARLOXSYSTEM_EXPORT bool PasteClip(Input& to, const SelMask& mask, double time,
                                   const ShapeClip& clip, ShapePlace offset, QString& refusal);

// As text, between documents and programs: a script table, UTF-8, numbers in the C locale. On the
// clipboard it stands under a type of its own and as plain text.
inline constexpr char ShapeMimeType[] = "application/x-marlox-shape";
/// Empty without the script library.
MARLOXSYSTEM_EXPORT std::string ClipToText(const ShapeClip& clip);
/// Nothing and `error`: it is no such text, or a damaged one.
MARLOXSYSTEM_EXPORT std::optional<ShapeClip> ClipFromText(const std::string& text, QString& error);
MARLOXSYSTEM_EXPORT std::unique_ptr<QMimeData> ClipToMime(const ShapeClip& clip);
MARLOXSYSTEM_EXPORT std::optional<ShapeClip> ClipFromMime(const QMimeData& data, QString& error);
/// Whether ClipFromMime has something to read; cheap.
MARLOXSYSTEM_EXPORT bool HasClip(const QMimeData& data);

} // namespace Marlox
