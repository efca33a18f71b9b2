#pragma once

#include "controls/polyline/OnionSkinSettings.h"
#include "system/controls/MxDialog.h"

class QButtonGroup;
class QRadioButton;

namespace Marlox {

class CustomCheckBox;
class TimeCodeEdit;

/// Asks for the settings of onion skins. What was set is asked for when exec says Accepted, or to
/// show it meanwhile; the dialog changes nothing itself. Without a parent it stands over the active
/// window.
class OnionSkinningDlg final : public MxDialog {
    Q_OBJECT
public:
    /// `framesPerSecond` is for a step shown as a time code.
    OnionSkinningDlg(const OnionSkinSettings& settings, double framesPerSecond,
                     QWidget* parent = nullptr);

    const OnionSkinSettings& Settings() const { return settings_; }

signals:
    void Changed();

public slots:
    void OnChangeEditSkinCount();
    void OnChangeEditSkinStep();
    void OnRadioButton(int id);
    void OnClickKeySkin();
    void OnClickOnionAnchor();
    void OnClickPointPlot();
    void OnClickShowHull();
    void OnClickSetCurrentTime();
    /// Stays open while an edit holds what is no number.
    void accept() override;

private:
    TimeCodeEdit* AddEdit(const char* label, const char* edit, const QString& text,
                          const QString& help);
    CustomCheckBox* AddCheck(const char* name, const QString& text, const QString& help,
                             void (OnionSkinningDlg::*slot)());
    void AddRange();
    void SetUp();
    void ShowStepUse();

    OnionSkinSettings settings_;
    TimeCodeEdit* count_;
    TimeCodeEdit* step_;
    CustomCheckBox* keySkin_;
    QButtonGroup* range_ = nullptr;
    CustomCheckBox* anchor_;
    CustomCheckBox* pointPlot_;
    CustomCheckBox* showHull_;
    CustomCheckBox* setTime_;
};

} // namespace Marlox
