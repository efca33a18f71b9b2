// The host's dialogs for controls, as Qt's.

#include "system/controls/HostDialogs_p.h"
#include "system/controls/MessageBox.h"
#include "system/resources/Resources.h"
#include "system/widgets/TimeCodeEdit.h"

#include <algorithm>
#include <iterator>

#include <QApplication>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QVBoxLayout>

namespace Marlox {

namespace {

constexpr MxColor errorText{255, 140, 140};

QString words(const char* text)
{
    return QCoreApplication::translate("HostDialogs", text);
}

/// One field below a label, with OK and Cancel.
class FieldDialog : public QDialog {
public:
    FieldDialog(const char* name, const QString& title, const QString& label, QWidget& field)
        : QDialog(QApplication::activeWindow()), label_(new QLabel(label)), problem_(new QLabel),
          buttons_(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel))
    {
        setObjectName(name);
        setWindowTitle(title.isEmpty() ? QCoreApplication::applicationName() : title);
        constexpr int margin = 16;
        constexpr int narrowest = 320;
        constexpr int widest = 480;
        label_->setTextFormat(Qt::PlainText);
        const int width = label_->sizeHint().width() + 2 * margin;
        label_->setWordWrap(width > widest);
        label_->setBuddy(&field);
        field.setAccessibleName(label);
        problem_->setTextFormat(Qt::PlainText);
        problem_->setWordWrap(true);
        QPalette wrong = problem_->palette();
        wrong.setColor(QPalette::WindowText,
                       LookPack::Global().Color("System.ErrorTextColour", errorText).ToQColor());
        problem_->setPalette(wrong);
        problem_->hide();
        connect(buttons_, &QDialogButtonBox::accepted, this, &FieldDialog::accept);
        connect(buttons_, &QDialogButtonBox::rejected, this, &FieldDialog::reject);
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(margin, margin, margin, margin);
        layout->setSpacing(8);
        layout->addWidget(label_);
        layout->addWidget(&field);
        layout->addWidget(problem_);
        layout->addSpacing(8);
        layout->addWidget(buttons_);
        setMinimumWidth(std::clamp(width, narrowest, widest));
        label_->setVisible(!label.isEmpty());
        resize(minimumWidth(), layout->totalHeightForWidth(minimumWidth()));
        field.setFocus();
    }

    /// Asked before OK closes the dialog: why the field won't do; empty: it will.
    std::function<QString()> objection;

    void ShowProblem(const QString& text)
    {
        problem_->setText(text);
        problem_->setVisible(!text.isEmpty());
    }

protected:
    void accept() override
    {
        const QString text = objection ? objection() : QString();
        ShowProblem(text);
        if (text.isEmpty())
            QDialog::accept();
    }

private:
    QLabel* label_;
    QLabel* problem_;
    QDialogButtonBox* buttons_;
};

QMessageBox::Icon iconOf(HostDialogs::Kind kind)
{
    switch (kind) {
    case HostDialogs::Kind::Information:
        return QMessageBox::Information;
    case HostDialogs::Kind::Warning:
        return QMessageBox::Warning;
    default:
        return QMessageBox::Critical;
    }
}

/// Adds the suffix of the filter that is chosen, however it was.
class SaveDialog : public QFileDialog {
public:
    using QFileDialog::QFileDialog;
    std::function<QString(const QString& filter)> suffixOf;

protected:
    void accept() override
    {
        setDefaultSuffix(suffixOf(selectedNameFilter()));
        QFileDialog::accept();
    }
};

/// In the folder that was kept, with the name proposed.
void prepare(QFileDialog& dialog, const HostDialogs::FileRequest& request)
{
    dialog.setObjectName("file");
    const QStringList filters = HostDialogs::QtFilters(request.filter);
    dialog.setNameFilters(filters.isEmpty() ? QStringList(words("All Files (*)")) : filters);
    if (!request.pathId.isEmpty())
        dialog.setDirectory(HostDialogs::FolderOf(request.pathId));
    if (request.fileName.isEmpty())
        return;
    const QFileInfo proposed(request.fileName);
    if (proposed.path() != QLatin1String("."))
        dialog.setDirectory(proposed.absoluteDir());
    dialog.selectFile(proposed.fileName());
}

/// Of the first pattern of a filter ("Polyline Files (*.dfmo)"); empty: it is of any.
QString extensionOf(const QString& filter)
{
    static const QRegularExpression pattern(QStringLiteral("\\*(\\.\\w+)[^()]*\\)$"));
    return pattern.match(filter).captured(1);
}

QString run(QFileDialog& dialog, const HostDialogs::FileRequest& request)
{
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    const QString path = dialog.selectedFiles().first();
    HostDialogs::KeepFolderOf(request.pathId, path);
    return path;
}

/// Names the fields for scripts, as QColorDialog does not. It makes them in this order.
void nameFields(const QColorDialog& dialog)
{
    static constexpr const char* names[] = {"hue",   "saturation", "value", "red",
                                            "green", "blue",       "alpha"};
    const QList<QSpinBox*> numbers = dialog.findChildren<QSpinBox*>();
    const bool withAlpha = dialog.testOption(QColorDialog::ShowAlphaChannel);
    const int count = int(std::size(names)) - (withAlpha ? 0 : 1);
    for (int i = 0; i < std::min(numbers.size(), count); ++i)
        numbers[i]->setObjectName(names[i]);
    for (QLineEdit* line : dialog.findChildren<QLineEdit*>()) {
        if (line->objectName().isEmpty()) // those of the numbers have one
            line->setObjectName("html");
    }
}

MxColor toMxColor(const QColor& color)
{
    return {color.red(), color.green(), color.blue(), color.alpha()};
}

} // namespace

