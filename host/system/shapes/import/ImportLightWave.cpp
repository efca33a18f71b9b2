#include "system/shapes/import/ImportText_p.h"

#include <algorithm>
#include <cmath>

namespace Marlox {

// LightWave motion. How sure the facts are:
// - version 1 (nine channels in rows, a frame line behind each): documented, and seen;
// - version 2 (channel after channel): seen inside scene files only;
// - version 3 and later (envelopes): as other programs read it; key blocks were seen;
// - which way y counts, and how large an image is in a scene: nothing tells. The image is taken to
//   be one unit wide around the origin, y upwards. Files of this system, told by how their numbers
//   are written, have y downwards.

namespace {

constexpr int maxKeys = 1'000'000;
constexpr int maxChannels = 64;

/// What the segment that ends at a key does.
enum class Span { Curve, Linear, Step };

struct ChannelKey {
    double time = 0.0; // as the file counts it
    double value = 0.0;
    Span span = Span::Curve;
};
using Channel = std::vector<ChannelKey>;

/// Without zeros behind it.
std::string ShortText(double number)
{
    std::string text = std::to_string(number);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text;
}

/// By the span's number in versions 2 and later.
Span SpanOf(int number)
{
    constexpr int linear = 3;
    constexpr int stepped = 4;
    return number == linear ? Span::Linear : number == stepped ? Span::Step : Span::Curve;
}

class LightWaveReader {
public:
    explicit LightWaveReader(ImportJob& job) : job_(job), lines_(job.Text()) {}
    void Read();

private:
    void ReadRows();
    void ReadChannelRows();
    void ReadEnvelopes();
    void ReadEnvelope(Channel& channel);
    void ReadKey(Channel& channel, std::size_t first);
    void ReadBehaviors();
    void AddTo(std::size_t channel, const ChannelKey& key);
    double At(const Channel& channel, double time);
    std::optional<Interpolation> InterpolationAt(double time);
    void Settle(Channel& channel);
    void Finish(double framesPerTime);

