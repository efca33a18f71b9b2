#include "system/base/ScriptServices.h"
#include "system/document/Autosave.h"
#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <span>
#include <utility>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

// Documents as files: one script table, UTF-8, numbers in the C locale with 17 digits.
//
//     { Format = "marlox document", Version = 1, FrameRange = { 0, 100 }, FrameRate = 24,
//       CurrentTime = 12, Tools = { { Class = "Blur", Name = "Blur1", Inputs = { ... } } } }

namespace Marlox {

namespace {

constexpr char formatName[] = "marlox document";
constexpr int formatVersion = 1;
constexpr const char* knownFields[] = {"Format",    "Version",     "Origin", "FrameRange",
                                       "FrameRate", "CurrentTime", "Tools"};
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

} // namespace

/// What a file held, complete and checked, before it replaces anything.
struct MarloxDoc::Content {
    std::vector<Ref<Operator>> tools;
    double time = 0.0;
    double first = 0.0;
    double last = 100.0;
    double frameRate = 24.0;
    QString origin; // of an autosave copy: the path of the document
    QStringList notes;
};

namespace {

/// A field that is a finite number, or missing; false if it is anything else.
bool readNumber(const ScriptVal& table, const char* field, double& out)
{
    const ScriptVal& value = table.Get(field);
    if (value.IsNil())
        return true;
    out = value.ToNumber();
    return value.IsNumber() && std::isfinite(out);
}

bool readFrameRange(const ScriptVal& table, double& first, double& last)
{
    const ScriptVal& range = table.Get("FrameRange");
    if (range.IsNil())
        return true;
    first = range.At(1).ToNumber(NAN);
    last = range.At(2).ToNumber(NAN);
    return std::isfinite(first) && std::isfinite(last) && last >= first;
}

/// What the document has no use for, and what its connections look for in vain.
void noteLeftAside(const ScriptVal& table, std::span<const Ref<Operator>> tools, QStringList& notes)
{
    for (const auto& [name, value] : table.Fields()) {
        if (std::find(std::begin(knownFields), std::end(knownFields), name) ==
            std::end(knownFields))
            notes += MarloxDoc::tr("The field %1 is not known and was left out.")
                         .arg(QString::fromStdString(name));
    }
    std::set<std::string> names;
    for (const Ref<Operator>& tool : tools)
        names.insert(tool->GetName().toStdString());
    for (const Ref<Operator>& tool : tools) {
        for (const Ref<Input>& input : tool->Inputs()) {
            const std::string& source = input->GetState().source;
            if (!source.empty() && !names.contains(source))
                notes +=
                    MarloxDoc::tr("Tool \"%1\", input \"%2\": there is no tool \"%3\" to "
                                  "connect to.")
                        .arg(tool->GetName(), input->GetName(), QString::fromStdString(source));
        }
    }
}

QString readHeader(const ScriptVal& table)
{
    if (table.Get("Format").ToString() != formatName)
        return MarloxDoc::tr("it is no document of this program");
    const double version = table.Get("Version").ToNumber(-1.0);
    if (version > formatVersion)
        return MarloxDoc::tr("it was written by a newer version of this program (format %1; this "
                             "one reads up to %2)")
            .arg(version)
            .arg(formatVersion);
    return version < 1.0 ? MarloxDoc::tr("the field Version is missing") : QString();
}

} // namespace

bool MarloxDoc::ReadContent(const std::string& text, Content& out, QString& error) const
{
    ScriptServices* services = ScriptServices::Installed();
    ScriptVal table;
    if (!services) {
        error = tr("documents need the script library, which is not loaded");
        return false;
    }
    if (!services->ParseValue(text, table, &error))
        return false;
    if (error = readHeader(table); !error.isEmpty())
        return false;

    const auto wrong = [&error](const char* field) {
        error = tr("the field %1 has the wrong form").arg(QLatin1String(field));
        return false;
    };
    if (!readFrameRange(table, out.first, out.last))
        return wrong("FrameRange");
    if (!readNumber(table, "FrameRate", out.frameRate) || out.frameRate <= 0.0)
        return wrong("FrameRate");
    if (!readNumber(table, "CurrentTime", out.time))
        return wrong("CurrentTime");
    const ScriptVal& tools = table.Get("Tools");
    if (!tools.IsTable() || !tools.Fields().empty())
        return wrong("Tools");
    out.origin = QString::fromStdString(table.Get("Origin").ToString());
    for (const ScriptVal& entry : tools.Elements()) {
        if (!ReadTool(entry, out, error)) {
            error = tr("tool %1: %2").arg(out.tools.size() + 1).arg(error);
            return false;
        }
    }
    noteLeftAside(table, out.tools, out.notes);
    return true;
}

bool MarloxDoc::ReadTool(const ScriptVal& entry, Content& out, QString& error)
{
    const std::string toolClass = entry.Get("Class").ToString();
    const QString name = QString::fromStdString(entry.Get("Name").ToString()).simplified();
    if (toolClass.empty() || name.isEmpty()) {
        error = tr("its Class or its Name is missing");
        return false;
    }
    const auto named = [&name](const QString& fault) {
        return QStringLiteral("\"%1\": %2").arg(name, fault);
    };
    for (const Ref<Operator>& other : out.tools) {
        if (other->GetName() == name) {
            error = named(tr("two tools have this name"));
            return false;
        }
    }
    const Ref<Operator> tool = CreateTool(MxID(toolClass.c_str()), &error);
    if (!tool || !tool->RestoreState(entry, error, out.notes)) {
        error = named(error);
        return false;
    }
    out.tools.push_back(tool);
    return true;
}

void MarloxDoc::ReplaceContent(Content content)
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
    table.Set("Format", formatName);
    table.Set("Version", formatVersion);
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
    Content content;
    QString fault;
    if (!ReadContent(text, content, fault)) {
        tell(error, fault);
        return false;
    }
    ReplaceContent(std::move(content));
    undo_->Stack().resetClean();
    return true;
}

bool MarloxDoc::OpenFile(const QString& path, Content& out, QString* error) const
{
    QFile file(path);
    QString fault;
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) // a folder or a device, which might never end
        fault = tr("it is no file");
    else if (!file.open(QIODevice::ReadOnly))
        fault = file.errorString();
    else if (file.size() > largestFile)
        fault = tr("it is too large for a document");
    else if (QByteArray bytes = file.readAll(); file.error() != QFileDevice::NoError)
        fault = file.errorString();
    else if (bytes.trimmed().isEmpty())
        fault = tr("it is empty");
    else if (ReadContent((bytes.startsWith("\xef\xbb\xbf") ? bytes.mid(3) : bytes).toStdString(),
                         out, fault))
        return true;
    tell(error, tr("The document \"%1\" could not be opened: %2").arg(shown(path), fault));
    return false;
}

bool MarloxDoc::Open(const QString& path, QString* error)
{
    Content content;
    if (!OpenFile(path, content, error))
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
    Content content;
    if (!OpenFile(copy, content, error))
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
