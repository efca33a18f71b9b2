#pragma once

#include <locale.h>

namespace Marlox {

/// While it lives, the C library's functions speak the C locale on this thread: scripts are read
/// and written with a decimal point whatever the user's locale. Nests.
class CLocale {
public:
    CLocale() : previous_(uselocale(Shared())) {}
    ~CLocale() { uselocale(previous_); }
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

private:
    static locale_t Shared()
    {
        static const locale_t shared = newlocale(LC_ALL_MASK, "C", nullptr);
        return shared;
    }

    locale_t previous_;
};

} // namespace Marlox
