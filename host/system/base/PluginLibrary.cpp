#include "system/base/PluginLibrary.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdlib>
#include <cxxabi.h>
#include <dlfcn.h>
#include <elf.h>
#include <filesystem>
#include <fstream>
#include <link.h>

namespace Marlox {

namespace {

/// The loader's messages come in the language of the thread's locale; this makes it English.
class PlainMessages {
public:
    PlainMessages() : plain_(newlocale(LC_ALL_MASK, "C", nullptr)), previous_(uselocale(plain_)) {}
    ~PlainMessages()
    {
        uselocale(previous_);
        freelocale(plain_);
    }
    PlainMessages(const PlainMessages&) = delete;
    PlainMessages& operator=(const PlainMessages&) = delete;

private:
    locale_t plain_;
    locale_t previous_;
};

bool fail(std::string* error, const std::string& path, const std::string& reason)
{
    if (error)
        *error = path + ": " + reason;
    return false;
}

std::string readable(const std::string& symbol)
{
    int status = 0;
    char* text = abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status);
    const std::string result = text ? text : symbol;
    std::free(text);
    return result;
}

/// What the loader said, in our words where it is one of the usual faults.
std::string loaderReason(const std::string& path, std::string said)
{
    if (const auto at = said.find(path + ": "); at == 0)
        said.erase(0, path.size() + 2);
    constexpr std::string_view symbolFault = "undefined symbol: ";
    if (const auto at = said.find(symbolFault); at != std::string::npos) {
        std::string symbol = said.substr(at + symbolFault.size());
        symbol = symbol.substr(0, symbol.find_first_of(" ,("));
        return "unresolved symbol " + readable(symbol) +
               "; it was probably built for another version of the host";
    }
    if (said.find("cannot open shared object file") != std::string::npos)
        return "a library that it needs is missing: " + said.substr(0, said.find(':'));
    return "not a usable library: " + said;
}

/// The beginning of the file as a `Header`; false if the file is shorter.
template <class Header>
bool readAt(std::ifstream& file, std::uint64_t place, Header& header)
{
    file.seekg(std::streamoff(place));
    return bool(file.read(reinterpret_cast<char*>(&header), sizeof(header)));
}

bool isLibrary(std::ifstream& file)
{
    std::array<char, SELFMAG> magic{};
    return readAt(file, 0, magic) && std::string_view(magic.data(), magic.size()) == ELFMAG;
}

/// Whether all that is to be mapped is there: the loader crashes on a file that breaks off.
bool isWhole(std::ifstream& file, std::uint64_t size)
{
    ElfW(Ehdr) header{};
    if (!readAt(file, 0, header))
        return false;
    if (header.e_phentsize != sizeof(ElfW(Phdr)))
        return true; // of another kind of machine: the loader says so
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment{};
        if (!readAt(file, header.e_phoff + i * sizeof(segment), segment) ||
            segment.p_offset > size || segment.p_filesz > size - segment.p_offset)
            return false;
    }
    return header.e_shoff + std::uint64_t(header.e_shnum) * header.e_shentsize <= size;
}

/// Whether the loaded library holds records of the registry, which are static objects.
bool holdsRecords(void* handle, const ClassRegistry& registry)
{
    const auto records = registry.Records();
    return std::any_of(records.begin(), records.end(), [handle](const Registry* record) {
        Dl_info info{};
        void* holder = nullptr;
        return dladdr1(record, &info, &holder, RTLD_DL_LINKMAP) && holder == handle;
    });
}

/// A plain name would be looked for in the system's folders instead of the current one.
std::string absolute(const std::string& path)
{
    std::error_code fault;
    const auto full = std::filesystem::absolute(path, fault);
    return fault ? path : full.string();
}

} // namespace

PluginLibrary::PluginLibrary(std::string path, void* handle, std::vector<Registry*> records)
    : path_(std::move(path)), handle_(handle), records_(std::move(records))
{
}

PluginLibrary::~PluginLibrary() = default;

std::unique_ptr<PluginLibrary> PluginLibrary::Load(const std::string& path, std::string* error)
{
    std::error_code fault;
    if (!std::filesystem::is_regular_file(path, fault))
        return fail(error, path, "there is no such file"), nullptr;
    std::ifstream file(path, std::ios::binary);
    if (!isLibrary(file))
        return fail(error, path, "it is not a library"), nullptr;
    if (!isWhole(file, std::filesystem::file_size(path, fault)))
        return fail(error, path, "not a usable library: the file breaks off"), nullptr;
    const std::string full = absolute(path);
    const PlainMessages plain;
    ClassRegistry& registry = ClassRegistry::Global();
    if (void* present = dlopen(full.c_str(), RTLD_NOW | RTLD_NOLOAD)) {
        const bool registers = holdsRecords(present, registry);
        dlclose(present);
        const char* reason = registers ? "it is loaded already" : "it registers no classes";
        return fail(error, path, reason), nullptr;
    }
    const std::size_t before = registry.Records().size();
    registry.TakeProblems();
    void* handle = dlopen(full.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        return fail(error, path, loaderReason(full, dlerror())), nullptr;
    const auto added = registry.Records().subspan(before);
    std::vector<Registry*> records(added.begin(), added.end());
    std::vector<std::string> problems = registry.TakeProblems();
    if (records.empty()) {
        dlclose(handle);
        std::string reason = "it registers no classes";
        for (const std::string& problem : problems)
            reason += "; " + problem;
        return fail(error, path, reason), nullptr;
    }
    std::unique_ptr<PluginLibrary> made(new PluginLibrary(path, handle, std::move(records)));
    made->problems_ = std::move(problems);
    return made;
}

bool PluginLibrary::Unload(std::string* error)
{
    if (!handle_)
        return true;
    for (const Registry* record : records_) {
        if (const int count = record->LiveObjects())
            return fail(error, path_,
                        "it is in use: " + std::to_string(count) + " of the class " +
                            record->ClassID().c_str());
    }
    const PlainMessages plain;
    dlclose(handle_);
    handle_ = nullptr;
    const std::vector<Registry*> gone = std::move(records_);
    records_.clear();
    const auto left = ClassRegistry::Global().Records();
    const bool stays = std::any_of(left.begin(), left.end(), [&gone](const Registry* record) {
        return std::find(gone.begin(), gone.end(), record) != gone.end();
    });
    return !stays || fail(error, path_, "it stays in memory: something else uses it");
}

} // namespace Marlox
