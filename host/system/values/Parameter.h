#pragma once

#include "system/base/HostClassIds.h"
#include "system/base/Object.h"

#include <array>
#include <memory>
#include <span>
#include <string>

namespace Marlox {

/// A value carried by an input. Parameters are never changed once they have been handed over, so
/// that the interface, the undo history and renders on other threads can share them.
class MARLOXSYSTEM_EXPORT Parameter : public Object {
public:
    /// Class id of the kind: CLSID_DataType_Number and so on.
    virtual MxID GetDataType() const = 0;
    virtual Ref<Parameter> Copy() const = 0;
    virtual bool IsEqual(const Parameter& other) const = 0;
    /// The form in documents and scripts.
    virtual ScriptVal ToScriptVal() const = 0;
    /// Reads what ToScriptVal wrote; null if the value is of another form.
    static Ref<Parameter> FromScriptVal(const MxID& dataType, const ScriptVal& value);
    /// A new value of the kind: 0, the image centre (0.5, 0.5), no text, ...; null for an unknown
    /// kind.
    static Ref<Parameter> CreateDefault(const MxID& dataType);

    /// The numbers that animation interpolates between keys, component by component; empty for
    /// kinds that hold still until the next key.
    virtual std::span<const double> Components() const { return {}; }
    /// A value of the same kind with other components.
    virtual Ref<Parameter> WithComponents(std::span<const double> components) const;

    /// Notes of whoever hands the value over, for the length of that call; no part of the value.
    /// User-interface thread.
    TagList& Tags();

    // Object
    std::size_t SizeOf() const override = 0;
    bool CopyAttr(u64 tag, void* out) override; // from the notes

protected:
    /// For kinds whose notes go with their copies.
    void TakeTags(const Parameter& from);

private:
    std::unique_ptr<TagList> tags_; // made when first asked for
};

/// One double.
class MARLOXSYSTEM_EXPORT Number final : public Parameter {
public:
    explicit Number(double value = 0.0) : value_(value) {}
    double GetValue() const { return value_; }

    MxID GetDataType() const override;
    Ref<Parameter> Copy() const override;
    bool IsEqual(const Parameter& other) const override;
    ScriptVal ToScriptVal() const override;
    std::span<const double> Components() const override { return {&value_, 1}; }
    Ref<Parameter> WithComponents(std::span<const double> components) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

private:
    double value_;
};

/// A position in normalised image coordinates: 0 to 1 across width and height, y upwards.
class MARLOXSYSTEM_EXPORT Point final : public Parameter {
public:
    Point(double x, double y, double z = 0.0) : xyz_{x, y, z} {}
    double X() const { return xyz_[0]; }
    double Y() const { return xyz_[1]; }
    double Z() const { return xyz_[2]; }

    MxID GetDataType() const override;
    Ref<Parameter> Copy() const override;
    bool IsEqual(const Parameter& other) const override;
    ScriptVal ToScriptVal() const override;
    std::span<const double> Components() const override { return xyz_; }
    Ref<Parameter> WithComponents(std::span<const double> components) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

private:
    std::array<double, 3> xyz_;
};

/// UTF-8 text.
class MARLOXSYSTEM_EXPORT Text final : public Parameter {
public:
    explicit Text(std::string text = {}) : text_(std::move(text)) {}
    const std::string& GetValue() const { return text_; }

    MxID GetDataType() const override;
    Ref<Parameter> Copy() const override;
    bool IsEqual(const Parameter& other) const override;
    ScriptVal ToScriptVal() const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

private:
    std::string text_;
};

/// A 4 x 4 matrix, row by row, applied to column vectors in normalised image coordinates.
class MARLOXSYSTEM_EXPORT TransformMatrix final : public Parameter {
public:
    TransformMatrix(); // identity
    explicit TransformMatrix(const std::array<double, 16>& elements) : elements_(elements) {}
    const std::array<double, 16>& Elements() const { return elements_; }

    MxID GetDataType() const override;
    Ref<Parameter> Copy() const override;
    bool IsEqual(const Parameter& other) const override;
    ScriptVal ToScriptVal() const override;
    std::span<const double> Components() const override { return elements_; }
    Ref<Parameter> WithComponents(std::span<const double> components) const override;
    std::size_t SizeOf() const override { return sizeof(*this); }

private:
    std::array<double, 16> elements_;
};

/// Scoped holders that release a parameter when they go out of scope.
using AutoParameter = Ref<Parameter>;
using AutoNumber = Ref<Number>;

/// The number in a parameter, or `otherwise` when it is null or of another kind.
MARLOXSYSTEM_EXPORT double NumberOf(const Parameter* value, double otherwise = 0.0);

} // namespace Marlox
