#include "host/plugin.hpp"

#include "host/error.hpp"
#include "param_registry.hpp"
#include "plugin_access.hpp"
#include "session.hpp"
#include "shared_object.hpp"
#include "text.hpp"

#include <optional>

namespace host
{
namespace
{
// Bytes of the 8-bit sets that effects write have the Latin letters and signs at their Unicode places.
std::string for_people(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte == '\r')
        {
            if (i + 1 == text.size() || text[i + 1] != '\n')
                result += '\n';
        }
        else if (byte < 0x80)
            result += text[i];
        else
        {
            result += static_cast<char>(0xc0 | byte >> 6);
            result += static_cast<char>(0x80 | (byte & 0x3f));
        }
    }
    return result;
}

plugin_version version_of(const PF_OutData& out)
{
    plugin_version version;
    const A_u_long word = out.my_version;
    version.word = word;
    version.major = static_cast<int>(word >> 19 & 0x7f);
    version.minor = static_cast<int>(word >> 15 & 0xf);
    version.bugfix = static_cast<int>(word >> 11 & 0xf);
    version.stage = static_cast<int>(word >> 9 & 0x3);
    version.build = static_cast<int>(word & 0x1ff);
    version.out_flags = out.out_flags;
    version.out_flags2 = out.out_flags2;
    return version;
}
} // namespace

std::string error_text(PF_Err code)
{
    switch (code)
    {
    case PF_Err_OUT_OF_MEMORY:
        return text_line(code, " (out of memory)");
    case PF_Err_INTERNAL_STRUCT_DAMAGED:
        return text_line(code, " (internal structure damaged)");
    case PF_Err_INVALID_INDEX:
        return text_line(code, " (invalid index)");
    case PF_Err_UNRECOGNIZED_PARAM_TYPE:
        return text_line(code, " (unrecognised parameter type)");
    case PF_Err_INVALID_CALLBACK:
        return text_line(code, " (callback not available)");
    case PF_Err_BAD_CALLBACK_PARAM:
        return text_line(code, " (bad callback parameter)");
    default:
        return text_line(code);
    }
}

std::string return_text(const PF_OutData& out)
{
    std::string text = for_people(field_text(out.return_msg));
    for (char& character : text)
        if (character == '\n')
            character = ' ';
    return text.empty() ? "" : ": " + text;
}

struct plugin::state
{
    std::string name;
    stage_watch watch; // above the file: told of its going as well
    std::optional<shared_object> file;
    PF_EntryPoint entry = nullptr;
    plugin_version version;
    param_registry registry;
    handle_store handles{false};
    memory_reserve memory;
    PF_Handle global_data = nullptr;
    bool set_up = false;

    void next(const std::string& stage) const
    {
        if (watch)
            watch(stage.c_str());
    }

    // A set-up command; handles made in it live until global set-down. Refusal is an error.
    void set_up_with(PF_Cmd command, const char* what, PF_OutData& out)
    {
        next(text_line("in its ", what));
        session host({}, &handles);
        host.makes_global_handles = true;
        host.in_data.global_data = global_data;
        if (command == PF_Cmd_PARAMS_SETUP)
            host.registry = &registry;
        const PF_Err answer = host.send(entry, name, command, out);
        global_data = host.in_data.global_data;
        if (answer != PF_Err_NONE)
            throw error(text_line(name, ": the effect refused its ", what, " with error ", error_text(answer),
                                  return_text(out)));
    }

    void load()
    {
        PF_OutData out{};
        set_up_with(PF_Cmd_GLOBAL_SETUP, "global set-up", out);
        set_up = true;
        version = version_of(out);
        set_up_with(PF_Cmd_PARAMS_SETUP, "parameter set-up", out);
        const auto added = static_cast<A_long>(registry.params().size());
        if (out.num_params != added)
            throw error(text_line(name, ": the effect added ", added - 1, " parameters but says it has ",
                                  out.num_params, " with the input layer; it must say ", added));
    }

    ~state()
    {
        try
        {
            PF_OutData out{};
            if (set_up)
                set_up_with(PF_Cmd_GLOBAL_SETDOWN, "global set-down", out);
        }
        catch (const error&)
        {
            // The effect is let go whatever it answers, and a destructor has nobody to tell.
        }
        next("while it was let go");
    }
};

plugin::plugin(const std::filesystem::path& file, stage_watch watch) : state_(std::make_unique<state>())
{
    state_->name = file.string();
    state_->watch = std::move(watch);
    state_->next("while it was loaded");
    state_->file.emplace(file);
    state_->entry = reinterpret_cast<PF_EntryPoint>(state_->file->symbol("PluginEntry"));
    if (!state_->entry)
        throw error(text_line(state_->name, ": has no entry point PluginEntry; give an effect plug-in file"));
    state_->load();
}

plugin::plugin(PF_EntryPoint entry_point, std::string name) : state_(std::make_unique<state>())
{
    state_->name = std::move(name);
    state_->entry = entry_point;
    if (!entry_point)
        throw error(text_line(state_->name, ": has no entry point"));
    state_->load();
}

plugin::~plugin() = default;

const std::string& plugin::name() const
{
    return state_->name;
}

const plugin_version& plugin::version() const
{
    return state_->version;
}

const std::vector<param_info>& plugin::params() const
{
    return state_->registry.params();
}

PF_EntryPoint plugin::entry() const
{
    return state_->entry;
}

std::string plugin::about() const
{
    state_->next("while it was asked about itself");
    session host({}, &state_->handles);
    host.in_data.global_data = state_->global_data;
    host.in_data.num_params = static_cast<A_long>(params().size());
    PF_OutData out{};
    const PF_Err answer = host.send(state_->entry, state_->name, PF_Cmd_ABOUT, out);
    if (answer != PF_Err_NONE)
        throw error(text_line(state_->name, ": the effect refused its about text with error ", error_text(answer),
                              return_text(out)));
    return field_text(out.return_msg);
}

std::string plugin::about_utf8() const
{
    return for_people(about());
}

PF_Handle plugin_access::global_data(const plugin& effect)
{
    return effect.state_->global_data;
}

handle_store& plugin_access::global_handles(const plugin& effect)
{
    return effect.state_->handles;
}

memory_reserve& plugin_access::memory(const plugin& effect)
{
    return effect.state_->memory;
}
} // namespace host