    ImportJob& job_;
    TextLines lines_;
    Channel channels_[2]; // x and y; the others are not of the image
    bool isOurs_ = true;  // as our own writer writes it
};

void LightWaveReader::Read()
{
    lines_.Require("its first line");
    if (lines_.Field(0) != "LWMO")
        throw ImportFailure{lines_.LineNumber(), "this is no LightWave motion", true};
    const int version = lines_.RequireWhole(1, 1000, "the version");
    if (version == 1)
        ReadRows();
    else if (version == 2)
        ReadChannelRows();
    else
        ReadEnvelopes();
    Finish(version == 1 ? 1.0 : job_.Context().frameRate);
}

void LightWaveReader::AddTo(std::size_t channel, const ChannelKey& key)
{
    job_.CountPoints(1, lines_.LineNumber());
    if (channel < 2)
        channels_[channel].push_back(key);
}

/// Six decimals for x and y alone, as "%f %f 0 0 0 0 1 1 1".
bool IsOurRow(const TextLines& lines)
{
    const auto hasSixDecimals = [&](std::size_t field) {
        const std::size_t point = lines.Field(field).find('.');
        return point != std::string_view::npos && lines.Field(field).size() - point == 7;
    };
    return lines.Count() == 9 && hasSixDecimals(0) && hasSixDecimals(1) &&
           lines.RestFrom(2) == "0 0 0 0 1 1 1";
}

void LightWaveReader::ReadRows()
{
    const int columns = lines_.RequireWhole(2, maxChannels, "the number of channels");
    const int count = lines_.RequireWhole(0, maxKeys, "the number of keys");
    for (int i = 0; i < count; ++i) {
        lines_.Require("its last key");
        if (int(lines_.Count()) != columns) {
            throw ImportFailure{lines_.LineNumber(),
                                std::to_string(columns) + " numbers were expected", true};
        }
        const double x = lines_.NumberAt(0);
        const double y = lines_.NumberAt(1);
        isOurs_ = isOurs_ && IsOurRow(lines_);
        lines_.Require("the frame of its last key");
        const double time = lines_.NumberAt(0);
        isOurs_ = isOurs_ && time == i && lines_.RestFrom(1) == "0 0 0 0";
        const bool isLinear = lines_.Count() > 1 && lines_.NumberAt(1) == 1.0;
        for (std::size_t at = 2; at < lines_.Count(); ++at) {
            if (lines_.NumberAt(at) != 0.0)
                job_.LeaveAside(0, "tension, continuity and bias of its keys are not used");
        }
        const Span span = isLinear ? Span::Linear : Span::Curve;
        AddTo(0, {time, x, span});
        AddTo(1, {time, y, span});
    }
    if (lines_.NextFilled())
        job_.LeaveAside(lines_.LineNumber(), "what follows its last key was not read");
}

/// A key from `first` on: value, time, span, and numbers for the shape of the curve.
void LightWaveReader::ReadKey(Channel& channel, std::size_t first)
{
    if (lines_.Count() < first + 2)
        throw ImportFailure{lines_.LineNumber(), "a key needs a value and a time", true};
    ChannelKey key{lines_.NumberAt(first + 1), lines_.NumberAt(first), Span::Curve};
    if (lines_.Count() > first + 2)
        key.span =
            SpanOf(WholeNumber(lines_.Field(first + 2), lines_.LineNumber(), 0, 100, "a span"));
    for (std::size_t at = first + 3; at < lines_.Count(); ++at) {
        if (lines_.NumberAt(at) != 0.0 && key.span == Span::Curve)
            job_.LeaveAside(0, "the handles and tensions of its keys are not used");
    }
    channel.push_back(key);
}

void LightWaveReader::ReadChannelRows()
{
    isOurs_ = false;
    const int channels = lines_.RequireWhole(1, maxChannels, "the number of channels");
    for (int i = 0; i < channels; ++i) {
        const int count = lines_.RequireWhole(0, maxKeys, "the number of keys");
        Channel channel;
        for (int k = 0; k < count; ++k) {
            lines_.Require("its last key");
            job_.CountPoints(1, lines_.LineNumber());
            ReadKey(channel, 0);
        }
        if (i < 2)
            channels_[i] = std::move(channel);
    }
}

void LightWaveReader::ReadBehaviors()
{
    constexpr int constant = 1;
    for (std::size_t at = 1; at < lines_.Count(); ++at) {
        const int behavior =
            WholeNumber(lines_.Field(at), lines_.LineNumber(), 0, 100, "a behavior");
        if (behavior > constant) {
            job_.LeaveAside(lines_.LineNumber(),
                            "how the motion goes on before and behind its keys is not used");
        }
    }
}

/// From the line with the opening brace to the one that closes it.
void LightWaveReader::ReadEnvelope(Channel& channel)
{
    lines_.Require("its first envelope");
    if (!lines_.Field(0).starts_with('{')) // the blank behind it may be missing
        throw ImportFailure{lines_.LineNumber(), "\"{ Envelope\" was expected", true};
    const int count = lines_.RequireWhole(0, maxKeys, "the number of keys");
    for (;;) {
        lines_.Require("\"}\"");
        if (lines_.Field(0) == "}")
            break;
        if (lines_.Field(0) == "Key") {
            job_.CountPoints(1, lines_.LineNumber());
            ReadKey(channel, 1);
        } else if (lines_.Field(0) == "Behaviors") {
            ReadBehaviors();
        } else {
            job_.LeaveAside(lines_.LineNumber(), Quoted(lines_.Field(0)) + " is not understood");
        }
    }
    if (int(channel.size()) != count) {
        throw ImportFailure{lines_.LineNumber(),
                            "the envelope has " + std::to_string(channel.size()) + " of " +
                                std::to_string(count) + " keys",
                            true};
    }
}

void LightWaveReader::ReadEnvelopes()
{
    isOurs_ = false;
    lines_.Require("the number of channels");
    if (lines_.Field(0) != "NumChannels" || lines_.Count() != 2)
        throw ImportFailure{lines_.LineNumber(), "\"NumChannels\" was expected", true};
    const int count =
        WholeNumber(lines_.Field(1), lines_.LineNumber(), 1, maxChannels, "the number of channels");
    for (int i = 0; i < count; ++i) {
        lines_.Require("its last channel");
        if (lines_.Field(0) != "Channel" || lines_.Count() != 2)
            throw ImportFailure{lines_.LineNumber(), "\"Channel\" was expected", true};
        const int index =
            WholeNumber(lines_.Field(1), lines_.LineNumber(), 0, maxChannels, "a channel");
        Channel channel;
        ReadEnvelope(channel);
        if (index < 2)
            channels_[index] = std::move(channel);
    }
}

/// Between keys of a channel where the other one has a key.
double LightWaveReader::At(const Channel& channel, double time)
{
    const auto next =
        std::lower_bound(channel.begin(), channel.end(), time,
                         [](const ChannelKey& key, double wanted) { return key.time < wanted; });
    if (next == channel.end())
        return channel.back().value;
    if (next->time == time || next == channel.begin())
        return next->value;
    const ChannelKey& last = *(next - 1);
    if (next->span == Span::Step)
        return last.value;
    if (next->span == Span::Curve)
        job_.Assume(0, "where only one of x and y has a key, the other is taken from a line");
    return std::lerp(last.value, next->value, (time - last.time) / (next->time - last.time));
}

/// How x and y go on from a time; nothing: both stay.
std::optional<Interpolation> LightWaveReader::InterpolationAt(double time)
{
    std::optional<Span> common;
    for (const Channel& channel : channels_) {
        const auto next = std::upper_bound(
            channel.begin(), channel.end(), time,
            [](double wanted, const ChannelKey& key) { return wanted < key.time; });
        if (next == channel.end() || next == channel.begin()) // it holds there
            continue;
        if (common.value_or(next->span) != next->span) {
            job_.LeaveAside(0, "where x and y go on in different ways, both do so smoothly");
            return Interpolation::Smooth;
        }
        common = next->span;
    }
    if (!common)
        return std::nullopt;
    if (*common == Span::Curve)
        return Interpolation::Smooth;
    return *common == Span::Step ? Interpolation::Step : Interpolation::Linear;
}

/// Ascending times, each once.
void LightWaveReader::Settle(Channel& channel)
{
    std::stable_sort(channel.begin(), channel.end(),
                     [](const auto& a, const auto& b) { return a.time < b.time; });
    std::size_t count = 0;
    for (const ChannelKey& key : channel) {
        if (count > 0 && channel[count - 1].time == key.time) {
            job_.LeaveAside(0, "a key at " + ShortText(key.time) +
                                   " is there twice: the later one counts");
            channel[count - 1] = key;
        } else {
            channel[count++] = key;
        }
    }
    channel.resize(count);
}

/// Into frames and image coordinates.
void LightWaveReader::Finish(double framesPerTime)
{
    const ImageFrame image = job_.ShownImage();
    std::vector<double> times;
    for (Channel& channel : channels_) {
        Settle(channel);
        for (const ChannelKey& key : channel)
            times.push_back(key.time);
        if (channel.empty()) {
            job_.Assume(0, "x or y has no keys: it stays at the centre");
            channel.push_back({});
        }
    }
    if (times.empty())
        throw ImportFailure{0, "it has no keys for x and y", true};
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    if (isOurs_) {
        job_.Assume(0, "it is written as this system does: y is taken downwards, and its first "
                       "frame as the first one here");
    } else {
        job_.Assume(0, "the image is taken as one unit wide around the origin, y upwards");
        job_.Assume(0, "its frames are not moved to the first one here");
    }
    const double first = isOurs_ ? job_.Context().startFrame : 0.0;
    ImportedPath path;
    const double up = (isOurs_ ? -1.0 : 1.0) / image.HeightsPerWidth();
    Interpolation kind = Interpolation::Smooth; // a last key goes on like the one before it
    for (const double time : times) {
        kind = InterpolationAt(time).value_or(kind);
        path.keys.push_back({first + time * framesPerTime, 0.5 + At(channels_[0], time),
                             0.5 + up * At(channels_[1], time), kind});
    }
    job_.Take(std::move(path));
}

} // namespace

void ReadLightWaveMotion(ImportJob& job)
{
    LightWaveReader(job).Read();
}

} // namespace Marlox
