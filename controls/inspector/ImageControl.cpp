#include "controls/inspector/ImageControl.h"

#include "system/controls/Connections.h"
#include "system/document/BulkChange.h"
#include "system/document/MarloxDoc.h"
#include "widgets/CustomCombo.h"

namespace Marlox {

namespace {

class ConnectionEditor final : public GenericEditor {
public:
    ConnectionEditor(GenericInputControl& control, Input& input)
        : GenericEditor(control, input), combo_(new CustomCombo(&control))
    {
        combo_->setFocusPolicy(Qt::StrongFocus);
        combo_->SetHelp(QString::fromUtf8(input.GetAttrS(IAS_Help)));
        QObject::connect(combo_, &CustomCombo::IndexChanged, connections_.get(),
                         [this](int index) { Connect(index); });
        Append("combo", combo_);
        if (MarloxDoc* document = input.GetDoc())
            Listen(*document);
        Fill();
    }

    void ShowValue(const Parameter&) override {} // what counts is where it comes from

private:
    /// Whatever the tools and what feeds them decide which may be chosen.
    void Listen(MarloxDoc& document)
    {
        QObject* const context = connections_.get();
        const auto fill = [this, context, &document] {
            if (!BulkChange::Postpone(document.Undo(), *context, [this] { Fill(); }))
                Fill();
        };
        QObject::connect(&document, &MarloxDoc::ToolAdded, context, fill);
        QObject::connect(&document, &MarloxDoc::ToolRemoved, context, fill);
        QObject::connect(&document, &MarloxDoc::ToolMoved, context, fill);
        QObject::connect(&document, &MarloxDoc::ToolChanged, context, fill);
        QObject::connect(&document, &MarloxDoc::InputChanged, context, [fill](Input* changed) {
            if (changed->IsImage())
                fill();
        });
    }

    void Fill()
    {
        tools_.clear();
        std::vector<ComboEntry> entries;
        int shown = CustomCombo::none;
        for (const Connection& connection : ConnectionsOf(input_)) {
            if (!connection.can)
                continue;
            if (connection.is)
                shown = int(entries.size());
            tools_.push_back(connection.tool);
            entries.push_back({connection.text, connection.text});
        }
        QStringList texts;
        for (const ComboEntry& entry : entries)
            texts << entry.text;
        if (texts != combo_->EntryTexts())
            combo_->SetEntries(std::move(entries));
        if (shown != CustomCombo::none)
            combo_->ShowIndex(shown);
        else
            combo_->ShowStranger(QString::fromStdString(input_.GetState().source));
    }

    void Connect(int index)
    {
        if (index >= 0 && index < int(tools_.size()))
            input_.Connect(tools_[std::size_t(index)]);
        Fill();
    }

    CustomCombo* combo_;
    std::vector<Operator*> tools_; // of the entries; null: nothing
};

} // namespace

std::unique_ptr<GenericEditor> ImageControl::MakeEditor(Input& input)
{
    if (input.IsImage())
        return std::make_unique<ConnectionEditor>(*this, input);
    return GenericInputControl::MakeEditor(input);
}

std::size_t ImageControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct ImageFacts : GenericInspectorFacts {
    using Class = ImageControl;
    static constexpr char name[] = "ImageControl";
    static constexpr RecordFacts records[] = {{"ImageControl", "ImageControl"}};
    struct Resources {
        ResData layout{"Controls.Image.Layout"};
    };
};

} // namespace

template <>
ControlClass<ImageFacts> controlClass<ImageFacts>{};
MARLOX_SCRIPT_CASTS(ImageControl)

} // namespace Marlox
