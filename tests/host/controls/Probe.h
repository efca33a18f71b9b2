#pragma once

#include "system/controls/ControlWnd.h"
#include "system/document/MarloxDoc.h"
#include "system/viewer/PreviewControl.h"

#include <functional>
#include <memory>

#include <QStringList>

namespace Marlox {

class ProbeControl;

/// What a ProbeControl is to do; set before the page is opened.
struct ProbeSettings {
    QString refuseInput; // id that AddInput refuses
    bool refuseOpen = false;
    bool spin = false;            // opens with a focusable child
    const char* layout = nullptr; // resource to load
    std::string layoutText;       // or the description itself
    int minimumHeight = 24;
    int minimumWidth = 60;
    int maximumWidth = 10000;
    std::function<void(ProbeControl& control)> onOpen; // at the end of Open
};

/// An inspector control that writes down what it is told.
class ProbeControl : public InputControl {
public:
    using InputControl::InputControl;
    ~ProbeControl() override;

    static ProbeSettings settings;
    static QStringList log;
    static QStringList TakeLog() { return std::exchange(log, {}); }
    static constexpr unsigned int OwnEntry = FirstOwnMenuId + 1;

    double shown = 0.0; // last value notified
    int displays = 0;
    int sizesAsked = 0;
    int sizesSet = 0;
    QWidget* child = nullptr;
    std::function<void()> onUpdate;

    using InputControl::SetAttrsTagList;
    std::size_t SizeOf() const override { return sizeof(*this); }
    bool AttachInput(Operator* owner, const TagList& tags, Input*& input, u64 a, u64 b) override;
    bool DetachInput(Input*& input) override;
    bool SetAttrsTagList(Input* input, const TagList& tags) override;
    bool AddInput(Input* input, TagList* tags) override;
    bool RemoveInput(Input* input, TagList* tags) override;
    bool Open(ControlWnd* window, MxRect& rect, TagList* tags) override;
    void Close(TagList* tags) override;
    bool GetMinSize(int& width, int& height, TagList* tags) override;
    bool GetMaxSize(int& width, int& height, TagList* tags) override;
    bool SetSize(int& width, int& height, TagList* tags) override;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void UpdateDisplay(Input* input, TagList* tags) override;
    using InputControl::OnConnect;
    using InputControl::OnDisconnect;
    void OnConnect(Input* input, TagList* tags) override;
    void OnDisconnect(Input* input, TagList* tags) override;
    void AddToMenu(Menu* menu, TagList& tags) override;
    using InputControl::HandleMenu;
    bool HandleMenu(unsigned int id, u64* data, TagList& tags) override;
};

/// Adds the inputs of every ProbeTool that is made from then on.
using ProbeInputs = std::function<void(Operator& tool)>;
void SetProbeInputs(ProbeInputs inputs);
/// Attributes of an input shown by a ProbeControl, and more.
TagList ProbeAttributes(const char* name, std::initializer_list<TagPair> more = {});
/// Number inputs "a", "b", ..., named "A", "B", ..., each with a ProbeControl of its own.
ProbeInputs NumberInputs(int numbers);
/// The control of an input on a page.
ProbeControl* ProbeOf(const ControlWnd& page, const char* inputID);

/// A document, and a page that shows a tool of it: what tests of controls derive from.
class ProbePage : public QObject {
protected:
    void Start(); // everything anew; to be called before each test
    /// Shows a new tool with these inputs, or so many numbers, and forgets what came of it.
    Operator* Open(ProbeInputs inputs);
    Operator* Open(int numbers);
    void ShowActive(); // on screen, with the keyboard

    Input& In(const char* id) const { return *tool_->FindInput(id); }
    bool Set(const char* id, double value, double time = 0.0)
    {
        return In(id).SetValue(Number(value), time);
    }
    ProbeControl* Of(const char* id) const { return ProbeOf(*page_, id); }
    UndoHistory& History() const { return document_->Undo(); }
    int Entries() const { return History().Stack().count(); }
    static QStringList Log() { return ProbeControl::TakeLog(); }
    /// As a control's own write of a number.
    static bool Send(ProbeControl* control, double value, double time = 0.0, int index = 0,
                     bool last = false);

    std::unique_ptr<MarloxDoc> document_;
    std::unique_ptr<ControlWnd> page_;
    Operator* tool_ = nullptr;
    ProbeControl* a_ = nullptr; // the control of input "a"
    Input* input_ = nullptr;    // "a", named "A"
};

/// An overlay that writes down what it is told.
class ProbeOverlay : public PreviewControl {
public:
    using PreviewControl::PreviewControl;
    QStringList log;
    void NotifyChanged(Input* input, Parameter* value, TagList* tags) override;
    void UpdateDisplay(Input* input, TagList* tags) override;
};

} // namespace Marlox
