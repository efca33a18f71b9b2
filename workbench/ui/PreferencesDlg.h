#pragma once

#include <QDialog>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QGroupBox;
class QSpinBox;

namespace Marlox {

class MarloxDoc;

/// The preferences that people set by hand. OK applies and keeps them, Cancel changes nothing.
class PreferencesDlg : public QDialog {
    Q_OBJECT
public:
    explicit PreferencesDlg(MarloxDoc& document, QWidget* parent = nullptr);

private slots:
    void OnOK();

private:
    QFormLayout* MakeGeneralForm();
    QGroupBox* MakeColorGroup();

    MarloxDoc& document_;
    QDoubleSpinBox* frameRate_;
    QComboBox* timeDisplay_;
    QComboBox* proxy_;
    QCheckBox* autosave_;
    QSpinBox* autosaveInterval_;
    QComboBox* colorMode_;
    QCheckBox* gammaCorrect_;
    QDoubleSpinBox* displayGamma_;
};

/// Names of preferences that several places read.
namespace PreferenceNames {
inline constexpr char ProxyDivisor[] = "Render.ProxyDivisor";          // int, 1 to 8
inline constexpr char AutosaveOn[] = "Document.Autosave";              // bool
inline constexpr char AutosaveInterval[] = "Document.AutosaveSeconds"; // int
} // namespace PreferenceNames

/// Where recovery copies are kept.
QString RecoveryFolder();

/// Applies the stored preferences to the document (proxy divisor, autosave).
void ApplyPreferences(MarloxDoc& document);

} // namespace Marlox
