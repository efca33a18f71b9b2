#pragma once

#include "framework/OneInputControl.h"

#include <string>

class QLabel;

namespace Marlox {

class CustomNestButton;
class ElideLabel;

// Creation tags of the label control's own.
inline constexpr u32 LBL_Rows = 0x10050000;  // of a nest: number of inputs below that it folds
inline constexpr u32 LBLS_Text = 0x30050000; // the text, where it differs from the input's name

/// The rows of an inspector that edit nothing, one class under four class ids: a text over as many
/// lines as it needs, the heading of a nest of rows, a separating line, and a gap. The value of a
/// label's, a separator's and a spacer's input means nothing; none of them can be animated.
///
/// A nest folds the rows below it (see ControlWnd::SetHeading for which; without LBL_Rows those up
/// to the next nest). Its input is a number: 0 folded, anything else open; with IA_Passive the
/// document remembers it with the tool, yet folding is no edit: no undo entry, no render, and it
/// works while the tool is locked. An input of another kind remembers nothing.
///
/// A click anywhere on the heading, Space or Enter folds and opens, Left folds, Right opens. With
/// Ctrl a click, Space and Enter do so with all nests of the page. The focus is the control's own.
class LabelControl final : public OneInputControl {
    Q_OBJECT
    Q_PROPERTY(bool nestOpen READ IsNestOpen WRITE SetNestOpen)
public:
    enum class Variant { Label, Nest, Separator, Spacer };

    LabelControl(const Registry* record, const ScriptVal& creator, const TagList& attributes);

    Variant GetVariant() const { return variant_; }
    QString Text() const;
    bool IsNestOpen() const { return nestOpen_; }
    /// As the user does it: writes the input. Nests only.
    void SetNestOpen(bool open);
    /// Folds or opens every nest of the page that is not disabled.
    void SetAllNestsOpen(bool open);

    std::size_t SizeOf() const override { return sizeof(*this); }
    bool CopyAttr(u64 tag, void* out) override;
    void AddToMenu(Menu* menu, TagList& tags) override;
    using InputControl::HandleMenu;
    bool HandleMenu(unsigned int id, u64* data, TagList& tags) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    bool SetSize(int& width, int& height, TagList* tags) override;
    bool AddInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void UpdateDisplay(Input* input, TagList* tags) override;

protected:
    const char* LayoutName() const override;
    void ReadTags(const TagList& tags) override;
    void Show() override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    enum class Command { None, Toggle, Fold, Open };

    bool IsNest() const { return variant_ == Variant::Nest; }
    void MakeWidgets();
    void FitText();
    void ReadFolding(const Parameter* value); // no number: as it is
    void ApplyFolding();
    void ApplyButton();
    static Command CommandOf(const QKeyEvent& event);
    void Do(Command command, bool all); // what the user wants

    const Variant variant_;
    // Those that the variant has; the others are null.
    QLabel* text_ = nullptr;
    ElideLabel* title_ = nullptr;
    CustomNestButton* button_ = nullptr;
    QWidget* line_ = nullptr;

    std::string givenText_; // empty: the input's name
    int rows_ = 0;          // LBL_Rows
    bool nestOpen_ = true;
    bool shownOpen_ = true; // when the display was last updated
    bool hovered_ = false;
    bool pressed_ = false; // the button went down on the heading and has not come up
};

} // namespace Marlox
