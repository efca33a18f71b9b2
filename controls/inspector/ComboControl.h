#pragma once

#include "framework/OneInputControl.h"
#include "widgets/ComboModel.h"

namespace Marlox {

class CustomCombo;
class ElideLabel;

// Creation tags of the combo control's own.
inline constexpr u32 CMBS_Entry = 0x30050000;   // the text of an entry, once for each
inline constexpr u32 CMBS_EntryID = 0x30050001; // its id, in the same order; unless given the text
inline constexpr u32 CMB_Vertical = 0x10050000; // the name stands above the field; when opened

/// The inspector control of one choice: its name, and a combo box. Its value is the number of the
/// entry, from 0, of a Number input; under its second class id the entry's id, of a Text input.
///
/// A value that is none of the entries is shown as unknown and stays until the user chooses; a
/// number between two entries shows the nearer. An input with an expression is not edited, nor one
/// with IC_EditDisabled. Choosing what is chosen already writes nothing.
class ComboControl final : public OneInputControl {
    Q_OBJECT
public:
    ComboControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);
    ~ComboControl() override;

    bool KeepsIds() const { return keepsIds_; }
    int ShownPlace() const; // ComboModel::none for a value that is no entry's

    std::size_t SizeOf() const override { return sizeof(*this); }
    bool CopyAttr(u64 tag, void* out) override;
    u64 DoTagList(unsigned int command, TagList& tags) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    void Close(TagList* tags) override;

public slots:
    /// The user chose an entry.
    void OnIndexChanged(int index);
    /// The user tried to, where nothing can be chosen.
    void OnRefused();

protected:
    bool Takes(const Input& input) const override;
    const char* LayoutName() const override;
    void ReadTags(const TagList& tags) override;
    void Show() override;

private:
    QString StrangerText() const;
    void ShowMotion();

    ElideLabel* label_;
    CustomCombo* combo_;

    const bool keepsIds_;
    TagList tags_; // as they were read last
    bool vertical_ = false;
    bool nameHidden_ = false;
    bool editDisabled_ = false;
};

} // namespace Marlox
