#pragma once

#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "system/widgets/Container.h"
#include "system/widgets/ElideLabel.h"
#include "system/widgets/KeyFrameIndicator.h"

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

    /// What moves the values of a row; the strongest one is shown.
    enum class State { Plain, Animated, Keyed, Expression };

    struct Row {
        InputControl* control = nullptr; // null: a line that says why there is none
        ElideLabel* line = nullptr;
        KeyFrameIndicator* keys = nullptr;
        Container* below = nullptr; // expression lines of a control without a place for them
        State state = State::Plain;
        bool measured = false;
        bool placed = false; // its size was handed over since it was measured
        int minimumWidth = 0;
        int maximumWidth = 0;
        int height = 0;
        QRect place; // of the control or line, after Layout
    };

    explicit Private(ControlWnd& page) : page(page) {}

    // Life cycle.
    void Show(Operator* tool);
    void Release();
    Row* RowOf(const InputControl& control);

    // Sizes.
    void PostLayout();
    void Measure();
    void Layout();
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
    bool layoutPosted = false;
    QElapsedTimer lastScroll;

private:
    struct Group;
    std::vector<Group> Groups() const;
    void Open(const Group& group);
    Ref<InputControl> Make(const Group& group, QString& problem);
    void Bind(InputControl& control, const Group& group, QString& problem);
    void Unbind(InputControl& control);
    void AddLine(const QString& text);
    void AddKeys(Row& row, Input& first);
    void MeasureRow(Row& row) const;
    bool IsShown(const Row& row) const { return !row.control || !row.control->IsRowHidden(); }
    void ConnectDocument();
};

} // namespace Marlox
