#include "controls/polyline/ImportShapeDlg.h"

#include "system/resources/LookStyle.h"
#include "system/resources/Resources.h"
#include "system/widgets/CustomCheckBox.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>

namespace Marlox {

namespace {

const ResData layoutResource("Dialogs.ImportShape.Layout");

} // namespace

ImportShapeDlg::ImportShapeDlg(int shapeCount, const QStringList& names, QWidget* parent)
    : MxDialog(parent ? parent : QApplication::activeWindow()), shape_(new QComboBox(this)),
      name_(new QLabel(this)), all_(new CustomCheckBox(this))
{
    setObjectName("ImportShapeDlg");
    setWindowTitle(tr("Import Shapes"));
    auto* label = new QLabel(tr("Shape to import to this mask:"), this);
    label->setObjectName("m_ImportIndexLabel");
    label->setBuddy(shape_);
    for (QLabel* each : {label, name_})
        each->setIndent(checkRingRoom);
    shape_->setObjectName("m_ImportIndexCombo");
    shape_->setAccessibleName(label->text().remove(u':'));
    name_->setObjectName("m_ImportNameLabel");
    name_->setTextFormat(Qt::PlainText);
    name_->setVisible(!names.isEmpty());
    all_->setObjectName("m_ImportAllCheck");
    all_->setText(tr("Import all shapes"));
    all_->setToolTip(tr("The other shapes become masks of their own."));
    SetUp(shapeCount, names);
    MakeOKCancel("m_OKCancel");
    LoadLayout(layoutResource.Name());
    shape_->setFocus();
}

void ImportShapeDlg::SetUp(int shapeCount, const QStringList& names)
{
    for (int i = 0; i < shapeCount; ++i) {
        shape_->addItem(QString::number(i));
        if (i < names.size())
            shape_->setItemData(i, names[i], Qt::ToolTipRole);
    }
    shape_->addItem(tr("none"));
    shape_->setCurrentIndex(0);
    setResult(QDialog::Rejected);
    OnSelChangeShapeIndex(0);
    connect(shape_, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &ImportShapeDlg::OnSelChangeShapeIndex);
    connect(all_, &CustomCheckBox::CheckChanged, this, &ImportShapeDlg::OnCheckImportAllShape);
}

void ImportShapeDlg::OnSelChangeShapeIndex(int index)
{
    const bool none = index < 0 || index == shape_->count() - 1;
    choice_.shape = none ? std::nullopt : std::optional(index);
    const QString name = shape_->itemData(index, Qt::ToolTipRole).toString();
    shape_->setToolTip(name);
    constexpr int room = 288; // pixels
    name_->setText(name.isEmpty() ? QString()
                                  : name_->fontMetrics().elidedText(tr("Name: %1").arg(name),
                                                                    Qt::ElideRight, room));
}

void ImportShapeDlg::OnCheckImportAllShape()
{
    choice_.all = all_->isChecked();
}

} // namespace Marlox
