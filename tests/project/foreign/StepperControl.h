#pragma once

#include <system/controls/InputControl.h>

class QLabel;
class QPushButton;

namespace Foreign {

/// A number input with two buttons that step it down and up. The step is the tag STPD_Step, 1 unless
/// given.
class StepperControl : public Marlox::InputControl {
    Q_OBJECT
public:
    StepperControl(const Marlox::Registry* record, const Marlox::ScriptVal& creator,
                   const Marlox::TagList& attributes);

    std::size_t SizeOf() const override { return sizeof(*this); }
    bool CopyAttr(Marlox::u64 tag, void* out) override;
    using InputControl::SetAttrsTagList;
    bool SetAttrsTagList(Marlox::Input* input, const Marlox::TagList& tags) override;
    bool Open(Marlox::ControlWnd* window, Marlox::MxRect& rect, Marlox::TagList* tags) override;
    bool AddInput(Marlox::Input* input, Marlox::TagList* tags) override;
    void NotifyChanged(Marlox::Input* input, Marlox::Parameter* value,
                       Marlox::TagList* tags) override;
    void UpdateDisplay(Marlox::Input* input, Marlox::TagList* tags) override;

private slots:
    void OnDown();
    void OnUp();

private:
    void Step(double by);

    QLabel* label_;
    QPushButton* down_;
    QPushButton* up_;
    double value_ = 0.0;
    double step_ = 1.0;
};

} // namespace Foreign
