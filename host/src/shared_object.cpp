#include "shared_object.hpp"

#include "host/error.hpp"
#include "host/plugin.hpp"
#include "text.hpp"

#include <array>
#include <cstdint>
#include <fstream>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif
#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif
#ifdef __linux__
#include <sys/auxv.h>
#endif

namespace host
{
namespace
{
void require_readable_file(const std::filesystem::path& file)
{
    std::error_code failure;
    const auto status = std::filesystem::status(file, failure);
    if (!std::filesystem::exists(status))
        throw error(text_line(file.string(), ": no such file; give the path of the effect's plug-in file"));
    if (std::filesystem::is_directory(status))
        throw error(text_line(file.string(), ": is a folder; give the path of the plug-in file in it"));
    if (!std::ifstream(file, std::ios::binary))
        throw error(text_line(file.string(), ": cannot be opened for reading; check its permissions"));
}

#ifdef __linux__
// The loader answers "invalid ELF header" and the like; the file's first bytes tell a person more. The class (32
// or 64 bits) is byte 4 and the machine the two bytes at 18 of an ELF file, little-endian on every machine we run
// on.
void require_our_machine(const std::filesystem::path& file)
{
    const auto header_of = [](const std::filesystem::path& path)
    {
        std::array<unsigned char, 20> bytes{};
        std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(bytes.data()), bytes.size());
        return bytes;
    };
    const auto theirs = header_of(file);
    if (theirs[0] != 0x7f || theirs[1] != 'E' || theirs[2] != 'L' || theirs[3] != 'F')
        throw error(
            text_line(file.string(), ": is not a shared object; give a plug-in file built for this system"));
    const auto ours = header_of("/proc/self/exe");
    const bool known = ours[0] == 0x7f;
    if (known && (theirs[4] != ours[4] || theirs[18] != ours[18] || theirs[19] != ours[19]))
        throw error(text_line(file.string(),
                              ": is built for another processor architecture; give one built for this machine"));
}

// A file that was cut off maps addresses behind its end, and touching those kills the process. What the loader
// maps ends before the section headers, which stand last in what linkers write.
void require_whole_file(const std::filesystem::path& file)
{
    struct elf64_header
    {
        unsigned char ident[16];
        std::uint16_t type, machine;
        std::uint32_t version;
        std::uint64_t entry, program_headers, section_headers;
        std::uint32_t flags;
        std::uint16_t size, program_size, program_count, section_size, section_count, names;
    };
    static_assert(sizeof(elf64_header) == 64);
    elf64_header header{};
    std::ifstream(file, std::ios::binary).read(reinterpret_cast<char*>(&header), sizeof header);
    std::error_code failure;
    const std::uintmax_t bytes = std::filesystem::file_size(file, failure);
    const std::uint64_t tables = std::uint64_t{header.section_size} * header.section_count;
    if (failure || bytes < sizeof header || header.section_headers > bytes ||
        tables > bytes - header.section_headers)
        throw error(text_line(file.string(), ": is cut off; copy or build the plug-in file again"));
}
#endif
} // namespace

#ifdef _WIN32
shared_object::shared_object(const std::filesystem::path& file)
{
    require_readable_file(file);
    library_ = LoadLibraryW(std::filesystem::absolute(file).c_str());
    if (!library_ && GetLastError() == ERROR_BAD_EXE_FORMAT)
        throw error(text_line(file.string(), ": is not a plug-in file for this processor architecture"));
    if (!library_)
        throw error(text_line(file.string(), ": cannot be loaded: system error ", GetLastError()));
}

shared_object::~shared_object()
{
    FreeLibrary(static_cast<HMODULE>(library_));
}

void* shared_object::symbol(const char* name) const
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library_), name));
}
#else
shared_object::shared_object(const std::filesystem::path& file)
{
    require_readable_file(file);
#ifdef __linux__
    require_our_machine(file);
    require_whole_file(file);
#endif
    // Absolute, because a bare file name would be searched for in the system's library folders.
    library_ = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library_)
        throw error(text_line(file.string(), ": cannot be loaded: ", dlerror()));
}

shared_object::~shared_object()
{
    dlclose(library_);
}

void* shared_object::symbol(const char* name) const
{
    return dlsym(library_, name);
}
#endif

std::filesystem::path plugin_beside_binary()
{
#if defined(_WIN32)
    std::array<wchar_t, 32768> path{};
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return std::filesystem::path(path.data()).parent_path() / "Filigrane.aex";
#elif defined(__APPLE__)
    const std::filesystem::path in_bundle = "Filigrane.plugin/Contents/MacOS/Filigrane";
    std::array<char, 4096> path{};
    auto size = static_cast<std::uint32_t>(path.size());
    if (_NSGetExecutablePath(path.data(), &size) != 0)
        return in_bundle;
    return std::filesystem::weakly_canonical(path.data()).parent_path() / in_bundle;
#else
    std::error_code failure;
    std::filesystem::path binary = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (failure) // as in a bare chroot; this is the path that the kernel was asked to run
        binary = std::filesystem::absolute(reinterpret_cast<const char*>(getauxval(AT_EXECFN)), failure);
    return binary.parent_path() / "Filigrane.so";
#endif
}
} // namespace host
