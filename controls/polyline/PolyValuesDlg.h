#pragma once

#include "system/base/ScriptVal.h"
#include "system/controls/MxDialog.h"

#include <functional>
#include <vector>

#include <QString>
#include <QTimer>

class QLabel;

namespace Marlox {

class CustomCheckBox;
class CustomSlider;
class TimeCodeEdit;

/// One value that a PolyValuesDlg asks for.
struct PolyValueField {
    enum Kind { Number, Slider, Check };
    /// Of its widgets, behind "m_Label", "m_Edit", "m_Slider", "m_Check" and "m_Unit".
    const char* name;
    QString
        label;    // with its colon; of a check box the text; empty: it stands beside the one before
    QString unit; // behind it, or behind those that share its row
    QString help; // tooltip
    double value = 0.0;
    double minimum = 0.0;
    double maximum = 1.0;
    Kind kind = Number;
    double step = 1.0;
    bool whole = false;
    double sliderEnd = 1.0; // of a slider, which begins at the minimum
};

/// Asks for some values, a row for each label, and shows meanwhile what becomes of them. Numbers
/// take arithmetic. What was set is asked for when exec says Accepted; the dialog changes nothing
/// itself. Stands over the active window.
class PolyValuesDlg final : public MxDialog {
    Q_OBJECT
public:
    using Values = std::vector<double>; // in the order of the fields; of a check box 0 or 1
    /// Shows what the values make; returns what is to be told of it.
    using Preview = std::function<QString(const Values& values)>;

    PolyValuesDlg(const QString& title, const std::vector<PolyValueField>& fields, Preview preview);

    Values GetValues() const;

public slots:
    /// Stays open while a field holds what is no number.
    void accept() override;

private:
    struct Part {
        QLabel* label = nullptr;
        CustomSlider* slider = nullptr;
        TimeCodeEdit* edit = nullptr;
        QLabel* unit = nullptr;
        CustomCheckBox* check = nullptr;
    };
    Part MakeNumber(const PolyValueField& field);
    Part MakeCheck(const PolyValueField& field);
    CustomSlider* JoinSlider(TimeCodeEdit& edit, const PolyValueField& field);
    void AlignWithChecks();
    ScriptVal Layout() const;
    void ShowPreview();

    std::vector<Part> parts_;
    QLabel* note_ = nullptr;
    Preview preview_;
    QTimer soon_; // the preview of several changes at once
};

} // namespace Marlox
