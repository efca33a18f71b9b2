#pragma once

#include "system/base/Types.h"

#include <QDialog>

class QDialogButtonBox;

namespace Marlox {

class LayoutObj;
class ScriptVal;

/// A dialog whose widgets stand in a layout of the look pack. It makes its widgets as children,
/// names them (objectName) and loads the layout, where each takes the place of its name; the
/// keyboard goes through them in the order they were made. Without a usable layout, which the look
/// pack tells, they stand one below the other.
class MARLOXSYSTEM_EXPORT MxDialog : public QDialog {
    Q_OBJECT
public:
    explicit MxDialog(QWidget* parent = nullptr, Qt::WindowFlags flags = {});
    ~MxDialog() override;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    /// Once, when all widgets are there; widgets without a place are hidden.
    void LoadLayout(const char* resourceName);
    /// The same with a layout that the dialog describes itself, as a layout file would.
    void UseLayout(const ScriptVal& description);
    /// A box with OK and Cancel, joined to accept and reject; OK is the default button.
    QDialogButtonBox* MakeOKCancel(const char* name);

    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QSize Wanted() const;
    void FitLayout();

    LayoutObj* layout_ = nullptr; // ours as the child that it is
};

} // namespace Marlox
