#pragma once

#include "framework/OneInputControl.h"

namespace Marlox {

class CustomCheckBox;

/// The inspector control of a number that is 0 or 1: a check box with the input's name beside it.
/// Any other value (an expression's, say) shows as neither, and a click makes it 1. A click on the
/// box or the name, or Space, changes it, as one undo entry.
class CheckBoxControl final : public OneInputControl {
    Q_OBJECT
public:
    CheckBoxControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~CheckBoxControl() override;

    std::size_t SizeOf() const override { return sizeof(*this); }

public slots:
    void OnClicked(bool on);

protected:
    bool Takes(const Input& input) const override;
    const char* LayoutName() const override;
    void ReadTags(const TagList& tags) override;
    void Show() override;

private:
    CustomCheckBox* box_;
    bool nameHidden_ = false;
    bool editDisabled_ = false;
};

} // namespace Marlox
