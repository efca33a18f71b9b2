#pragma once

#include "system/controls/MxDialog.h"

#include <optional>

#include <QStringList>

class QComboBox;
class QLabel;

namespace Marlox {

class CustomCheckBox;

/// Which shapes of a file to import.
struct ImportShapeChoice {
    std::optional<int> shape; // the one for this mask, from 0; none
    bool all = false;         // the others too, as masks of their own

    friend bool operator==(const ImportShapeChoice&, const ImportShapeChoice&) = default;
};

/// Asks which of a file's shapes this mask takes, and whether the others come along. The choice is
/// asked for when exec says Accepted. Without a parent it stands over the active window.
class ImportShapeDlg final : public MxDialog {
    Q_OBJECT
public:
    /// `names` of the shapes, as far as they have some, are shown with their numbers.
    explicit ImportShapeDlg(int shapeCount, const QStringList& names = {},
                            QWidget* parent = nullptr);

    const ImportShapeChoice& Choice() const { return choice_; }

public slots:
    void OnSelChangeShapeIndex(int index);
    void OnCheckImportAllShape();

private:
    void SetUp(int shapeCount, const QStringList& names);

    ImportShapeChoice choice_;
    QComboBox* shape_;
    QLabel* name_; // of the shape chosen
    CustomCheckBox* all_;
};

} // namespace Marlox
