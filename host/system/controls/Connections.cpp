#include "system/controls/Connections.h"

#include "system/controls/Menu.h"
#include "system/document/DocumentFlow.h"
#include "system/document/MarloxDoc.h"

namespace Marlox {

namespace {

QString tr(const char* text)
{
    return MarloxDoc::tr(text);
}

Connection nothingFor(const Input& input)
{
    Connection nothing;
    nothing.text = tr("None");
    nothing.is = input.GetState().source.empty();
    if (input.Owner().ImageInput() == &input)
        nothing.tip = tr("The tool before it feeds it");
    return nothing;
}

} // namespace

std::vector<Connection> ConnectionsOf(const Input& input)
{
    const MarloxDoc* const document = input.GetDoc();
    if (!document || !input.IsImage())
        return {};
    std::vector<Connection> all{nothingFor(input)};
    const Operator* const source = input.GetSource();
    const std::set<const Operator*> fed = ToolsFedBy(*document, input.Owner());
    for (const Ref<Operator>& tool : document->Tools()) {
        if (tool->IsModifier() || tool.Get() == &input.Owner())
            continue;
        Connection connection;
        connection.tool = tool.Get();
        connection.text = tool->GetName();
        connection.is = source == tool.Get();
        connection.can = !fed.contains(tool.Get());
        if (!connection.can)
            connection.tip = tr("%1 would feed itself: %2 gets its picture from it")
                                 .arg(input.Owner().GetName(), tool->GetName());
        all.push_back(std::move(connection));
    }
    return all;
}

void AddConnections(Menu& menu, const Input& input, unsigned int first, unsigned int room)
{
    const bool takes = input.IsChangeable();
    unsigned int place = 0;
    for (const Connection& connection : ConnectionsOf(input)) {
        if (place == room)
            break;
        QString text = connection.text;
        menu.AddRadio(first + place++, text.replace('&', "&&"), connection.is,
                      connection.can && takes);
        menu.SetTip(input.Owner().IsLocked() ? tr("The tool is locked.") : connection.tip);
    }
}

bool RunConnection(Input& input, unsigned int place)
{
    const std::vector<Connection> all = ConnectionsOf(input);
    return place < all.size() && input.Connect(all[place].tool);
}

} // namespace Marlox
