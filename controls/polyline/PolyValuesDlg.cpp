#include "controls/polyline/PolyValuesDlg.h"

#include "controls/polyline/PolyNumbers.h"
#include "system/resources/LookStyle.h"
#include "system/widgets/CustomCheckBox.h"
#include "widgets/CustomSlider.h"

#include <algorithm>
#include <cmath>

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>

namespace Marlox {

namespace {

constexpr int decimals = 3;
constexpr int rhythm = 8; // pixels, as all below
constexpr int rowHeight = 24;
constexpr int editWidth = 88;
constexpr int besideSlider = 72; // width of an edit there
constexpr int leastSlider = 184;

/// A node of a layout, with its attributes.
ScriptVal Node(const char* type, const std::vector<ScriptVal::Field>& attributes)
{
    ScriptVal node;
    node.Append(type);
    for (const auto& [name, value] : attributes)
        node.Set(name, value);
    return node;
}

/// The place of a widget, which may be missing, with a width of its own.
ScriptVal Place(const QWidget* widget, int width)
{
    ScriptVal place =
        Node(widget ? "Item" : "Spacer", {{"Weight", 0}, {"MinWidth", width}, {"MaxWidth", width}});
    if (widget)
        place.Set("Name", widget->objectName().toStdString());
    return place;
}

/// What takes the room that is left.
ScriptVal Flexible(const QWidget* widget, int least)
{
    ScriptVal place = Node(widget ? "Item" : "Spacer", {{"MinWidth", least}});
    if (widget)
        place.Set("Name", widget->objectName().toStdString());
    return place;
}

/// Width of a column of labels; 0: there is none.
int Wider(int width, const QLabel* label)
{
    const int own = label ? label->sizeHint().width() : 0;
    return std::max(width, (own + rhythm - 1) / rhythm * rhythm);
}

} // namespace

PolyValuesDlg::PolyValuesDlg(const QString& title, const std::vector<PolyValueField>& fields,
                             Preview preview)
    : MxDialog(QApplication::activeWindow()), preview_(std::move(preview))
{
    setObjectName("PolyValuesDlg");
    setWindowTitle(title);
    for (const PolyValueField& field : fields)
        parts_.push_back(field.kind == PolyValueField::Check ? MakeCheck(field)
                                                             : MakeNumber(field));
    note_ = new QLabel(this);
    note_->setObjectName("m_Note");
    note_->setTextFormat(Qt::PlainText);
    AlignWithChecks();
    MakeOKCancel("m_OKCancel");
    UseLayout(Layout());
    soon_.setSingleShot(true);
    soon_.setInterval(0);
    connect(&soon_, &QTimer::timeout, this, &PolyValuesDlg::ShowPreview);
    ShowPreview();
    if (!parts_.empty() && parts_.front().edit) {
        parts_.front().edit->setFocus();
        parts_.front().edit->selectAll();
    }
}

void PolyValuesDlg::AlignWithChecks()
{
    if (std::none_of(parts_.begin(), parts_.end(), [](const Part& part) { return part.check; }))
        return;
    note_->setIndent(checkRingRoom);
    for (const Part& part : parts_) {
        if (part.label)
            part.label->setIndent(checkRingRoom);
    }
}

PolyValuesDlg::Part PolyValuesDlg::MakeNumber(const PolyValueField& field)
{
    const QString name = QString::fromLatin1(field.name);
    Part part;
    const auto text = [&](const char* prefix, const QString& shown) {
        auto* label = new QLabel(shown, this);
        label->setObjectName(prefix + name);
        label->setTextFormat(Qt::PlainText);
        return label;
    };
    if (!field.label.isEmpty())
        part.label = text("m_Label", field.label);
    auto* edit = part.edit = new TimeCodeEdit(this);
    if (field.kind == PolyValueField::Slider)
        part.slider = JoinSlider(*edit, field);
    if (!field.unit.isEmpty())
        part.unit = text("m_Unit", field.unit);
    edit->setObjectName("m_Edit" + name);
    edit->setAccessibleName(part.label ? QString(field.label).remove(u':') : field.help);
    edit->setToolTip(field.help);
    edit->SetInteger(field.whole);
    edit->SetRange(field.minimum, field.maximum);
    edit->SetStep(field.step);
    edit->SetShownDecimals(decimals);
    edit->SetValue(field.value);
    if (part.label)
        part.label->setBuddy(edit);
    connect(edit, &TimeCodeEdit::editingFinished, this, [this, edit] {
        if (HoldsNumber(*edit))
            soon_.start();
    });
    return part;
}

PolyValuesDlg::Part PolyValuesDlg::MakeCheck(const PolyValueField& field)
{
    Part part;
    part.check = new CustomCheckBox(field.label, this);
    part.check->setObjectName("m_Check" + QString::fromLatin1(field.name));
    part.check->setToolTip(field.help);
    part.check->setChecked(field.value != 0.0);
    connect(part.check, &CustomCheckBox::CheckChanged, this, [this] { soon_.start(); });
    return part;
}

CustomSlider* PolyValuesDlg::JoinSlider(TimeCodeEdit& edit, const PolyValueField& field)
{
    auto* slider = new CustomSlider(this);
    slider->setObjectName("m_Slider" + QString::fromLatin1(field.name));
    slider->setAccessibleName(QString(field.label).remove(u':'));
    slider->SetHelp(field.help);
    slider->SetRange(field.minimum, field.sliderEnd, false);
    slider->SetSteps(field.step / 10.0, field.step);
    slider->SetTickFreq(0);
    slider->SetCentred(false);
    slider->ShowValue(field.value);
    const double fine = field.step / 10.0;
    connect(slider, &CustomSlider::ValueChanged, this, [this, &edit, fine](double value) {
        edit.SetValue(std::round(value / fine) * fine, decimals);
        soon_.start();
    });
    connect(&edit, &TimeCodeEdit::editingFinished, slider,
            [slider, &edit] { slider->ShowValue(edit.GetValue()); });
    return slider;
}

ScriptVal PolyValuesDlg::Layout() const
{
    int labelWidth = 0;
    int unitWidth = 0;
    bool hasPairs = false;
    for (const Part& part : parts_) {
        labelWidth = Wider(labelWidth, part.label);
        unitWidth = Wider(unitWidth, part.unit);
        hasPairs = hasPairs || (part.edit && !part.label);
    }
    ScriptVal rows = Node("VGroup", {{"Margin", 2 * rhythm}, {"Spacing", rhythm}});
    for (std::size_t i = 0; i < parts_.size(); ++i) {
        const Part& first = parts_[i];
        if (first.check) {
            rows.Append(Node("Item", {{"Name", first.check->objectName().toStdString()},
                                      {"Weight", 0},
                                      {"MinHeight", rowHeight}}));
            continue;
        }
        const bool isPair = i + 1 < parts_.size() && parts_[i + 1].edit && !parts_[i + 1].label;
        const Part& last = parts_[isPair ? ++i : i];
        ScriptVal row =
            Node("HGroup", {{"Weight", 0}, {"Spacing", rhythm}, {"MinHeight", rowHeight}});
        const QLabel* const unit = last.unit ? last.unit : first.unit;
        row.Append(Place(first.label, labelWidth));
        row.Append(first.slider ? Flexible(first.slider, leastSlider)
                                : Flexible(first.edit, editWidth));
        if (first.slider) {
            row.Append(Place(first.edit, besideSlider));
        } else if (isPair) {
            row.Append(Flexible(last.edit, editWidth));
        } else if (hasPairs) { // as wide as a second edit, so that the first ones are alike
            ScriptVal rest = Node("HGroup", {{"MinWidth", editWidth}});
            rest.Append(Place(unit, unitWidth));
            rest.Append(Flexible(nullptr, 0));
            row.Append(rest);
        }
        if (unitWidth > 0)
            row.Append(Place(hasPairs && !isPair ? nullptr : unit, unitWidth));
        rows.Append(row);
    }
    rows.Append(Node("Item", {{"Name", "m_Note"}, {"Weight", 0}, {"MinHeight", 2 * rhythm}}));
    rows.Append(Node("Spacer", {{"MinHeight", rhythm}}));
    rows.Append(Node("Item", {{"Name", "m_OKCancel"}, {"Weight", 0}}));
    return rows;
}

PolyValuesDlg::Values PolyValuesDlg::GetValues() const
{
    Values values;
    for (const Part& part : parts_)
        values.push_back(part.edit ? part.edit->GetValue() : double(part.check->isChecked()));
    return values;
}

void PolyValuesDlg::ShowPreview()
{
    if (preview_)
        note_->setText(preview_(GetValues()));
}

void PolyValuesDlg::accept()
{
    for (const Part& part : parts_) {
        if (part.edit && !TakesNumber(*part.edit))
            return;
    }
    QDialog::accept();
}

} // namespace Marlox
