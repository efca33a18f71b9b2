#include "system/base/ScriptServices.h"

namespace Marlox {

namespace {

ScriptServices* installed = nullptr;

} // namespace

ScriptServices::~ScriptServices() = default;

ScriptServices* ScriptServices::Installed()
{
    return installed;
}

void ScriptServices::Install(ScriptServices* services)
{
    installed = services;
}

} // namespace Marlox
