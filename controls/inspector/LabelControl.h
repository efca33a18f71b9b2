#pragma once

#include "framework/GenericInputControl.h"

namespace Marlox {

/// The rows of an inspector that hold no value. One class under four class ids: a line of text, the
/// title of a nest of rows (bold), a separating line, and a gap.
class LabelControl final : public GenericInputControl {
public:
    enum class Variant { Label, Nest, Separator, Spacer };

    LabelControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);

    Variant GetVariant() const { return variant_; }

    std::size_t SizeOf() const override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    bool GetMaxSize(int& width, int& height, TagList* tags) override;
    bool GetMinSize(int& width, int& height, TagList* tags) override;

protected:
    std::unique_ptr<GenericEditor> MakeEditor(Input& input) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Variant variant_;
};

} // namespace Marlox
