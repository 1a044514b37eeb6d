// A code file that is no effect.
extern "C" int not_an_entry_point()
{
    return 0;
}
