#pragma once
// A frei0r file as a host has it: loaded, asked, let go.

#include "adapters/frei0r/frei0r_header.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace frei0r_test
{
class frei0r_file
{
public:
    explicit frei0r_file(const char* path);
    ~frei0r_file();
    frei0r_file(const frei0r_file&) = delete;
    frei0r_file& operator=(const frei0r_file&) = delete;

    decltype(&f0r_init) init;
    decltype(&f0r_deinit) deinit;
    decltype(&f0r_get_plugin_info) get_plugin_info;
    decltype(&f0r_get_param_info) get_param_info;
    decltype(&f0r_construct) construct;
    decltype(&f0r_destruct) destruct;
    decltype(&f0r_set_param_value) set_param_value;
    decltype(&f0r_get_param_value) get_param_value;
    decltype(&f0r_update) update;
    decltype(&f0r_update2) update2;

    // Number of the parameter of that name; -1 where there is none.
    int index_of(const std::string& name) const;
    void set(f0r_instance_t instance, const std::string& name, double value) const;
    void set(f0r_instance_t instance, const std::string& name, const std::string& value) const;

private:
    void* library_;
};

using pixels = std::vector<std::uint32_t>;

pixels picture(int width, int height);

// One picture of a transparent frame.
pixels drawn(const frei0r_file& file, f0r_instance_t instance, double time, int width, int height);
} // namespace frei0r_test
