#include "system/controls/MxDialog.h"

#include "system/base/ScriptServices.h"
#include "system/controls/Layout.h"
#include "system/resources/Resources.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QEvent>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace Marlox {

namespace {

constexpr int margin = 16; // pixels, without a layout
constexpr int spacing = 8;

LayoutObj* build(const ScriptVal& description, QWidget& host)
{
    ScriptServices* services = ScriptServices::Installed();
    if (!services || !description.IsTable())
        return nullptr;
    QString error;
    LayoutObj* root = services->BuildLayout(description, &host, nullptr, nullptr, &error);
    if (!root)
        qWarning("Layout of %s: %s", qPrintable(host.objectName()), qPrintable(error));
    return root;
}

} // namespace

MxDialog::MxDialog(QWidget* parent, Qt::WindowFlags flags) : QDialog(parent, flags)
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

MxDialog::~MxDialog() = default;

void MxDialog::LoadLayout(const char* resourceName)
{
    UseLayout(ResData::LayoutOf(resourceName));
}

void MxDialog::UseLayout(const ScriptVal& description)
{
    const auto widgets = findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    layout_ = build(description, *this);
    if (!layout_) {
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(margin, margin, margin, margin);
        column->setSpacing(spacing);
        for (QWidget* widget : widgets)
            column->addWidget(widget);
        return;
    }
    for (QWidget* widget : widgets) {
        LayoutObj* place = widget->objectName().isEmpty()
                               ? nullptr
                               : layout_->Find(MxID(widget->objectName().toStdString()));
        if (place)
            place->SetWidget(widget);
        else
            widget->hide();
    }
    setMinimumSize(Wanted());
}

QDialogButtonBox* MxDialog::MakeOKCancel(const char* name)
{
    auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    box->setObjectName(name);
    box->button(QDialogButtonBox::Ok)->setDefault(true);
    connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return box;
}

QSize MxDialog::Wanted() const
{
    int width = 0;
    int height = 0;
    layout_->MinimumSize(width, height);
    return {width, height};
}

QSize MxDialog::sizeHint() const
{
    return layout_ ? Wanted() : QDialog::sizeHint();
}

QSize MxDialog::minimumSizeHint() const
{
    return layout_ ? Wanted() : QDialog::minimumSizeHint();
}

bool MxDialog::event(QEvent* event)
{
    const bool used = QDialog::event(event);
    if (event->type() == QEvent::LayoutRequest && layout_) {
        setMinimumSize(Wanted());
        FitLayout();
    }
    return used;
}

void MxDialog::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    FitLayout();
}

void MxDialog::FitLayout()
{
    if (layout_)
        layout_->SetGeometry({0, 0, width(), height()});
}

} // namespace Marlox
