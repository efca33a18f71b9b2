#pragma once

#include "system/evaluation/Process.h"
#include "system/values/Input.h"

#include <memory>
#include <vector>

#include <QString>

namespace Marlox {

class MarloxDoc;

/// A tool of the document: named inputs and a way to make its output image from their values. Tool
/// classes register with ClassKind::Tool; a document creates them by class id.
class MARLOXSYSTEM_EXPORT Operator : public Object {
public:
    explicit Operator(const Registry* record);
    ~Operator() override;

    MxID GetToolType() const; // class id
    QString GetName() const { return name_; }
    /// Names are unique in a document: a taken one gets a number appended. False: empty or locked.
    bool SetName(const QString& name);
    bool IsLocked() const { return locked_; }
    bool SetLocked(bool locked);
    /// A disabled tool passes its image through unchanged.
    bool IsDisabled() const { return disabled_; }
    bool DisableTool(bool disable);

    /// Inputs in the order of the inspector; owned.
    const std::vector<Ref<Input>>& Inputs() const { return inputs_; }
    Input* FindInput(const MxID& id) const;
    /// The inspector control shared by several inputs shows up once, at the first of them.
    Input& AddInput(const MxID& id, const TagList& attributes);
    /// The input for the picture that comes from upstream, id "Input"; null for a source.
    Input* ImageInput() const;

    /// Current time of the document in frames; 0 outside a document.
    double CurrentTime() const;

    /// Makes the process that renders this tool at `time`, with all values it needs taken out of the
    /// inputs: it runs on another thread while the tool may change or vanish.
    virtual std::unique_ptr<ToolProcess> Prepare(double time) const = 0;

    // Object
    MarloxDoc* GetDoc() const override { return document_; }
    bool SaveState(ScriptVal& state) const override;
    bool RestoreState(const ScriptVal& state) override;

private:
    friend class MarloxDoc;

    const Registry* record_;
    MarloxDoc* document_ = nullptr;
    QString name_;
    bool locked_ = false;
    bool disabled_ = false;
    std::vector<Ref<Input>> inputs_;
};

} // namespace Marlox
