#include "controls/viewer/PatternControl.h"

namespace Marlox {

std::size_t PatternControl::SizeOf() const
{
    return sizeof(*this);
}

namespace {

struct PatternFacts : GenericInspectorFacts {
    using Class = PatternControl;
    static constexpr char name[] = "PatternControl";
    static constexpr RecordFacts records[] = {{"PatternControl", "PatternControl"}};
    struct Resources {
        ResDIB bad{"Controls.TrackerPattern.Bad", 0};
        ResDIB channel[2]{{"Controls.TrackerPattern.Channel.1", 0},
                          {"Controls.TrackerPattern.Channel.2", 0}};
        ResDIB channelBlue{"Controls.TrackerPattern.ChannelBlue", 0};
        ResDIB channelGreen{"Controls.TrackerPattern.ChannelGreen", 0};
        ResDIB channelRed{"Controls.TrackerPattern.ChannelRed", 0};
        ResDIB channelWhite{"Controls.TrackerPattern.ChannelWhite", 0};
        ResDIB good{"Controls.TrackerPattern.Good", 0};
        ResDIB quality[2]{{"Controls.TrackerPattern.Quality.1", 0},
                          {"Controls.TrackerPattern.Quality.2", 0}};
        ResData layout{"Controls.TrackerPattern.Layout"};
    };
};

} // namespace

template <>
ControlClass<PatternFacts> controlClass<PatternFacts>{};
MARLOX_SCRIPT_CASTS(PatternControl)

} // namespace Marlox
