#pragma once

#include "system/values/Input.h"

#include <memory>
#include <vector>

#include <QWidget>

namespace Marlox {

class GenericInputControl;

/// The widgets with which a GenericInputControl shows and edits one input. They are children of the
/// control, made with this object. When it goes they are hidden and say no more, and are deleted at
/// the next turn of the event loop: what ends it may have begun in one of them.
class GenericEditor {
public:
    /// A widget and its name in the row's layout, by which scripts find it.
    struct Part {
        const char* name;
        QWidget* widget;
    };

    GenericEditor(GenericInputControl& control, Input& input) : control_(control), input_(input) {}
    virtual ~GenericEditor();
    GenericEditor(const GenericEditor&) = delete;
    GenericEditor& operator=(const GenericEditor&) = delete;

    const std::vector<Part>& Parts() const { return parts_; }
    bool Has(const QWidget* widget) const;
    /// Fits the widgets to the attributes of the input: bounds, whole numbers, times.
    virtual void ReadAttributes() {}
    virtual void ShowValue(const Parameter& value) = 0;

    /// The editor for the input's kind of value; null for kinds that have none.
    static std::unique_ptr<GenericEditor> Make(GenericInputControl& control, Input& input);

protected:
    /// Appends a widget, from the left. Screen readers call it after the input and `which` of its
    /// numbers it is.
    void Append(const char* name, QWidget* widget, const char* which = "");
    /// Writes what the user entered; may end this object's life.
    void Send(const Ref<Parameter>& value);
    /// A flag of the control, else of the input's own attributes.
    bool Flag(u32 tag) const;

    GenericInputControl& control_;
    Input& input_;
    /// Context of the connections by which the widgets call this object.
    std::unique_ptr<QObject> connections_ = std::make_unique<QObject>();

private:
    std::vector<Part> parts_;
};

} // namespace Marlox
