#include "adapters/common/own_file.hpp"

#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace adapter
{
namespace
{
std::filesystem::path file_of(const void* code)
{
#ifdef _WIN32
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<LPCWSTR>(code), &module))
        return {};
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
#else
    Dl_info info{};
    if (dladdr(code, &info) == 0 || info.dli_fname == nullptr)
        return {};
    return info.dli_fname;
#endif
}
} // namespace

std::filesystem::path own_file()
{
    const std::filesystem::path named = file_of(reinterpret_cast<const void*>(&own_file));
    std::error_code failed;
    std::filesystem::path resolved = std::filesystem::canonical(named, failed);
    return failed ? named : resolved;
}

std::string file_name_of(const void* code)
{
    return file_of(code).filename().string();
}
} // namespace adapter
