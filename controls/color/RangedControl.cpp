#include "controls/color/RangedControl.h"

#include "system/widgets/ElideLabel.h"
#include "system/widgets/TimeCodeEdit.h"
#include "widgets/CustomControl.h"
#include "widgets/RangeSelector.h"

#include <algorithm>
#include <utility>

namespace Marlox {

namespace {

constexpr int besideGap = 8; // between wheel and edits
// What the selector was set to. Scripts have no name for it.
constexpr u32 shownRangeTag = 0x100500ff;

int minimumWidthOf(const LayoutObj* object)
{
    int width = 0;
    int height = 0;
    if (object)
        object->MinimumSize(width, height);
    return width;
}

} // namespace

RangedControl::RangedControl(const Registry* record, const ScriptVal& creator,
                             const TagList& attributes, std::span<const Place> places,
                             const std::array<u32, 3>& names)
    : ChannelControl(record, creator, attributes, ranges * int(places.size())),
      places_(places), nameTags_{0, names[0], names[1], names[2]}, channels_(int(places.size())),
      selector_(new RangeSelector(this))
{
    selector_->setObjectName(QStringLiteral("ranges"));
    for (const Place& place : places_) {
        labels_.push_back(new ElideLabel(this));
        labels_.back()->setObjectName(QLatin1String(place.label));
        labels_.back()->SetText(tr(place.text));
        edits_.push_back(new TimeCodeEdit(this));
        edits_.back()->setObjectName(QLatin1String(place.edit));
        labels_.back()->setFocusProxy(edits_.back());
    }
    connect(selector_, &RangeSelector::RangeChanged, this, &RangedControl::OnRangeChanged);
}

RangedControl::~RangedControl()
{
    wheel_->SetOwner(nullptr);
}

void RangedControl::SetWheel(CustomControl& wheel)
{
    wheel_ = &wheel;
    wheel.setObjectName(QStringLiteral("wheel"));
    QWidget::setTabOrder(selector_, &wheel);
    for (QWidget* before = &wheel; TimeCodeEdit * edit : edits_) {
        QWidget::setTabOrder(before, edit);
        before = edit;
    }
}

// Attributes -------------------------------------------------------------------------------------

bool RangedControl::CopyAttr(u64 tag, void* out)
{
    const auto found = std::find(nameTags_.begin() + 1, nameTags_.end(), u32(tag));
    if (found == nameTags_.end())
        return ChannelControl::CopyAttr(tag, out);
    *static_cast<const char**>(out) = names_[std::size_t(found - nameTags_.begin())].c_str();
    return true;
}

void RangedControl::ReadTags(const TagList& tags)
{
    const std::array<QString, ranges> usual{tr("Master"), tr("Shadows"), tr("Midtones"),
                                            tr("Highlights")};
    QStringList shown;
    for (std::size_t i = 0; i < ranges; ++i) {
        const char* given = i > 0 ? tags.GetString(nameTags_[i], "") : "";
        names_[i] = *given ? given : usual[i].toStdString();
        shown += QString::fromStdString(names_[i]);
    }
    selector_->SetNames(shown);
    if (!IsOpen())
        selector_->SetRange(int(tags.GetLong(shownRangeTag, ShownRange())));
}

int RangedControl::SlotOf(const Input& input) const
{
    const int64 range = input.GetAttr(IA_Range, 0);
    const int64 channel = input.GetAttr(IA_Channel, input.GetAttr(IA_ControlIndex, 0) % channels_);
    const bool known = range >= 0 && range < ranges && channel >= 0 && channel < channels_;
    return known ? SlotFor(int(range), int(channel)) : -1;
}

// Life cycle -------------------------------------------------------------------------------------

void RangedControl::Close(TagList* tags)
{
    wheel_->SetOwner(nullptr); // ends a gesture
    ChannelControl::Close(tags);
}

const char* RangedControl::ExpressionPlace(int slot) const
{
    return places_[std::size_t(slot % channels_)].expression;
}

SliderSettings::Range RangedControl::LimitsOf(int slot) const
{
    return places_[std::size_t(slot % channels_)].isShare ? SliderSettings::Range{0.0, 1.0}
                                                          : ChannelControl::LimitsOf(slot);
}

/// The ranges share the places of lines: those of the others stay hidden.
void RangedControl::AddExpressionEdit(Input* input, TagList* tags)
{
    const int slot = input ? SlotOf(*input) : -1;
    if (slot < 0 || InputOf(slot) != input || slot / channels_ == ShownRange())
        ChannelControl::AddExpressionEdit(input, tags);
}

bool RangedControl::HasRange(int range) const
{
    for (int channel = 0; channel < channels_; ++channel) {
        if (InputOf(SlotFor(range, channel)))
            return true;
    }
    return false;
}

int RangedControl::ShownRange() const
{
    return selector_->Range();
}

void RangedControl::Populate()
{
    OfferRanges();
    wheel_->SetOwner(this);
    ShowRange();
    Arrange();
}

/// Those that have inputs; of those the lowest, where the chosen one has none.
void RangedControl::OfferRanges()
{
    std::array<bool, ranges> offered{};
    for (int range = 0; range < ranges; ++range)
        offered[std::size_t(range)] = HasRange(range);
    const auto lowest = std::find(offered.begin(), offered.end(), true);
    if (!HasRange(ShownRange()) && lowest != offered.end())
        selector_->SetRange(int(lowest - offered.begin()));
    selector_->SetOffered(offered);
    selector_->setVisible(std::count(offered.begin(), offered.end(), true) > 1);
}

void RangedControl::ShowRange()
{
    SetMode(ShownRange());
    InputList shown;
    for (int channel = 0; channel < channels_; ++channel) {
        const auto at = std::size_t(channel);
        const int slot = SlotFor(ShownRange(), channel);
        const Input* input = InputOf(slot);
        AttachEdit(*edits_[at], slot);
        edits_[at]->setAccessibleName(input ? input->GetName() : QString());
        edits_[at]->setVisible(input != nullptr);
        labels_[at]->setVisible(input != nullptr);
        if (input)
            shown.push_back(InputOf(slot));
    }
    wheel_->setAccessibleName(CommonName(shown));
    SetShownInputs(std::move(shown));
}

void RangedControl::ShowLines()
{
    for (int slot = 0; slot < SlotCount(); ++slot) {
        Input* input = InputOf(slot);
        auto* line =
            input ? static_cast<QWidget*>(GetExpressionData(int(IndexOf(slot)), nullptr)) : nullptr;
        if (line && slot / channels_ != ShownRange())
            line->hide();
        else if (input)
            ExpressionChanged(input, nullptr);
    }
}

/// Nothing is built anew: whoever chose the range keeps the keyboard.
void RangedControl::OnRangeChanged(int range)
{
    const auto alive = Ref<RangedControl>::Share(this); // what is typed may close the page
    CommitEdits();
    EndGesture();
    ChooseView(shownRangeTag, range);
    if (!IsOpen())
        return;
    ShowRange();
    Show();
    ShowLines();
    RecalcControlSize();
}

// Sizes ------------------------------------------------------------------------------------------

/// The wheel has two places in the layout: beside the edits and above them.
void RangedControl::Arrange()
{
    LayoutObj* beside = FindLayoutObj("wheel");
    LayoutObj* above = FindLayoutObj("wheelabove");
    if (!beside || !above)
        return; // a look that arranges it otherwise
    (stacked_ ? beside : above)->SetWidget(nullptr);
    (stacked_ ? above : beside)->SetWidget(wheel_);
}

bool RangedControl::GetMinSize(int& width, int& height, TagList* tags)
{
    const bool known = ChannelControl::GetMinSize(width, height, tags);
    // Beside each other they take more, but need not.
    if (FindLayoutObj("wheelabove") && Fault().isEmpty())
        width = std::max({wheel_->minimumSizeHint().width(), minimumWidthOf(FindLayoutObj("edits")),
                          selector_->isHidden() ? 0 : selector_->minimumSizeHint().width()});
    return known;
}

bool RangedControl::SetSize(int& width, int& height, TagList* tags)
{
    const int both =
        wheel_->minimumSizeHint().width() + besideGap + minimumWidthOf(FindLayoutObj("edits"));
    const bool stacked = FindLayoutObj("wheelabove") && width < both;
    if (std::exchange(stacked_, stacked) != stacked) {
        Arrange();
        RecalcControlSize();
    }
    return ChannelControl::SetSize(width, height, tags);
}

// Values -----------------------------------------------------------------------------------------

/// Where no one channel is, all of the shown range.
void RangedControl::GetInputsAt(InputList& out, int x, int y, TagList* tags)
{
    ChannelControl::GetInputsAt(out, x, y, tags);
    if (out.size() > 1)
        std::erase_if(out,
                      [this](Input* input) { return SlotOf(*input) / channels_ != ShownRange(); });
}

int RangedControl::SlotAt(const QWidget* widget) const
{
    const auto found = std::find(labels_.begin(), labels_.end(), widget);
    return found != labels_.end() ? SlotFor(ShownRange(), int(found - labels_.begin())) : -1;
}

bool RangedControl::IsViewPart(const QWidget* part) const
{
    return part == selector_;
}

void RangedControl::Show()
{
    ShowEdits();
    for (int range = 0; range < ranges; ++range)
        ShowWheel(range);
    LockWheel();
}

/// Where nothing can be set it takes neither presses nor keys.
void RangedControl::LockWheel()
{
    bool editable = false;
    for (int channel = 0; channel < channels_; ++channel)
        editable = editable || IsEditable(SlotFor(ShownRange(), channel));
    wheel_->SetLocked(!editable);
}

void RangedControl::ShowSlot(int slot)
{
    ShowEditsOf(slot);
    ShowWheel(slot / channels_);
    LockWheel();
}

void RangedControl::ResetChannels(std::span<const int> channels, const QString& undoText)
{
    std::vector<int> shown;
    for (const int channel : channels)
        shown.push_back(SlotFor(ShownRange(), channel));
    WriteDefaults(shown, undoText);
}

} // namespace Marlox
