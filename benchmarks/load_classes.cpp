// A peer of the control library: as many control classes of the same bases, which do nothing and
// are not registered. What loading it costs beyond an empty library is the price of the classes'
// tables of virtual functions, some 150 for each inspector control, which the loader binds by name.
#include "system/controls/InputControl.h"
#include "system/viewer/PreviewControl.h"

#include <array>
#include <utility>

namespace Marlox {

namespace {

template <class Base, std::size_t>
class EmptyControl final : public Base {
public:
    using Base::Base;
    std::size_t SizeOf() const override { return sizeof(*this); }
};

template <class Control>
Object* Make(const Registry* record, const ScriptVal& creator, const TagList& attributes)
{
    return new Control(record, creator, attributes);
}

template <class Base, std::size_t... number>
constexpr auto Makers(std::index_sequence<number...>)
{
    return std::array{&Make<EmptyControl<Base, number>>...};
}

} // namespace

extern const std::array<CreateFunction, 31> inspectorMakers;
extern const std::array<CreateFunction, 17> overlayMakers;
constinit const std::array<CreateFunction, 31> inspectorMakers =
    Makers<InputControl>(std::make_index_sequence<31>());
constinit const std::array<CreateFunction, 17> overlayMakers =
    Makers<PreviewControl>(std::make_index_sequence<17>());

} // namespace Marlox
