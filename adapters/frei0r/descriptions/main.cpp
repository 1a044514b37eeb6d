// frei0r_descriptions FOLDER: writes what editors and people read about the parameters below FOLDER, the
// repository.

#include "adapters/common/effect_loan.hpp"
#include "adapters/frei0r/descriptions/descriptions.hpp"

#include "host/looks.hpp"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace
{
frei0r::description_input what_there_is()
{
    const auto effect = adapter::borrow_effect();
    frei0r::description_input input;
    input.rows = frei0r::make_table(effect->plugin.params());
    // Those that ship, whatever else lies about on this machine.
    for (const std::filesystem::path& look : host::all_looks({FILIGRANE_SOURCE_PRESETS}))
        input.looks.push_back(look.stem().string());
    return input;
}

void write(const std::filesystem::path& file, const std::string& text)
{
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    if (!(out << text).flush())
        throw std::runtime_error(file.string() + ": cannot be written");
}
} // namespace

int main(int argc, char** argv)
try
{
    if (argc != 2)
        throw std::runtime_error("give the folder of the repository");
    for (const frei0r::described_file& file : frei0r::all_descriptions(what_there_is()))
        write(std::filesystem::path(argv[1]) / file.name, file.text);
    return 0;
}
catch (const std::exception& failure)
{
    std::cerr << "frei0r_descriptions: " << failure.what() << '\n';
    return 1;
}
