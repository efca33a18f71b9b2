#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;

namespace Marlox {

class Session;

/// Renders a range of frames at full resolution to files, off the interface's thread, with progress
/// and Cancel. What was written before a cancel stays.
class ExportDlg : public QDialog {
    Q_OBJECT
public:
    explicit ExportDlg(Session& session, QWidget* parent = nullptr);

    void reject() override; // cancels a running export first

private:
    void Browse();
    QString Objection() const;
    void Start();
    void ShowRunning(bool running);
    bool RenderFrame(int frame, QString* error);

    Session& session_;
    QLineEdit* pattern_;
    QSpinBox* first_;
    QSpinBox* last_;
    QProgressBar* progress_;
    QLabel* state_;
    QPushButton* start_;
    QPushButton* close_ = nullptr;
    bool running_ = false;
    bool cancelled_ = false;
};

} // namespace Marlox
