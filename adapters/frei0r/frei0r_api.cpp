// The functions that frei0r hosts call. Nothing passes through them but C: what goes wrong is said on standard
// error.

#include "adapters/common/own_file.hpp"
#include "adapters/frei0r/frei0r_header.hpp"
#include "adapters/frei0r/instance.hpp"
#include "adapters/frei0r/session.hpp"

#include <string>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace
{
constexpr unsigned int largest_side = 30000; // of what the host library serves
constexpr unsigned int whole_rows = 16;      // FFmpeg aligns rows to 64 bytes at most

frei0r::instance* as_instance(f0r_instance_t handle)
{
    return static_cast<frei0r::instance*>(handle);
}

f0r_instance_t make_instance(unsigned int width, unsigned int height, const void* caller)
{
    if (width < 1 || height < 1 || width > largest_side || height > largest_side)
    {
        frei0r::complain("a picture is 1 to 30000 pixels each way");
        return nullptr;
    }
    const frei0r::time_unit unit = frei0r::unit_of_caller(adapter::file_name_of(caller));
    if (unit == frei0r::time_unit::milliseconds && width % whole_rows != 0)
        frei0r::complain(
            "FFmpeg may pad rows of " + std::to_string(width) +
            " pixels, and tells no plug-in of it: where the picture comes out skewed, scale or pad it to "
            "a multiple of 16 first");
    return new frei0r::instance(frei0r::effect_in_use(), frei0r::table(), static_cast<int>(width),
                                static_cast<int>(height), unit);
}

// Runs `work`, and lets no exception reach the host.
template <class Work>
void guarded(const Work& work) noexcept
{
    try
    {
        work();
    }
    catch (const std::exception& failure)
    {
        frei0r::complain(failure.what());
    }
}
} // namespace

EXPORTED int f0r_init()
{
    guarded([] { frei0r::begin_use(); });
    return frei0r::effect_in_use() ? 1 : -1;
}

EXPORTED void f0r_deinit()
{
    frei0r::end_use();
}

EXPORTED void f0r_get_plugin_info(f0r_plugin_info_t* info)
{
    info->name = FILIGRANE_PLUGIN_NAME;
    info->author = "the Filigrane authors";
    info->plugin_type = FILIGRANE_PLUGIN_TYPE;
    info->color_model = F0R_COLOR_MODEL_RGBA8888;
    info->frei0r_version = FREI0R_MAJOR_VERSION;
    info->major_version = FILIGRANE_MAJOR;
    info->minor_version = FILIGRANE_MINOR;
    info->num_params = static_cast<int>(frei0r::table().size());
    info->explanation = "Draws a field of hand-drawn lines: woven, rippling, growing, bent where they cross";
}

EXPORTED void f0r_get_param_info(f0r_param_info_t* info, int index)
{
    *info = {"", F0R_PARAM_DOUBLE, ""};
    const std::vector<frei0r::param_row>& rows = frei0r::table();
    if (index < 0 || static_cast<std::size_t>(index) >= rows.size())
        return;
    const frei0r::param_row& row = rows[static_cast<std::size_t>(index)];
    *info = {row.name.c_str(), row.type(), row.explanation.c_str()};
}

EXPORTED f0r_instance_t f0r_construct(unsigned int width, unsigned int height)
{
    const void* const caller = __builtin_return_address(0);
    f0r_instance_t made = nullptr;
    guarded([&] { made = make_instance(width, height, caller); });
    return made;
}

EXPORTED void f0r_destruct(f0r_instance_t handle)
{
    delete as_instance(handle);
}

EXPORTED void f0r_set_param_value(f0r_instance_t handle, f0r_param_t value, int index)
{
    if (handle != nullptr)
        guarded([&] { as_instance(handle)->set(index, value); });
}

EXPORTED void f0r_get_param_value(f0r_instance_t handle, f0r_param_t value, int index)
{
    if (handle != nullptr)
        as_instance(handle)->get(index, value);
}

EXPORTED void f0r_update(f0r_instance_t handle, double time, const uint32_t* input, uint32_t* output)
{
    if (handle != nullptr && output != nullptr)
        as_instance(handle)->update(time, reinterpret_cast<const std::uint8_t*>(input),
                                    reinterpret_cast<std::uint8_t*>(output));
}

EXPORTED void f0r_update2(f0r_instance_t handle, double time, const uint32_t* input, const uint32_t*,
                          const uint32_t*, uint32_t* output)
{
    f0r_update(handle, time, input, output);
}
