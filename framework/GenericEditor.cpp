#include "framework/GenericEditor.h"

#include "framework/GenericInputControl.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/MxLineEdit.h"
#include "system/widgets/TimeCodeEdit.h"

#include <algorithm>
#include <functional>
#include <limits>

#include <QCoreApplication>

namespace Marlox {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("GenericEditor", text);
}

/// A number field that calls `commit` when the user entered a value and brackets its drags.
TimeCodeEdit* MakeNumberEdit(GenericInputControl& control, QObject& context,
                             std::function<void(TimeCodeEdit&)> commit)
{
    auto* edit = new TimeCodeEdit(&control);
    QObject::connect(edit, &TimeCodeEdit::editingFinished, &context,
                     [edit, commit = std::move(commit)] { commit(*edit); });
    QObject::connect(edit, &TimeCodeEdit::StartDrag, &control, &InputControl::OnEditStartDrag);
    QObject::connect(edit, &TimeCodeEdit::EndDrag, &control, &InputControl::OnEditEndDrag);
    return edit;
}

class NumberEditor final : public GenericEditor {
public:
    NumberEditor(GenericInputControl& control, Input& input) : GenericEditor(control, input)
    {
        edit_ =
            MakeNumberEdit(control, *connections_, [this](TimeCodeEdit& edit) { OnEdited(edit); });
        Append("edit", edit_);
    }

    void ReadAttributes() override
    {
        constexpr double any = std::numeric_limits<double>::max();
        const bool time = Flag(IC_Time);
        const MarloxDoc* document = input_.GetDoc();
        edit_->SetRange(input_.GetAttrD(IAD_Minimum, -any), input_.GetAttrD(IAD_Maximum, any));
        edit_->SetInteger(input_.GetAttrB(IA_Integer));
        edit_->SetTimeMode(time, document ? document->FrameRate() : 24.0);
        edit_->SetEditDisabled(Flag(IC_EditDisabled));
    }

    void ShowValue(const Parameter& value) override { edit_->SetValue(NumberOf(&value)); }

private:
    void OnEdited(TimeCodeEdit& edit)
    {
        if (edit.IsExpressionText())
            control_.SendExpression(input_, edit.ExpressionText());
        else
            Send(MakeRef<Number>(edit.GetValue()));
    }

    TimeCodeEdit* edit_;
};

class PointEditor final : public GenericEditor {
public:
    PointEditor(GenericInputControl& control, Input& input) : GenericEditor(control, input)
    {
        const auto edited = [this](TimeCodeEdit& edit) { OnEdited(edit); };
        x_ = MakeNumberEdit(control, *connections_, edited);
        y_ = MakeNumberEdit(control, *connections_, edited);
        for (TimeCodeEdit* edit : {x_, y_})
            edit->SetShownDecimals(5); // finer than a pixel; typing shows them all
        Append("edit", x_, " X");
        Append("edity", y_, " Y");
    }

    void ReadAttributes() override
    {
        x_->SetEditDisabled(Flag(IC_EditDisabled));
        y_->SetEditDisabled(Flag(IC_EditDisabled));
    }

    void ShowValue(const Parameter& value) override
    {
        if (const auto* point = dynamic_cast<const Point*>(&value)) {
            x_->SetValue(point->X());
            y_->SetValue(point->Y());
            z_ = point->Z();
        }
    }

private:
    void OnEdited(TimeCodeEdit& edit)
    {
        if (edit.IsExpressionText())
            edit.MarkUnreadable(tr("A point takes one expression for both numbers: add it from the "
                                   "context menu"));
        else
            Send(MakeRef<Point>(x_->GetValue(), y_->GetValue(), z_));
    }

    TimeCodeEdit* x_;
    TimeCodeEdit* y_;
    double z_ = 0.0;
};

class TextEditor final : public GenericEditor {
public:
    TextEditor(GenericInputControl& control, Input& input) : GenericEditor(control, input)
    {
        edit_ = new MxLineEdit(&control);
        QObject::connect(edit_, &MxLineEdit::Committed, connections_.get(),
                         [this](const QString& text) { Send(MakeRef<Text>(text.toStdString())); });
        Append("edit", edit_);
    }

    void ReadAttributes() override { ApplyReadOnly(); }

    void ShowValue(const Parameter& value) override
    {
        const auto* text = dynamic_cast<const Text*>(&value);
        const QString shown = text ? QString::fromStdString(text->GetValue()) : QString();
        severalLines_ = shown.contains('\n');
        ApplyReadOnly();
        if (edit_->CommittedText() != shown)
            edit_->setText(shown);
    }

private:
    /// One line can't hold several: typing in it would lose the breaks.
    void ApplyReadOnly()
    {
        edit_->setReadOnly(severalLines_ || Flag(IC_EditDisabled));
        edit_->setToolTip(severalLines_ ? tr("A text of several lines: shown, not edited here")
                                        : QString());
    }

    MxLineEdit* edit_;
    bool severalLines_ = false;
};

template <class Editor>
std::unique_ptr<GenericEditor> MakeA(GenericInputControl& control, Input& input)
{
    return std::make_unique<Editor>(control, input);
}

constexpr struct {
    const char* dataType;
    std::unique_ptr<GenericEditor> (*make)(GenericInputControl&, Input&);
} editors[] = {
    {CLSID_DataType_Number, MakeA<NumberEditor>},
    {CLSID_DataType_Point, MakeA<PointEditor>},
    {CLSID_DataType_Text, MakeA<TextEditor>},
};

} // namespace

GenericEditor::~GenericEditor()
{
    connections_.reset(); // hiding takes the focus, which would commit
    for (const Part& part : parts_) {
        part.widget->setObjectName({}); // the name is the next one's
        part.widget->hide();
        part.widget->deleteLater();
    }
}

bool GenericEditor::Has(const QWidget* widget) const
{
    return std::any_of(parts_.begin(), parts_.end(), [widget](const Part& part) {
        return part.widget == widget || (widget && part.widget->isAncestorOf(widget));
    });
}

std::unique_ptr<GenericEditor> GenericEditor::Make(GenericInputControl& control, Input& input)
{
    for (const auto& editor : editors) {
        if (input.GetDataType() == MxID(editor.dataType))
            return editor.make(control, input);
    }
    return nullptr;
}

void GenericEditor::Append(const char* name, QWidget* widget, const char* which)
{
    widget->setObjectName(name);
    widget->setAccessibleName(input_.GetName() + which);
    parts_.push_back({name, widget});
}

bool GenericEditor::Flag(u32 tag) const
{
    return control_.GetAttrB(tag, input_.GetAttrB(tag));
}

void GenericEditor::Send(const Ref<Parameter>& value)
{
    control_.SendValue(input_, *value);
}

} // namespace Marlox
