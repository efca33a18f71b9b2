#pragma once

#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/Container.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/KeyFrameIndicator.h"

#include <optional>
#include <unordered_map>

#include <QElapsedTimer>
#include <QPointer>

namespace Marlox {

/// The rows of an inspector page: how they come to be, where they stand, what they are told.
/// Internal to the library. Pixels of the page.
class ControlWnd::Private {
public:
    static constexpr int marginLeft = 8;
    static constexpr int marginTop = 4;
    static constexpr int marginBottom = 8;
    static constexpr int markWidth = 2;
    static constexpr int rowGap = 4;
    static constexpr int keyColumn = 24; // the keyframe button and the room around it
    static constexpr int preferredWidth = 360;
    static constexpr int scrollPause = 300; // ms without wheel that end a scroll of the page
    static constexpr int nestIndent = 12;   // of a heading inside the rows of another one

    /// What moves the values of a row; the strongest one is shown.
    enum class State { Plain, Animated, Keyed, Expression };

    /// The inputs that share one control; the first is the main one.
    struct Group {
        MxID classID;
        std::vector<Input*> inputs;
    };
    struct Heading {
        int inputs; // how many it folds; 0: up to the next heading
        bool open;
        friend bool operator==(const Heading&, const Heading&) = default;
    };

    struct Row {
        Group group;
        // While both are null the row waits to be unfolded.
        InputControl* control = nullptr;
        ElideLabel* line = nullptr; // says why there is no control
        std::optional<Heading> heading{};
        bool folded = false; // by a heading above
        // Of headings.
        int level = 0;       // number of those whose rows it stands among itself
        std::size_t end = 0; // one past the last of its rows
        KeyFrameIndicator* keys = nullptr;
        Container* below = nullptr; // expression lines of a control without a place for them
        State state = State::Plain;
        bool measured = false;
        bool placed = false; // its size was handed over since it was measured
        int minimumWidth = 0;
        int maximumWidth = 0;
        int height = 0;
        QRect place; // of the control or line, after Layout

        bool IsWaiting() const { return !control && !line; }
    };

    explicit Private(ControlWnd& page) : page(page) {}

    // Life cycle.
    void Show(Operator* tool);
    void Release();
    Row* RowOf(const InputControl& control);
    /// Makes the control of a row that waits.
    void Open(Row& row);
    /// The row whose control is to show the input.
    Row* RowFor(const Input& input);

    // Folding.
    /// The headings changed: finds out anew which rows are folded. Those that were not before leave
    /// at once; those that no longer are come with the next layout.
    void Refold(InputControl& changed);
    void Reveal();

    // Sizes.
    void PostLayout();
    void Measure();
    void Layout();
    void ApplyShown(const Row& row) const; // shows or hides all that is the row's
    QRect MarkOf(const Row& row) const;

    // Notification.
    void UpdateState(Row& row);
    /// The time changed. (Expressions that follow other inputs are told by the document.)
    void RefreshMoving();
    QColor ColorOf(State state) const;

    ControlWnd& page;
    Ref<Operator> tool;
    Ref<Operator> suspended; // shown again by ReopenAll
    QPointer<MarloxDoc> document;
    std::vector<Row> rows;
    std::unordered_map<const Input*, InputControl*> byInput;
    /// Controls let go of, perhaps from within one of their own handlers: they end with the turn of
    /// the event loop.
    std::vector<Ref<InputControl>> released;
    QStringList reportedFaults; // of layouts, since the tool is shown
    int minimumWidth = 0;
    int height = 0;
    QSize laidOut{0, 0}; // both, when the rows were last placed
    bool layoutPosted = false;
    bool reopenPosted = false;
    bool opening = false;                   // the rows are being made
    const InputControl* revealed = nullptr; // heading to scroll to, only compared
    QElapsedTimer lastScroll;

private:
    std::vector<Group> Groups() const;
    Ref<InputControl> Make(const Group& group, QString& problem);
    void Bind(InputControl& control, const Group& group, QString& problem);
    void Unbind(InputControl& control);
    void AddLine(Row& row, const QString& text);
    void AddKeys(Row& row, Input& first);
    void MeasureRow(Row& row) const;
    bool IsShown(const Row& row) const
    {
        return !row.folded && (!row.control || !row.control->IsRowHidden());
    }
    void ConnectDocument();
    void PostReopen();
    void LeaveFocus() const; // a field that goes would pass it to some other one
    void OpenUnfolded();
    void AdoptTabOrder(const Row& row);
    int Indent(const Row& row) const { return row.heading ? row.level * nestIndent : 0; }
    void PlaceControl(Row& row, int y, int available) const;
    void PlaceKeys(const Row& row, int y, int available) const;
    std::vector<Ref<InputControl>> FindFolded();
    void Leave(InputControl& control, InputControl& heading);
};

} // namespace Marlox
