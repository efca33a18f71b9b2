#include "script/ExpressionLibrary.h"

#include "system/base/Types.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numbers>

#include <lua.hpp>

// These functions raise errors by jumping: nothing that needs destroying may stand on their frames.

namespace Marlox {

namespace {

template <double (*function)(double)>
int OfOne(lua_State* state)
{
    lua_pushnumber(state, function(luaL_checknumber(state, 1)));
    return 1;
}

template <double (*function)(double, double)>
int OfTwo(lua_State* state)
{
    lua_pushnumber(state, function(luaL_checknumber(state, 1), luaL_checknumber(state, 2)));
    return 1;
}

template <double (*function)(double, double, double)>
int OfThree(lua_State* state)
{
    lua_pushnumber(state, function(luaL_checknumber(state, 1), luaL_checknumber(state, 2),
                                   luaL_checknumber(state, 3)));
    return 1;
}

template <double (*function)(double, double)>
int OfMany(lua_State* state)
{
    double result = luaL_checknumber(state, 1);
    for (int i = 2; i <= lua_gettop(state); ++i)
        result = function(result, luaL_checknumber(state, i));
    lua_pushnumber(state, result);
    return 1;
}

double Frac(double v)
{
    return v - std::floor(v);
}
double Sign(double v)
{
    return double(v > 0.0) - double(v < 0.0);
}
double Degrees(double v)
{
    return v * 180.0 / std::numbers::pi;
}
double Radians(double v)
{
    return v * std::numbers::pi / 180.0;
}
double Larger(double a, double b)
{
    return a > b ? a : b;
}
double Smaller(double a, double b)
{
    return a < b ? a : b;
}
double Mod(double a, double b)
{
    return a - std::floor(a / b) * b;
}
double Clamp(double v, double low, double high)
{
    return Larger(low, Smaller(v, high));
}
double Lerp(double a, double b, double t)
{
    return a + (b - a) * t;
}

double SmoothStep(double low, double high, double v)
{
    const double t = low == high ? double(v >= high) : Clamp((v - low) / (high - low), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

int Log(lua_State* state)
{
    const double value = std::log(luaL_checknumber(state, 1));
    lua_pushnumber(state, lua_isnoneornil(state, 2) ? value
                                                    : value / std::log(luaL_checknumber(state, 2)));
    return 1;
}

int Iif(lua_State* state)
{
    luaL_checkany(state, 3);
    const bool holds = lua_type(state, 1) == LUA_TNUMBER ? lua_tonumber(state, 1) != 0.0
                                                         : lua_toboolean(state, 1) != 0;
    lua_pushvalue(state, holds ? 2 : 3);
    return 1;
}

/// The output function of the generator SplitMix64 (Steele, Lea, Flood 2014), to [0, 1).
double Hash(double seed, double second = 0.0)
{
    const auto mix = [](u64 z) {
        z += 0x9e3779b97f4a7c15ULL;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    };
    // Adding 0 turns -0 into 0, which has other bits.
    const u64 bits = mix(mix(std::bit_cast<u64>(seed + 0.0)) ^ std::bit_cast<u64>(second + 0.0));
    return double(bits >> 11) * 0x1p-53;
}

int Rand(lua_State* state)
{
    const double low = luaL_optnumber(state, 2, 0.0);
    const double high = luaL_optnumber(state, 3, 1.0);
    lua_pushnumber(state, Lerp(low, high, Hash(luaL_checknumber(state, 1))));
    return 1;
}

int Noise(lua_State* state)
{
    const double t = luaL_checknumber(state, 1);
    const double seed = luaL_optnumber(state, 2, 0.0);
    const double start = std::floor(t);
    const double before = Hash(start, seed) * 2.0 - 1.0;
    const double after = Hash(start + 1.0, seed) * 2.0 - 1.0;
    lua_pushnumber(state, Lerp(before, after, SmoothStep(0.0, 1.0, t - start)));
    return 1;
}

int ToText(lua_State* state)
{
    luaL_checkany(state, 1);
    if (lua_isnumber(state, 1) || lua_isstring(state, 1)) {
        lua_pushvalue(state, 1);
        lua_tostring(state, -1);
    } else if (lua_isboolean(state, 1)) {
        lua_pushstring(state, lua_toboolean(state, 1) ? "true" : "false");
    } else {
        lua_pushstring(state, luaL_typename(state, 1));
    }
    return 1;
}

int ToNumber(lua_State* state)
{
    luaL_checkany(state, 1);
    if (lua_isnumber(state, 1))
        lua_pushnumber(state, lua_tonumber(state, 1));
    else
        lua_pushnil(state);
    return 1;
}

constexpr luaL_Reg functions[] = {
    {"abs", OfOne<std::fabs>},
    {"acos", OfOne<std::acos>},
    {"asin", OfOne<std::asin>},
    {"atan", OfOne<std::atan>},
    {"atan2", OfTwo<std::atan2>},
    {"ceil", OfOne<std::ceil>},
    {"clamp", OfThree<Clamp>},
    {"cos", OfOne<std::cos>},
    {"deg", OfOne<Degrees>},
    {"exp", OfOne<std::exp>},
    {"floor", OfOne<std::floor>},
    {"frac", OfOne<Frac>},
    {"iif", Iif},
    {"lerp", OfThree<Lerp>},
    {"log", Log},
    {"log10", OfOne<std::log10>},
    {"max", OfMany<Larger>},
    {"min", OfMany<Smaller>},
    {"mod", OfTwo<Mod>},
    {"noise", Noise},
    {"pow", OfTwo<std::pow>},
    {"rad", OfOne<Radians>},
    {"rand", Rand},
    {"round", OfOne<std::round>},
    {"sign", OfOne<Sign>},
    {"sin", OfOne<std::sin>},
    {"smoothstep", OfThree<SmoothStep>},
    {"sqrt", OfOne<std::sqrt>},
    {"tan", OfOne<std::tan>},
    {"tonumber", ToNumber},
    {"tostring", ToText},
};

// Of Lua's own library only what takes time and memory in proportion to its arguments.
constexpr const char* textFunctions[] = {"format", "len", "lower", "sub", "upper"};

void AddTextFunctions(lua_State* state, int library)
{
    lua_pushcfunction(state, luaopen_string);
    lua_call(state, 0, 1);
    for (const char* name : textFunctions) {
        lua_getfield(state, -1, name);
        lua_setfield(state, library, name);
    }
    lua_pop(state, 1);
    // Opening it gave all texts methods: ("x"):rep(1e9).
    lua_pushliteral(state, "");
    lua_pushnil(state);
    lua_setmetatable(state, -2);
    lua_pop(state, 1);
}

} // namespace

void PushExpressionLibrary(lua_State* state)
{
    lua_newtable(state);
    const int library = lua_gettop(state);
    for (const luaL_Reg& entry : functions) {
        lua_pushcfunction(state, entry.func);
        lua_setfield(state, library, entry.name);
    }
    lua_pushnumber(state, std::numbers::pi);
    lua_setfield(state, library, "pi");
    lua_pushnumber(state, std::numeric_limits<double>::infinity());
    lua_setfield(state, library, "huge");
    AddTextFunctions(state, library);
}

} // namespace Marlox
