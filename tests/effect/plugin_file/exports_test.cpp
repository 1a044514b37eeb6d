// The plug-in's file gives out its entry point and nothing else, needs no library but the system's, and has no
// variables that outlive a call.

#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace
{
// A 64-bit ELF file of this machine's byte order, read by its section headers.
class elf_file
{
public:
    explicit elf_file(const char* path)
    {
        std::ifstream file(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
    }

    bool valid() const
    {
        return bytes_.size() > sizeof(Elf64_Ehdr) && std::memcmp(bytes_.data(), ELFMAG, SELFMAG) == 0 &&
               bytes_[EI_CLASS] == ELFCLASS64;
    }

    // Names of the dynamic symbols that the file itself defines.
    std::vector<std::string> exported() const
    {
        std::vector<std::string> names;
        for (const Elf64_Shdr& section : sections(SHT_DYNSYM))
            for (const Elf64_Sym& symbol : records<Elf64_Sym>(section))
                if (symbol.st_shndx != SHN_UNDEF)
                    names.emplace_back(text(section.sh_link, symbol.st_name));
        return names;
    }

    // The libraries that it asks the loader for.
    std::vector<std::string> needed() const
    {
        std::vector<std::string> names;
        for (const Elf64_Shdr& section : sections(SHT_DYNAMIC))
            for (const Elf64_Dyn& entry : records<Elf64_Dyn>(section))
                if (entry.d_tag == DT_NEEDED)
                    names.emplace_back(text(section.sh_link, entry.d_un.d_val));
        return names;
    }

    // Names of what stands in the sections of variables, those of threads included. Constants that the loader
    // relocates are in sections of their own.
    std::vector<std::string> variables() const
    {
        std::vector<std::string> names;
        for (const Elf64_Shdr& section : sections(SHT_SYMTAB))
            for (const Elf64_Sym& symbol : records<Elf64_Sym>(section))
                if (symbol.st_shndx < SHN_LORESERVE && ELF64_ST_TYPE(symbol.st_info) != STT_SECTION &&
                    holds_variables(symbol.st_shndx))
                    names.emplace_back(text(section.sh_link, symbol.st_name));
        return names;
    }

private:
    bool holds_variables(std::uint64_t index) const
    {
        const std::string name = text(at<Elf64_Ehdr>(0).e_shstrndx, section(index).sh_name);
        return name == ".data" || name == ".bss" || name == ".tdata" || name == ".tbss";
    }
    template <class T>
    T at(std::uint64_t offset) const
    {
        T value{};
        if (offset + sizeof value <= bytes_.size())
            std::memcpy(&value, bytes_.data() + offset, sizeof value);
        return value;
    }
    Elf64_Shdr section(std::uint64_t index) const
    {
        const auto header = at<Elf64_Ehdr>(0);
        return at<Elf64_Shdr>(header.e_shoff + index * sizeof(Elf64_Shdr));
    }
    std::vector<Elf64_Shdr> sections(std::uint32_t type) const
    {
        std::vector<Elf64_Shdr> found;
        for (std::uint64_t i = 0; i < at<Elf64_Ehdr>(0).e_shnum; ++i)
            if (section(i).sh_type == type)
                found.push_back(section(i));
        return found;
    }
    template <class T>
    std::vector<T> records(const Elf64_Shdr& in) const
    {
        std::vector<T> all;
        for (std::uint64_t offset = 0; offset + sizeof(T) <= in.sh_size; offset += sizeof(T))
            all.push_back(at<T>(in.sh_offset + offset));
        return all;
    }
    const char* text(std::uint64_t strings, std::uint64_t offset) const
    {
        return bytes_.data() + section(strings).sh_offset + offset;
    }

    std::vector<char> bytes_;
};

TEST(plugin_file, gives_out_the_entry_point_alone)
{
    const elf_file file(FILIGRANE_BUILT_PLUGIN);
    ASSERT_TRUE(file.valid()) << FILIGRANE_BUILT_PLUGIN;
    EXPECT_EQ(file.exported(), std::vector<std::string>{"PluginEntry"});
}

TEST(plugin_file, needs_the_standard_libraries_alone)
{
    const elf_file file(FILIGRANE_BUILT_PLUGIN);
    ASSERT_TRUE(file.valid());
    const std::vector<std::string> needed = file.needed();
    EXPECT_FALSE(needed.empty());
    for (const std::string& name : needed)
    {
        const bool sanitizer = name.starts_with("libasan") || name.starts_with("libubsan");
        EXPECT_TRUE(sanitizer || name.starts_with("libstdc++.") || name.starts_with("libc++") ||
                    name.starts_with("libm.") || name.starts_with("libgcc_s.") || name.starts_with("libc.") ||
                    name.starts_with("ld-linux"))
            << name;
    }
}

#if !defined(__SANITIZE_ADDRESS__) // which has variables of its own in every file
TEST(plugin_file, has_no_variables_of_its_own)
{
    const elf_file file(FILIGRANE_BUILT_PLUGIN);
    ASSERT_TRUE(file.valid());
    const std::vector<std::string> variables = file.variables();
    EXPECT_FALSE(variables.empty()) << "the file is stripped: nothing can be told";
    // The compiler's library notes once, on loading, what the processor can do (__cpu_...).
    for (const std::string& name : variables)
        EXPECT_TRUE(name == "__dso_handle" || name == "__TMC_END__" || name.starts_with("completed.") ||
                    name.starts_with("DW.ref.") || name.starts_with("__cpu_"))
            << name;
}
#endif
} // namespace
