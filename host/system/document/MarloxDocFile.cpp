#include "system/base/ScriptServices.h"
#include "system/document/Autosave.h"
#include "system/document/DocumentText.h"
#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <utility>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace Marlox {

namespace {

constexpr qint64 largestFile = 256 << 20; // bytes; far above any document, far below memory

void tell(QString* error, const QString& text)
{
    if (error)
        *error = text;
}

QString shown(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

bool readFile(const QString& path, DocumentContent& out, QString* error)
{
    QFile file(path);
    QString fault;
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) // a folder or a device, which might never end
        fault = MarloxDoc::tr("it is no file");
    else if (!file.open(QIODevice::ReadOnly))
        fault = file.errorString();
    else if (file.size() > largestFile)
        fault = MarloxDoc::tr("it is too large for a document");
    else if (QByteArray bytes = file.readAll(); file.error() != QFileDevice::NoError)
        fault = file.errorString();
    else if (bytes.trimmed().isEmpty())
        fault = MarloxDoc::tr("it is empty");
    else if (ReadDocument((bytes.startsWith("\xef\xbb\xbf") ? bytes.mid(3) : bytes).toStdString(),
                          out, fault))
        return true;
    tell(error,
         MarloxDoc::tr("The document \"%1\" could not be opened: %2").arg(shown(path), fault));
    return false;
}

} // namespace

void MarloxDoc::ReplaceContent(DocumentContent content)
{
    if (!proxyTools_.empty()) {
        proxyTools_.clear();
        emit AutoProxyChanged(false);
    }
    const auto gone = std::exchange(tools_, std::move(content.tools)); // alive until all are told
    for (const Ref<Operator>& tool : gone)
        tool->document_ = nullptr;
    for (const Ref<Operator>& tool : tools_)
        tool->document_ = this;
    first_ = content.first;
    last_ = content.last;
    frameRate_ = content.frameRate;
    time_ = std::clamp(content.time, first_, last_);
    notes_ = content.notes;
    undo_->Clear();
    emit Cleared();
    emit FrameRangeChanged(first_, last_);
    emit CurrentTimeChanged(time_);
}

void MarloxDoc::Clear()
{
    ReplaceContent({});
    SetFilePath({});
    undo_->Stack().setClean();
    if (autosave_)
        autosave_->RemoveCopy();
}

void MarloxDoc::SetFilePath(const QString& path)
{
    // The working folder may be another one when the document is saved.
    const QString absolute = path.isEmpty() ? path : QFileInfo(path).absoluteFilePath();
    if (absolute == path_)
        return;
    path_ = absolute;
    emit FilePathChanged(path_);
}

std::string MarloxDoc::ToText() const
{
    return TextWithOrigin({});
}

std::string MarloxDoc::TextWithOrigin(const QString& origin) const
{
    ScriptServices* services = ScriptServices::Installed();
    if (!services)
        return {};
    ScriptVal table = ScriptVal::MakeTable();
    table.Set("Format", DocumentFormat);
    table.Set("Version", DocumentVersion);
    if (!origin.isEmpty())
        table.Set("Origin", origin.toStdString());
    ScriptVal range = ScriptVal::MakeTable();
    range.Append(first_);
    range.Append(last_);
    table.Set("FrameRange", range);
    table.Set("FrameRate", frameRate_);
    table.Set("CurrentTime", time_);
    ScriptVal tools = ScriptVal::MakeTable();
    for (const Ref<Operator>& tool : tools_) {
        ScriptVal entry;
        tool->SaveState(entry);
        tools.Append(entry);
    }
    table.Set("Tools", tools);
    return services->FormatValue(table, true) + "\n";
}

bool MarloxDoc::FromText(const std::string& text, QString* error)
{
    DocumentContent content;
    QString fault;
    if (!ReadDocument(text, content, fault)) {
        tell(error, fault);
        return false;
    }
    ReplaceContent(std::move(content));
    undo_->Stack().resetClean();
    return true;
}

bool MarloxDoc::Open(const QString& path, QString* error)
{
    DocumentContent content;
    if (!readFile(path, content, error))
        return false;
    ReplaceContent(std::move(content));
    undo_->Stack().setClean();
    if (autosave_)
        autosave_->RemoveCopy();
    SetFilePath(path);
    return true;
}

bool MarloxDoc::Save(const QString& path, QString* error)
{
    const std::string text = ToText();
    QString fault = tr("documents need the script library, which is not loaded");
    bool saved = false;
    if (!text.empty()) {
        QSaveFile file(path);
        saved = file.open(QIODevice::WriteOnly) &&
                file.write(text.data(), qint64(text.size())) == qint64(text.size()) &&
                file.commit();
        fault = file.errorString();
    }
    if (!saved) {
        tell(error, tr("The document \"%1\" could not be saved: %2").arg(shown(path), fault));
        return false;
    }
    // In the middle of a gesture the file holds what no entry of the history leads to.
    if (undo_->HasOpenChanges())
        undo_->Stack().resetClean();
    else
        undo_->Stack().setClean();
    if (autosave_)
        autosave_->RemoveCopy();
    SetFilePath(path);
    return true;
}

void MarloxDoc::StartAutosave(const QString& folder, int intervalSeconds)
{
    autosave_ = std::make_unique<Autosave>(*this, folder, intervalSeconds);
    if (IsModified())
        autosave_->Schedule();
}

void MarloxDoc::StopAutosave()
{
    autosave_.reset();
}

QStringList MarloxDoc::RecoveryFiles(const QString& folder)
{
    return Autosave::Leftovers(folder);
}

bool MarloxDoc::Recover(const QString& copy, QString* error)
{
    DocumentContent content;
    if (!readFile(copy, content, error))
        return false;
    const QString origin = content.origin;
    ReplaceContent(std::move(content));
    undo_->Stack().resetClean();
    SetFilePath(origin);
    if (autosave_) {
        autosave_->RemoveCopy();
        autosave_->AdoptLeftover(copy);
        autosave_->Schedule();
    }
    return true;
}

} // namespace Marlox
