#pragma once
// A file in the making: written under a hidden name in the folder of its target, renamed when it is complete,
// removed when it is not.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace media
{
class pending_file
{
public:
    // Makes the hidden file. Throws media::error that names the target: no such folder, no leave to write there, a
    // folder or device of this name, or a file of this name and no leave to overwrite it.
    pending_file(const std::filesystem::path& target, bool overwrite);
    ~pending_file();
    pending_file(const pending_file&) = delete;
    pending_file& operator=(const pending_file&) = delete;

    const std::filesystem::path& hidden() const { return hidden_; }
    // Writes the whole contents, for what is encoded in memory.
    void write(const std::uint8_t* bytes, std::size_t size);
    void commit();

private:
    std::filesystem::path target_;
    std::filesystem::path hidden_;
    std::string name_; // as the user gave it
    bool overwrite_;
};

// Throws media::error where a target of this name could not be written, as pending_file does for the name alone.
void require_free_name(const std::filesystem::path& target, bool overwrite);
} // namespace media
