#include "frei0r_file.hpp"

#include <dlfcn.h>
#include <stdexcept>

namespace frei0r_test
{
namespace
{
template <class Function>
void find(void* library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(dlsym(library, name));
    if (!function)
        throw std::runtime_error(name);
}
} // namespace

frei0r_file::frei0r_file(const char* path) : library_(dlopen(path, RTLD_NOW | RTLD_LOCAL))
{
    if (!library_)
        throw std::runtime_error(dlerror());
    find(library_, "f0r_init", init);
    find(library_, "f0r_deinit", deinit);
    find(library_, "f0r_get_plugin_info", get_plugin_info);
    find(library_, "f0r_get_param_info", get_param_info);
    find(library_, "f0r_construct", construct);
    find(library_, "f0r_destruct", destruct);
    find(library_, "f0r_set_param_value", set_param_value);
    find(library_, "f0r_get_param_value", get_param_value);
    find(library_, "f0r_update", update);
    find(library_, "f0r_update2", update2);
}

frei0r_file::~frei0r_file()
{
    dlclose(library_);
}

int frei0r_file::index_of(const std::string& name) const
{
    f0r_plugin_info_t about{};
    get_plugin_info(&about);
    for (int i = 0; i < about.num_params; ++i)
    {
        f0r_param_info_t info{};
        get_param_info(&info, i);
        if (name == info.name)
            return i;
    }
    return -1;
}

void frei0r_file::set(f0r_instance_t instance, const std::string& name, double value) const
{
    set_param_value(instance, &value, index_of(name));
}

void frei0r_file::set(f0r_instance_t instance, const std::string& name, const std::string& value) const
{
    char* text = const_cast<char*>(value.c_str());
    set_param_value(instance, &text, index_of(name));
}

pixels picture(int width, int height)
{
    pixels all(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<std::uint32_t>(i * 2654435761u);
    return all;
}

pixels drawn(const frei0r_file& file, f0r_instance_t instance, double time, int width, int height)
{
    const pixels input(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
    pixels output = picture(width, height);
    file.update(instance, time, input.data(), output.data());
    return output;
}
} // namespace frei0r_test
