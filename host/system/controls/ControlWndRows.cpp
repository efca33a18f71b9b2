// How the rows of an inspector page come and go: from the attributes of the tool's inputs through
// the controls' life cycle.

#include "system/controls/ControlWnd_p.h"
#include "system/controls/InputControl_p.h"
#include "system/controls/InputMenu.h"

#include <algorithm>

#include <QApplication>

namespace Marlox {

namespace {

bool IsHeadingClass(const MxID& classID)
{
    return ClassRegistry::Global().IsKindOf(classID, CLSID_InputControl_Nest);
}

void SetControlIndex(Input& input, std::size_t index)
{
    // Another page may show the same input: an index that stays is not written again.
    if (input.GetAttr(IA_ControlIndex, -1) != int64(index))
        input.SetAttrsTagList({{IA_ControlIndex, int(index)}});
}

} // namespace

std::vector<ControlWnd::Private::Group> ControlWnd::Private::Groups() const
{
    std::vector<Group> groups;
    std::vector<Input*> joining;
    for (const Ref<Input>& input : tool->Inputs()) {
        if (*input->GetAttrS(IAS_SharedWith))
            joining.push_back(input.Get());
        else if (const MxID classID(input->GetAttrS(IAS_Control)); !classID.IsEmpty())
            groups.push_back({classID, {input.Get()}});
    }
    for (Input* input : joining) {
        const Input* with = tool->FindInput(MxID(input->GetAttrS(IAS_SharedWith)));
        const auto found = std::find_if(groups.begin(), groups.end(), [with](const Group& group) {
            const auto& inputs = group.inputs;
            return std::find(inputs.begin(), inputs.end(), with) != inputs.end();
        });
        // Nothing to join: a control of its own, if it names one, shows it all the same.
        if (found != groups.end())
            found->inputs.push_back(input);
        else if (const MxID classID(input->GetAttrS(IAS_Control)); !classID.IsEmpty())
            groups.push_back({classID, {input}});
    }
    return groups;
}

void ControlWnd::Private::Show(Operator* shown)
{
    page.operator_ = shown;
    reportedFaults.clear();
    if (shown) {
        tool = Ref<Operator>::Share(shown);
        document = shown->GetDoc();
        ConnectDocument();
        page.setUpdatesEnabled(false);
        opening = true;
        for (Group& group : Groups())
            rows.emplace_back().group = std::move(group);
        for (std::size_t i = 0; tool.Get() == shown && i < rows.size(); ++i) {
            // Rows below a heading are known to be folded by then; one that opens may have shown
            // the tool anew.
            if (rows[i].IsWaiting() && (!rows[i].folded || IsHeadingClass(rows[i].group.classID)))
                Open(rows[i]);
        }
        opening = false;
        page.setUpdatesEnabled(true);
    }
    Layout();
}

void ControlWnd::Private::ConnectDocument()
{
    if (!document)
        return;
    const auto leave = [this](Operator* gone) {
        if (gone == page.operator_)
            page.SetOperator(nullptr);
    };
    QObject::connect(document, &MarloxDoc::ToolAboutToBeRemoved, &page, leave);
    QObject::connect(document, &QObject::destroyed, &page, [this] { page.SetOperator(nullptr); });
    QObject::connect(document, &MarloxDoc::Cleared, &page, [this] {
        if (tool && !tool->GetDoc())
            page.SetOperator(nullptr);
    });
    QObject::connect(document, &MarloxDoc::ToolChanged, &page, [this](Operator* changed) {
        if (changed != page.operator_)
            return;
        for (Row& row : rows) {
            if (!row.control)
                continue;
            row.control->ApplyEnabled();
            if (row.keys)
                row.keys->setEnabled(row.control->IsUsable());
        }
    });
    QObject::connect(document, &MarloxDoc::CurrentTimeChanged, &page, [this] { RefreshMoving(); });
    QObject::connect(document, &MarloxDoc::InputAdded, &page, [this](Input* input) {
        if (&input->Owner() == page.operator_)
            PostReopen();
    });
    QObject::connect(document, &MarloxDoc::InputAboutToBeRemoved, &page, [this](Input* input) {
        if (&input->Owner() != page.operator_)
            return;
        suspended = tool;
        LeaveFocus();
        Release();
        PostReopen();
    });
}

void ControlWnd::Private::LeaveFocus() const
{
    const QWidget* focus = QApplication::focusWidget();
    if (focus && page.isAncestorOf(focus))
        page.window()->setFocus();
}

/// Makes the rows anew at the next turn of the event loop: the tool has other inputs then.
void ControlWnd::Private::PostReopen()
{
    if (std::exchange(reopenPosted, true))
        return;
    QMetaObject::invokeMethod(
        &page,
        [this] {
            reopenPosted = false;
            const Ref<Operator> shown = tool ? tool : std::exchange(suspended, nullptr);
            if (!shown || !shown->GetDoc())
                return;
            LeaveFocus();
            Release();
            Show(shown.Get());
        },
        Qt::QueuedConnection);
}

Ref<InputControl> ControlWnd::Private::Make(const Group& group, QString& problem)
{
    Input& main = *group.inputs.front();
    Ref<Object> made(ClassRegistry::Global().Create(group.classID, ScriptVal(), main.Attributes()));
    auto* control = dynamic_cast<InputControl*>(made.Get());
    if (!control) {
        problem = ControlWnd::tr(made ? "%1: the class \"%2\" is no inspector control"
                                      : "%1: the control \"%2\" is not available")
                      .arg(main.GetName(), group.classID.ToString());
        return nullptr;
    }
    return Ref<InputControl>::Share(control);
}

void ControlWnd::Private::Bind(InputControl& control, const Group& group, QString& problem)
{
    for (std::size_t i = 0; i < group.inputs.size(); ++i) {
        Input* input = group.inputs[i];
        SetControlIndex(*input, control.Inputs().size());
        Input* attached = input;
        const bool bound = control.AttachInput(tool.Get(), input->Attributes(), attached, 0, 0) &&
                           control.SetAttrsTagList(attached, input->Attributes()) &&
                           control.AddInput(attached, nullptr);
        if (bound) {
            byInput[input] = &control;
            continue;
        }
        control.DetachInput(attached);
        problem = ControlWnd::tr("%1: the control \"%2\" does not take it")
                      .arg(input->GetName(), group.classID.ToString());
        if (i == 0)
            return;
        emit page.Problem(problem);
    }
}

void ControlWnd::Private::Open(Row& row)
{
    const Group& group = row.group;
    QString problem;
    const Ref<InputControl> control = Make(group, problem);
    if (control)
        Bind(*control, group, problem);
    if (!control || control->Inputs().empty())
        return AddLine(row, problem);
    auto& controls = page.controls_;
    const auto above = std::count_if(rows.data(), &row, [](const Row& r) { return r.control; });
    controls.insert(controls.begin() + above, control);
    row.control = control.Get(); // it may ask for its row while it opens
    row.measured = false;        // somebody asked for the page's size while it waited
    const int width = std::max(page.width() - marginLeft - keyColumn, 0);
    MxRect place(marginLeft, 0, marginLeft + width, InspectorLineHeight);
    const bool opened = control->Open(&page, place, nullptr);
    if (!RowOf(*control))
        return; // opening it made the page show another tool, or this one anew: the row is gone
    if (!opened) {
        const QString fault = control->Fault();
        row.control = nullptr;
        std::erase(controls, control);
        Unbind(*control);
        return AddLine(row,
                       fault.isEmpty()
                           ? ControlWnd::tr("%1: the control \"%2\" could not be opened")
                                 .arg(group.inputs.front()->GetName(), group.classID.ToString())
                           : group.inputs.front()->GetName() + QStringLiteral(": ") + fault);
    }
    if (!control->Fault().isEmpty()) {
        for (QWidget* child :
             control->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            child->hide();
    }
    AddKeys(row, *group.inputs.front());
    for (Input* input : control->Inputs())
        control->ExpressionChanged(input, nullptr);
    UpdateState(row);
    if (!opening)
        AdoptTabOrder(row);
}

void ControlWnd::Private::Unbind(InputControl& control)
{
    control.EndGesture();
    if (control.IsOpen())
        control.Close(nullptr);
    for (Input* input : InputList(control.Inputs())) {
        byInput.erase(input);
        control.RemoveInput(input, nullptr);
        control.DetachInput(input);
    }
}

void ControlWnd::Private::AddLine(Row& row, const QString& text)
{
    row.line = new ElideLabel(&page);
    row.line->SetText(text);
    emit page.Problem(text);
}

void ControlWnd::Private::AddKeys(Row& row, Input& first)
{
    const MxID type = first.GetDataType();
    // The control may know better than its input: a label has no value to animate.
    const bool animatable =
        row.control->GetAttrB(IA_Animatable, first.GetAttrB(IA_Animatable, true));
    if (!animatable || type == CLSID_DataType_Image || type == CLSID_DataType_Mask)
        return;
    row.keys = new KeyFrameIndicator(&page);
    row.keys->setAttribute(Qt::WA_Resized); // by Layout
    row.keys->setAccessibleName(ControlWnd::tr("Key of %1").arg(first.GetName()));
    row.keys->setEnabled(row.control->IsUsable());
    InputControl* control = row.control;
    QObject::connect(row.keys, &KeyFrameIndicator::Toggled, control, [control] {
        if (control->Inputs().empty())
            return;
        Input& main = *control->Inputs().front();
        const auto index = int(main.GetAttr(IA_ControlIndex));
        auto* line = static_cast<QWidget*>(control->GetExpressionData(index, nullptr));
        // Keys say nothing while an expression does.
        if (!InputMenu::ToggleKeys(*control) && main.HasExpression() && line)
            line->setFocus(Qt::OtherFocusReason);
    });
}

ControlWnd::Private::Row* ControlWnd::Private::RowOf(const InputControl& control)
{
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&control](const Row& row) { return row.control == &control; });
    return found != rows.end() ? &*found : nullptr;
}

void ControlWnd::Private::Release()
{
    if (document)
        QObject::disconnect(document, nullptr, &page, nullptr);
    page.operator_ = nullptr;
    std::vector<Ref<InputControl>> controls = std::exchange(page.controls_, {});
    for (const Ref<InputControl>& control : controls)
        Unbind(*control);
    for (const Row& row : std::exchange(rows, {})) {
        for (QWidget* widget : {static_cast<QWidget*>(row.line), static_cast<QWidget*>(row.keys),
                                static_cast<QWidget*>(row.below)}) {
            if (!widget)
                continue;
            widget->hide();
            widget->deleteLater(); // perhaps from within one of its own handlers
        }
    }
    byInput.clear();
    revealed = nullptr;
    document = nullptr;
    tool = nullptr;
    if (controls.empty())
        return;
    std::move(controls.begin(), controls.end(), std::back_inserter(released));
    QMetaObject::invokeMethod(
        &page, [this] { released.clear(); }, Qt::QueuedConnection);
}

} // namespace Marlox
