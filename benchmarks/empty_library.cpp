// The peer of the control library: what it costs to load any library that links the same.
extern "C" __attribute__((visibility("default"))) int marlox_empty()
{
    return 0;
}
