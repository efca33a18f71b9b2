#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;
class QScrollArea;

namespace Marlox {

class ControlWnd;
class Operator;
class Session;

/// The inspector: the name of the selected tool and its controls in a scroll area.
class InspectorPanel : public QWidget {
    Q_OBJECT
public:
    explicit InspectorPanel(Session& session, QWidget* parent = nullptr);

    ControlWnd& Page() { return *page_; }

signals:
    void Problem(const QString& text); // for the status line

private:
    void ShowTool(Operator* tool);
    void ShowHeader();

    Session& session_;
    QLineEdit* name_;
    QLabel* type_;
    QScrollArea* scroll_;
    ControlWnd* page_;
};

} // namespace Marlox
