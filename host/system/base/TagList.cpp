#include "system/base/TagList.h"

#include <cmath>
#include <limits>

namespace Marlox {

int64 TagPair::AsLong() const
{
    if (TypeOfTag(u32(tag)) != TagType::Double)
        return int64(Bits());
    const double number = std::bit_cast<double>(Bits());
    constexpr double bound = 9223372036854775808.0; // 2^63
    if (std::isnan(number))
        return 0;
    if (number >= bound)
        return std::numeric_limits<int64>::max();
    return number < -bound ? std::numeric_limits<int64>::min() : int64(number);
}

double TagPair::AsDouble() const
{
    return TypeOfTag(u32(tag)) == TagType::Integer ? double(int64(Bits()))
                                                   : std::bit_cast<double>(Bits());
}

bool TagPair::AsBool() const
{
    return TypeOfTag(u32(tag)) == TagType::Double ? AsDouble() != 0.0 : Bits() != 0;
}

TagList::TagList() = default;

TagList::TagList(const TagPair* pairs)
{
    Init(pairs);
}

TagList::TagList(std::initializer_list<TagPair> pairs)
{
    for (const TagPair& pair : pairs) {
        if (pair.tag == 0)
            break;
        pairs_.push_back(pair);
    }
}

TagList::TagList(const TagList& other)
{
    CopyFrom(other);
}

TagList::TagList(TagList&& other) noexcept
    : pairs_(std::move(other.pairs_)), ownTexts_(std::move(other.ownTexts_))
{
    other.pairs_.clear();
}

TagList& TagList::operator=(const TagList& other)
{
    if (this != &other)
        CopyFrom(other);
    return *this;
}

TagList& TagList::operator=(TagList&& other) noexcept
{
    pairs_ = std::move(other.pairs_);
    ownTexts_ = std::move(other.ownTexts_);
    other.pairs_.clear();
    return *this;
}

TagList::~TagList()
{
    delete mutex_.load();
}

void TagList::CopyFrom(const TagList& other)
{
    pairs_ = other.pairs_;
    ownTexts_.reset();
    if (!other.ownTexts_)
        return;
    for (TagPair& pair : pairs_) {
        for (const std::string& text : *other.ownTexts_) {
            if (pair.Bits() == TagPair{0, text.c_str()}.Bits()) {
                pair.value = Keep(text);
                break;
            }
        }
    }
}

void TagList::Init(const TagPair* pairs)
{
    Clear();
    if (!pairs)
        return;
    const TagPair* end = pairs;
    while (end->tag != 0)
        ++end;
    pairs_.assign(pairs, end);
}

void TagList::Clear()
{
    pairs_.clear();
    ownTexts_.reset();
}

void TagList::Add(u32 tag, TagValue value)
{
    if (tag != 0)
        pairs_.push_back({tag, value});
}

void TagList::AddCopy(u32 tag, std::string text)
{
    Add(tag, Keep(std::move(text)));
}

void TagList::Set(u32 tag, TagValue value)
{
    for (TagPair& pair : pairs_) {
        if (pair.tag == tag) {
            pair.value = value;
            return;
        }
    }
    Add(tag, value);
}

void TagList::SetCopy(u32 tag, std::string text)
{
    Set(tag, Keep(std::move(text)));
}

void TagList::Remove(u32 tag)
{
    std::erase_if(pairs_, [tag](const TagPair& pair) { return pair.tag == tag; });
}

void TagList::Merge(const TagList& from)
{
    if (&from == this)
        return;
    for (const TagPair& pair : from.pairs_)
        Remove(u32(pair.tag));
    for (const TagPair& pair : from.pairs_) {
        const TagType type = TypeOfTag(u32(pair.tag));
        const bool isText = type == TagType::String || type == TagType::InputID;
        if (isText && pair.value.text)
            AddCopy(u32(pair.tag), pair.value.text);
        else
            Add(u32(pair.tag), pair.value);
    }
}

const char* TagList::Keep(std::string text)
{
    if (!ownTexts_)
        ownTexts_ = std::make_unique<std::deque<std::string>>();
    return ownTexts_->emplace_back(std::move(text)).c_str();
}

bool TagList::Get(u32 tag, u64& out) const
{
    const TagPair* pair = Find(tag);
    if (!pair)
        return false;
    out = pair->Bits();
    return true;
}

const TagPair* TagList::Find(u32 tag) const
{
    for (const TagPair& pair : pairs_) {
        if (pair.tag == tag)
            return &pair;
    }
    return nullptr;
}

const TagPair* TagList::FindNext(const TagPair* previous) const
{
    for (const TagPair* pair = Next(previous); pair; pair = Next(pair)) {
        if (pair->tag == previous->tag)
            return pair;
    }
    return nullptr;
}

const TagPair* TagList::First() const
{
    return pairs_.empty() ? nullptr : pairs_.data();
}

const TagPair* TagList::Next(const TagPair* previous) const
{
    return previous + 1 < pairs_.data() + pairs_.size() ? previous + 1 : nullptr;
}

const TagPair* TagList::FindNumber(u32 tag) const
{
    return HoldsAddress(tag) ? nullptr : Find(tag);
}

const TagPair* TagList::FindAddress(u32 tag) const
{
    return HoldsAddress(tag) ? Find(tag) : nullptr;
}

int64 TagList::GetLong(u32 tag, int64 missing) const
{
    const TagPair* pair = FindNumber(tag);
    return pair ? pair->AsLong() : missing;
}

bool TagList::GetBool(u32 tag, bool missing) const
{
    const TagPair* pair = FindNumber(tag);
    return pair ? pair->AsBool() : missing;
}

double TagList::GetDouble(u32 tag, double missing) const
{
    const TagPair* pair = FindNumber(tag);
    return pair ? pair->AsDouble() : missing;
}

const char* TagList::GetString(u32 tag, const char* missing) const
{
    const TagPair* pair = FindAddress(tag);
    return pair && pair->value.text ? pair->value.text : missing;
}

MxID TagList::GetID(u32 tag, const MxID& missing) const
{
    const TagPair* pair = FindAddress(tag);
    if (!pair || !pair->value.pointer || TypeOfTag(tag) == TagType::Object)
        return missing;
    if (TypeOfTag(tag) == TagType::Pointer)
        return *static_cast<const MxID*>(pair->value.pointer);
    return MxID(pair->value.text);
}

const void* TagList::GetPtr(u32 tag, const void* missing) const
{
    const TagPair* pair = FindAddress(tag);
    return pair ? pair->value.pointer : missing;
}

Object* TagList::GetObject(u32 tag, Object* missing) const
{
    const TagPair* pair = TypeOfTag(tag) == TagType::Object ? Find(tag) : nullptr;
    return pair ? static_cast<Object*>(const_cast<void*>(pair->value.pointer)) : missing;
}

void TagList::ObtainLock() const
{
    std::recursive_mutex* mutex = mutex_.load();
    if (!mutex) {
        auto made = std::make_unique<std::recursive_mutex>();
        if (mutex_.compare_exchange_strong(mutex, made.get()))
            mutex = made.release();
    }
    mutex->lock();
}

void TagList::ReleaseLock() const
{
    mutex_.load()->unlock();
}

} // namespace Marlox
