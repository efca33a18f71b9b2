#pragma once

#include "system/evaluation/Process.h"
#include "system/shapes/ShapePlacement.h"
#include "system/values/Input.h"

#include <memory>
#include <vector>

#include <QString>
#include <QStringList>

namespace Marlox {

class MarloxDoc;

/// A tool of the document: named inputs and a way to make its output image from their values. Tool
/// classes register with ClassKind::Tool; a document creates them by class id. Changes of name,
/// lock and enabling are undo steps of the document. A locked tool refuses every change but
/// unlocking; undo and redo pass.
///
/// A tool may be a modifier: it makes no image but values that others read by expressions
/// ("Path1.Position"). Images flow past it, and it can't be disabled.
class MARLOXSYSTEM_EXPORT Operator : public Object {
public:
    explicit Operator(const Registry* record);
    ~Operator() override;

    MxID GetToolType() const; // class id
    QString GetName() const { return name_; }
    /// Names are unique in a document: a taken one gets the next free number ("Blur" becomes
    /// "Blur1", "Blur1" becomes "Blur2"). Connections and expressions follow the new name. False:
    /// empty or locked.
    bool SetName(const QString& name);
    bool IsLocked() const { return locked_; }
    bool SetLocked(bool locked);
    /// A disabled tool passes its image through unchanged. A modifier can't be disabled.
    bool IsDisabled() const { return disabled_; }
    bool DisableTool(bool disable);

    /// Inputs in the order of the inspector; owned.
    const std::vector<Ref<Input>>& Inputs() const { return inputs_; }
    Input* FindInput(const MxID& id) const;
    /// For constructors of tools. The inspector control shared by several inputs shows up once, at
    /// the first of them.
    Input& AddInput(const MxID& id, const TagList& attributes);
    /// Adds a Point input that stands for a point of one of the tool's shapes: shown, connected,
    /// animated, saved and copied like those the tool was made with. Its id is `name` as far as
    /// scripts can have it, with a number behind it when it is taken; by default the first free one
    /// of "Point0", "Point1" and so on. An undo step. Null: the tool is locked.
    Input* AddPublishedInput(const QString& name = {}, double x = 0.5, double y = 0.5);
    /// An undo step. False: the tool is locked, or it was not added by AddPublishedInput. Links of
    /// shapes to it are the caller's (see UnpublishPoints).
    bool RemovePublishedInput(Input& input);
    /// The same inputs as another tool has (a copy's, without their values); undo steps.
    void AddPublishedInputsOf(const Operator& other);

    virtual bool IsModifier() const { return false; }
    /// The value at `time` of an input with IA_Computed; null: its default.
    virtual Ref<Parameter> Compute(const Input& input, double time) const;

    /// Where the tool puts one of its shapes in the image; as it is, unless told. Points that
    /// follow those of another tool's shape are at the same place of the image.
    virtual ShapePlacement PlacementOf(const Input& shape, double time) const;

    /// The input for the picture that comes from upstream, id "Input"; null for a source.
    Input* ImageInput() const;

    /// Current time of the document in frames; 0 outside a document.
    double CurrentTime() const;

    /// Makes the process that renders this tool at `time`, with all values it needs taken out of
    /// the inputs: it runs on another thread while the tool may change or vanish. Images of
    /// connected inputs reach the process when it runs (ToolProcess::Upstream), and an input of the
    /// kind Mask is applied by the renderer: its alpha mixes the upstream image and the output.
    virtual std::unique_ptr<ToolProcess> Prepare(double time) const = 0;

    // Object
    MarloxDoc* GetDoc() const override { return document_; }
    std::size_t SizeOf() const override { return sizeof(*this); }
    /// The tool as documents hold it: class, name, flags, inputs, and what a document file had for
    /// inputs that this class does not have.
    bool SaveState(ScriptVal& state) const override;
    /// Takes over all inputs of such a table, as one undo step. False, and nothing changed, if it
    /// is of the wrong form or of another class, or the tool is locked. In a document the name
    /// stays.
    bool RestoreState(const ScriptVal& state) override;
    /// The same, telling what was wrong or left aside.
    bool RestoreState(const ScriptVal& state, QString& error, QStringList& notes);

private:
    friend class MarloxDoc;
    using InputStates = std::vector<std::pair<Input*, Input::State>>;
    /// What a table of settings holds, read before any of it is taken over.
    struct Settings {
        InputStates states;
        std::vector<Ref<Input>> published; // those that it has; new ones among them
        ScriptVal unknown;
        bool disabled = false;
    };
    bool ReadInputs(const ScriptVal& table, Settings& out, QString& error,
                    QStringList& notes) const;
    bool ReadPublished(const ScriptVal& list, Settings& out, QString& error);
    bool IsOwnState(const ScriptVal& state, QString& error) const;
    void ChangeTo(Settings settings, QStringList& notes);
    void TakeOver(Settings settings);
    Ref<Input> MakePublished(const MxID& id, const QString& name, double x, double y);
    MxID FreeInputID(const QString& name) const;
    void Adopt(const Ref<Input>& input, const QString& text);
    void InsertInput(const Ref<Input>& input, std::size_t at);
    void TakeInput(Input& input);
    bool SetFlag(bool Operator::*flag, bool on, const QString& text);

    MxID toolType_;
    MarloxDoc* document_ = nullptr;
    QString name_;
    bool locked_ = false;
    bool disabled_ = false;
    std::vector<Ref<Input>> inputs_;
    ScriptVal unknownInputs_; // as they were read, to be written again
};

} // namespace Marlox