void QtHostDialogs::Message(Kind kind, const QString& text, const QString& details)
{
    MessageBox box(QApplication::activeWindow(), "message", iconOf(kind), text, details);
    box.setStandardButtons(QMessageBox::Ok);
    box.setDefaultButton(QMessageBox::Ok);
    box.exec();
}

HostDialogs::Answer QtHostDialogs::Ask(const QString& text, const QString& details, bool cancel)
{
    MessageBox box(QApplication::activeWindow(), "question", QMessageBox::Question, text, details);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    if (cancel)
        box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(cancel ? QMessageBox::Cancel : QMessageBox::No); // of Escape and closing
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    default:
        return cancel ? Answer::Cancel : Answer::No;
    }
}

std::optional<QString> QtHostDialogs::AskText(const TextRequest& request)
{
    QLineEdit* line = request.manyLines ? nullptr : new QLineEdit(request.preset);
    QPlainTextEdit* lines = request.manyLines ? new QPlainTextEdit(request.preset) : nullptr;
    QWidget& field = lines ? static_cast<QWidget&>(*lines) : *line;
    field.setObjectName("text");
    FieldDialog dialog("asktext", request.title, request.label, field);
    const auto text = [line, lines] { return lines ? lines->toPlainText() : line->text(); };
    if (request.problem)
        dialog.objection = [&] { return request.problem(text()); };
    if (line)
        line->selectAll();
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return text();
}

std::optional<double> QtHostDialogs::AskNumber(const NumberRequest& request)
{
    auto* edit = new TimeCodeEdit;
    edit->setObjectName("number");
    edit->SetInteger(request.integer);
    edit->SetRange(request.minimum, request.maximum);
    edit->SetValue(request.preset);
    FieldDialog dialog("asknumber", request.title, request.label, *edit);
    dialog.objection = [edit] {
        if (edit->Commit() && edit->IsExpressionText())
            edit->MarkUnreadable(words("A number is wanted here."));
        return edit->Problem();
    };
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return edit->GetValue();
}

QString QtHostDialogs::OpenFile(const FileRequest& request)
{
    QFileDialog dialog(QApplication::activeWindow(),
                       request.title.isEmpty() ? words("Open") : request.title);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    prepare(dialog, request);
    return run(dialog, request);
}

QString QtHostDialogs::SaveFile(const FileRequest& request)
{
    SaveDialog dialog(QApplication::activeWindow(),
                      request.title.isEmpty() ? words("Save As") : request.title);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    prepare(dialog, request);
    const auto extension = [&request](const QString& filter) {
        return request.defaultExtension.isEmpty() ? extensionOf(filter) : request.defaultExtension;
    };
    // The dialog's own suffix follows the same rule; with it, it asks about the right file.
    dialog.suffixOf = extension;
    dialog.setDefaultSuffix(extension(dialog.selectedNameFilter()));
    const QString path = run(dialog, request);
    if (request.filterChosen)
        *request.filterChosen = dialog.nameFilters().indexOf(dialog.selectedNameFilter());
    return WithDefaultExtension(path, extension(dialog.selectedNameFilter()));
}

std::optional<MxColor> QtHostDialogs::ChooseColor(const ColorRequest& request)
{
    QColorDialog dialog(request.preset.ToQColor(), QApplication::activeWindow());
    dialog.setObjectName("color");
    if (!request.title.isEmpty())
        dialog.setWindowTitle(request.title);
    dialog.setOption(QColorDialog::ShowAlphaChannel, request.alpha);
    nameFields(dialog);
    if (request.preview)
        QObject::connect(&dialog, &QColorDialog::currentColorChanged, &dialog,
                         [&](const QColor& color) { request.preview(toMxColor(color)); });
    if (dialog.exec() == QDialog::Accepted)
        return toMxColor(dialog.selectedColor());
    if (request.preview)
        request.preview(request.preset);
    return {};
}

} // namespace Marlox
