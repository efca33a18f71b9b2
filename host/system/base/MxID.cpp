#include "system/base/MxID.h"

#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_set>

namespace Marlox {

namespace {

constexpr char noText[] = "";

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept
    {
        return std::hash<std::string_view>()(text);
    }
};

struct IdTable {
    std::shared_mutex mutex;
    std::unordered_set<std::string, TextHash, std::equal_to<>> texts;
};

const char* intern(std::string_view text)
{
    if (text.empty())
        return noText;
    static auto* table = [] {
        auto* made = new IdTable; // lives as long as the ids: to the end of the process
        made->texts.reserve(2048);
        return made;
    }();
    {
        std::shared_lock lock(table->mutex);
        if (auto found = table->texts.find(text); found != table->texts.end())
            return found->c_str();
    }
    std::unique_lock lock(table->mutex);
    return table->texts.emplace(text).first->c_str();
}

} // namespace

MxID::MxID() noexcept : text_(noText) {}
MxID::MxID(const char* text) : text_(intern(text ? std::string_view(text) : std::string_view())) {}
MxID::MxID(std::string_view text) : text_(intern(text)) {}

MxID::MxID(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    text_ = intern(std::string_view(utf8.constData(), std::size_t(utf8.size())));
}

} // namespace Marlox
