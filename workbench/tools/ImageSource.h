#pragma once

#include "system/document/Operator.h"

namespace Marlox {

/// Brings an image file or a numbered sequence into the document. A relative path counts from the
/// document's folder. Frame t shows the file of frame floor(t) + Frame Offset.
class ImageSource final : public Operator {
public:
    explicit ImageSource(const Registry* record);
    std::unique_ptr<ToolProcess> Prepare(double time) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

/// A frame at full resolution as sources read it: from memory when it was read lately, else from
/// the file. Null and `error`, naming the file, on failure. Thread-safe.
Ref<Image> ReadSourceFrame(const QString& path, RenderContext& context, QString& error);

/// What stands in for a frame whose file is missing: a message, the nearest frame before it (or the
/// first), or a transparent picture of the same size. A damaged file is always a message.
enum class MissingFrame { Error, Hold, Black };

} // namespace Marlox
