#pragma once
// Takes down the parameters that an effect adds during its parameter set-up.

#include "host/parameters.hpp"

#include <forward_list>
#include <string>
#include <vector>

namespace host
{
class param_registry
{
public:
    param_registry(); // holds the input layer, index 0

    // The add_param call: `index` -1 appends, and so does the next free index; any other is refused, and
    // so is every one past the ten thousandth.
    PF_Err add(PF_ParamIndex index, const PF_ParamDef* record);

    const std::vector<param_info>& params() const { return params_; }

private:
    const char* keep(const char* text);

    std::vector<param_info> params_;
    std::vector<std::string> open_topics_;
    std::forward_list<std::string> texts_; // what the records' label pointers point at
};
} // namespace host
