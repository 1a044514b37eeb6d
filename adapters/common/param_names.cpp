#include "adapters/common/param_names.hpp"

#include "host/param_text.hpp"

#include <algorithm>

namespace adapter
{
std::string script_name(const host::param_info& info)
{
    std::string name = host::kebab_name(info);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}
} // namespace adapter
