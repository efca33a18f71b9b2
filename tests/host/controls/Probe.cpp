#include "host/controls/Probe.h"

#include "script/ScriptSystem.h"
#include "system/base/HostClassIds.h"
#include "system/base/ScriptServices.h"

#include <QSpinBox>
#include <QtTest>

namespace Marlox {

ProbeSettings ProbeControl::settings;
QStringList ProbeControl::log;

namespace {

ProbeInputs& ToolInputs()
{
    static ProbeInputs inputs;
    return inputs;
}

class NoProcess : public ToolProcess {
public:
    Ref<Image> Run(const Ref<Image>& upstream, RenderContext&, QString&) override
    {
        return upstream;
    }
};

class ProbeTool : public Operator {
public:
    explicit ProbeTool(const Registry* record) : Operator(record)
    {
        if (ToolInputs())
            ToolInputs()(*this);
    }
    std::size_t SizeOf() const override { return sizeof(*this); }
    std::unique_ptr<ToolProcess> Prepare(double) const override
    {
        return std::make_unique<NoProcess>();
    }
};

Object* MakeTool(const Registry* record, const ScriptVal&, const TagList&)
{
    return new ProbeTool(record);
}

Object* MakeControl(const Registry* record, const ScriptVal& creator, const TagList& tags)
{
    return new ProbeControl(record, creator, tags);
}

const TagPair toolTags[] = {
    {REG_Kind, int(ClassKind::Tool)}, {REG_Create, CreateFunction(MakeTool)}, {}};
const TagPair controlTags[] = {{REG_Kind, int(ClassKind::InputControl)},
                               {REG_Create, CreateFunction(MakeControl)},
                               {REG_Parent, &InputControl::ClassID},
                               {}};
const MxID nestID(CLSID_InputControl_Nest);
const TagPair headingTags[] = {{REG_Kind, int(ClassKind::InputControl)},
                               {REG_Create, CreateFunction(MakeControl)},
                               {REG_Parent, &nestID},
                               {}};

const Registry toolRecord("ProbeTool", toolTags);
const Registry controlRecord("ProbeControl", controlTags);
const Registry headingRecord("ProbeHeading", headingTags); // a ProbeControl too

QString IdOf(const Input* input)
{
    return input ? input->GetID().ToString() : QStringLiteral("-");
}

} // namespace

void SetProbeInputs(ProbeInputs inputs)
{
    ToolInputs() = std::move(inputs);
}

TagList ProbeAttributes(const char* name, std::initializer_list<TagPair> more)
{
    TagList tags({{IAS_Name, name}, {IAS_Control, "ProbeControl"}});
    for (const TagPair& pair : more)
        tags.Set(u32(pair.tag), pair.value);
    return tags;
}

ProbeInputs NumberInputs(int numbers)
{
    return [numbers](Operator& tool) {
        for (int i = 0; i < numbers; ++i) {
            const QByteArray id(1, char('a' + i));
            const QByteArray name = id.toUpper();
            tool.AddInput(MxID(id.constData()), ProbeAttributes(name.constData()));
        }
    };
}

ProbeControl* ProbeOf(const ControlWnd& page, const char* inputID)
{
    const Input* input = page.GetOperator()->FindInput(inputID);
    return input ? dynamic_cast<ProbeControl*>(page.ControlOf(*input)) : nullptr;
}

ProbeControl::~ProbeControl()
{
    log += QStringLiteral("destroy");
}

bool ProbeControl::AttachInput(Operator* owner, const TagList& tags, Input*& input, u64 a, u64 b)
{
    const bool attached = InputControl::AttachInput(owner, tags, input, a, b);
    log += QStringLiteral("attach ") + IdOf(input);
    return attached;
}

bool ProbeControl::DetachInput(Input*& input)
{
    log += QStringLiteral("detach ") + IdOf(input);
    return InputControl::DetachInput(input);
}

bool ProbeControl::SetAttrsTagList(Input* input, const TagList& tags)
{
    log += QStringLiteral("attrs ") + IdOf(input);
    return InputControl::SetAttrsTagList(input, tags);
}

bool ProbeControl::AddInput(Input* input, TagList* tags)
{
    log += QStringLiteral("add ") + IdOf(input);
    return IdOf(input) != settings.refuseInput && InputControl::AddInput(input, tags);
}

bool ProbeControl::RemoveInput(Input* input, TagList* tags)
{
    if (!InputControl::RemoveInput(input, tags))
        return false;
    log += QStringLiteral("remove ") + IdOf(input);
    return true;
}

bool ProbeControl::Open(ControlWnd* window, MxRect& rect, TagList* tags)
{
    log += QStringLiteral("open");
    if (settings.refuseOpen || !InputControl::Open(window, rect, tags))
        return false;
    if (settings.spin) {
        auto* box = new QSpinBox(this);
        box->setRange(-1000, 1000);
        box->show();
        child = box;
    }
    if (settings.layout)
        LoadLayout(settings.layout, false, nullptr, nullptr);
    if (!settings.layoutText.empty()) {
        ScriptVal description;
        ScriptServices::Installed()->ParseValue(settings.layoutText, description, nullptr);
        CreateLayout(description, false, nullptr, nullptr);
    }
    if (settings.onOpen)
        settings.onOpen(*this);
    return true;
}

void ProbeControl::Close(TagList* tags)
{
    log += QStringLiteral("close");
    InputControl::Close(tags);
}

bool ProbeControl::GetMinSize(int& width, int& height, TagList* tags)
{
    ++sizesAsked;
    if (GetLayout() || !Fault().isEmpty())
        return InputControl::GetMinSize(width, height, tags);
    width = settings.minimumWidth;
    height = settings.minimumHeight;
    return true;
}

bool ProbeControl::GetMaxSize(int& width, int& height, TagList* tags)
{
    InputControl::GetMaxSize(width, height, tags);
    width = settings.maximumWidth;
    return true;
}

bool ProbeControl::SetSize(int& width, int& height, TagList* tags)
{
    ++sizesSet;
    return InputControl::SetSize(width, height, tags);
}

void ProbeControl::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    shown = NumberOf(value, shown);
    log += QStringLiteral("notify %1=%2").arg(IdOf(input)).arg(shown);
    InputControl::NotifyChanged(input, value, tags);
}

