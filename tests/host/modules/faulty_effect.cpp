// An effect that goes wrong where FILIGRANE_TEST_FAULT says: "<step> <fault>", as in "global hang".
#include "effect/pf/effect_api.hpp"

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace
{
void go_wrong(const std::string& step)
{
    const char* const wanted = std::getenv("FILIGRANE_TEST_FAULT");
    if (wanted == nullptr || std::string(wanted).rfind(step + " ", 0) != 0)
        return;
    const std::string fault = std::string(wanted).substr(step.size() + 1);
    if (fault == "crash")
        std::raise(SIGSEGV);
    if (fault == "abort")
        std::abort();
    if (fault == "exit")
        std::exit(3);
    if (fault == "print")
        std::puts("the effect talks");
    if (fault == "throw")
        throw std::runtime_error("thrown");
    while (fault == "hang")
        pause();
    // A process of its own that outlives this one and holds all its files open.
    if (fault == "leave")
    {
        if (fork() == 0)
        {
            setpgid(0, 0);
            sleep(5);
            _exit(0);
        }
        _exit(4);
    }
}

struct at_loading
{
    at_loading() { go_wrong("load"); }
    ~at_loading() { go_wrong("unload"); }
} loaded;

// Adds parameters without end, whatever the host says: all of them, or up to the first that is refused.
PF_Err add_without_end(PF_InData* in, bool heed)
{
    for (;;)
    {
        PF_ParamDef def{};
        def.param_type = PF_Param_SLIDER;
        const PF_Err err = in->inter.add_param(in->effect_ref, -1, &def);
        if (heed && err != PF_Err_NONE)
            return err;
    }
}
} // namespace

extern "C" __attribute__((visibility("default"))) PF_Err
PluginEntry(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef**, PF_LayerDef*, void*)
{
    const char* const wanted = std::getenv("FILIGRANE_TEST_FAULT");
    const std::string fault = wanted != nullptr ? wanted : "";
    switch (command)
    {
    case PF_Cmd_GLOBAL_SETUP:
        go_wrong("global");
        break;
    case PF_Cmd_PARAMS_SETUP:
        go_wrong("params");
        if (fault == "params endless" || fault == "params endless until refused")
            return add_without_end(in, fault != "params endless");
        out->num_params = 1;
        break;
    case PF_Cmd_ABOUT:
        go_wrong("about");
        break;
    case PF_Cmd_RENDER:
        go_wrong("render");
        break;
    case PF_Cmd_GLOBAL_SETDOWN:
        go_wrong("set-down");
        break;
    default:
        break;
    }
    return PF_Err_NONE;
}
