// A plug-in that calls a function that nobody has.
namespace Marlox {
int FunctionOfALaterHost(double);
}

extern "C" __attribute__((visibility("default"))) int callIt()
{
    return Marlox::FunctionOfALaterHost(1.0);
}
