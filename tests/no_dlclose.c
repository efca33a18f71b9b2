/* Leak reports name the module of each frame: libraries stay mapped until the report is written. */
int dlclose(void* handle)
{
    (void)handle;
    return 0;
}
