#include "system/document/DocumentText.h"

#include "system/base/Registry.h"
#include "system/base/ScriptServices.h"
#include "system/document/MarloxDoc.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <span>

namespace Marlox {

namespace {

constexpr const char* knownFields[] = {"Format",    "Version",     "Origin", "FrameRange",
                                       "FrameRate", "CurrentTime", "Tools"};

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
    if (table.Get("Format").ToString() != DocumentFormat)
        return MarloxDoc::tr("it is no document of this program");
    const double version = table.Get("Version").ToNumber(-1.0);
    if (version > DocumentVersion)
        return MarloxDoc::tr("it was written by a newer version of this program (format %1; this "
                             "one reads up to %2)")
            .arg(version)
            .arg(DocumentVersion);
    return version < 1.0 ? MarloxDoc::tr("the field Version is missing") : QString();
}

bool readTool(const ScriptVal& entry, DocumentContent& out, QString& error)
{
    const std::string toolClass = entry.Get("Class").ToString();
    const QString name = QString::fromStdString(entry.Get("Name").ToString()).simplified();
    if (toolClass.empty() || name.isEmpty()) {
        error = MarloxDoc::tr("its Class or its Name is missing");
        return false;
    }
    const auto named = [&name](const QString& fault) {
        return QStringLiteral("\"%1\": %2").arg(name, fault);
    };
    for (const Ref<Operator>& other : out.tools) {
        if (other->GetName() == name) {
            error = named(MarloxDoc::tr("two tools have this name"));
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

} // namespace

bool ReadDocument(const std::string& text, DocumentContent& out, QString& error)
{
    ScriptServices* services = ScriptServices::Installed();
    ScriptVal table;
    if (!services) {
        error = MarloxDoc::tr("documents need the script library, which is not loaded");
        return false;
    }
    if (!services->ParseValue(text, table, &error))
        return false;
    if (error = readHeader(table); !error.isEmpty())
        return false;

    const auto wrong = [&error](const char* field) {
        error = MarloxDoc::tr("the field %1 has the wrong form").arg(QLatin1String(field));
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
        if (!readTool(entry, out, error)) {
            error = MarloxDoc::tr("tool %1: %2").arg(out.tools.size() + 1).arg(error);
            return false;
        }
    }
    noteLeftAside(table, out.tools, out.notes);
    return true;
}

Ref<Operator> CreateTool(const MxID& toolType, QString* error)
{
    const Registry* record = ClassRegistry::Global().Find(toolType);
    const bool isTool = record && record->Kind() == ClassKind::Tool;
    const Ref<Object> made(isTool ? ClassRegistry::Global().Create(toolType) : nullptr);
    auto* tool = dynamic_cast<Operator*>(made.Get());
    if (tool)
        return Ref<Operator>::Share(tool);
    if (error) {
        *error = isTool ? MarloxDoc::tr("the tool class \"%1\" could not make a tool")
                        : MarloxDoc::tr("there is no tool class \"%1\"");
        *error = error->arg(toolType.ToString());
    }
    return nullptr;
}

} // namespace Marlox