void ProbeControl::UpdateDisplay(Input* input, TagList* tags)
{
    ++displays;
    log += QStringLiteral("display ") + IdOf(input);
    InputControl::UpdateDisplay(input, tags);
    if (onUpdate)
        onUpdate();
}

void ProbeControl::OnConnect(Input* input, TagList*)
{
    log += QStringLiteral("connect ") + IdOf(input);
}

void ProbeControl::OnDisconnect(Input* input, TagList*)
{
    log += QStringLiteral("disconnect ") + IdOf(input);
}

void ProbeControl::AddToMenu(Menu* menu, TagList&)
{
    menu->Add(OwnEntry, QStringLiteral("Probe"));
}

bool ProbeControl::HandleMenu(unsigned int id, u64* data, TagList& tags)
{
    if (id != OwnEntry)
        return InputControl::HandleMenu(id, data, tags);
    log += QStringLiteral("menu");
    return true;
}

void ProbePage::Start()
{
    InstallScripting();
    ProbeControl::settings = {};
    page_ = std::make_unique<ControlWnd>();
    document_ = std::make_unique<MarloxDoc>();
    Log();
}

Operator* ProbePage::Open(ProbeInputs inputs)
{
    SetProbeInputs(std::move(inputs));
    tool_ = document_->AddTool("ProbeTool");
    page_->resize(300, 200);
    page_->SetOperator(tool_);
    input_ = tool_->FindInput("a");
    a_ = input_ ? Of("a") : nullptr;
    History().Clear();
    Log();
    return tool_;
}

Operator* ProbePage::Open(int numbers)
{
    return Open(NumberInputs(numbers));
}

void ProbePage::ShowActive()
{
    page_->show();
    page_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(page_.get()));
}

bool ProbePage::Send(ProbeControl* control, double value, double time, int index, bool last)
{
    return control->SetInputs(MakeRef<Number>(value).Get(), time, index, last, nullptr);
}

void ProbeOverlay::NotifyChanged(Input* input, Parameter* value, TagList* tags)
{
    log += QStringLiteral("notify %1=%2").arg(IdOf(input)).arg(NumberOf(value));
    PreviewControl::NotifyChanged(input, value, tags);
}

void ProbeOverlay::UpdateDisplay(Input* input, TagList* tags)
{
    log += QStringLiteral("display ") + IdOf(input);
    PreviewControl::UpdateDisplay(input, tags);
}

} // namespace Marlox
