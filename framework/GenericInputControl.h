#pragma once

#include "framework/ControlClass.h"
#include "framework/GenericEditor.h"
#include "system/widgets/ElideLabel.h"

#include <memory>
#include <string>
#include <vector>

namespace Marlox {

/// Base of the inspector controls that have no behaviour of their own yet: the name, and one plain
/// editing row for each attached Number, Point or Text input. Values are written as one undo entry
/// each; typing an expression into a number gives the input that expression.
///
/// Layout objects: "label", "edit" (of points "edity", too) and "expression"; those of the second
/// row and further have its number appended ("edit2").
class GenericInputControl : public InputControl {
public:
    GenericInputControl(const Registry* record, const ScriptVal& creator,
                        const TagList& attributes);
    ~GenericInputControl() override;

    /// What the row of the input with this control index shows; null if there is no such input.
    Ref<Parameter> ShownValue(unsigned int index) const;
    /// Called by the rows: writes a value that the user entered, if it differs.
    void SendValue(Input& input, Parameter& value);
    void SendExpression(Input& input, const QString& expression);

    using InputControl::SetAttrsTagList;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    void Close(TagList* tags) override;
    bool AddInput(Input* input, TagList* tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void UpdateDisplay(Input* input, TagList* tags) override;
    Input* GetInputFrom(QWidget* widget, TagList* tags) override;

protected:
    /// The editor of one input, a child of this control; null: the input gets no row.
    virtual std::unique_ptr<GenericEditor> MakeEditor(Input& input);
    /// What the control is called when it has no row.
    QString Title() const;
    ElideLabel* TitleLabel() const { return title_.get(); } // null when closed or with rows

private:
    struct Row {
        Input* input;
        Ref<Parameter> value;
        std::unique_ptr<ElideLabel> label; // both null while closed, or without an editor
        std::unique_ptr<GenericEditor> editor;
    };
    Row* RowOf(const Input* input);
    void BuildRows();
    void PlaceWidgets();
    std::string RowNumber(const Row& row) const; // "" for the first, "2", "3" ...
    void ReadAttributes(const Row& row);
    void RemoveWidgets();

    std::vector<Row> rows_;
    std::unique_ptr<ElideLabel> title_;
};

/// Facts of a class that is registered but behaves only as its generic base does. Its script
/// operations hold "IsGeneric" (by which a host can tell it from a finished class, without making
/// an instance: look for the name in the record's ScriptInfo) and "GetValues".
struct GenericInspectorFacts : InspectorFacts {
    static const ScriptOperation operations[];
};

} // namespace Marlox
