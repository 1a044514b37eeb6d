#pragma once
// A file in the making: written under a hidden name in the folder of its target, renamed when it is complete,
// removed when it is not. A process that is killed cannot remove it. So every file in the making is locked, which
// the system undoes when its process ends, and the next writer into the folder removes those that no lock holds.
//
// Files without a name until they are complete would need no such care, but not every file system has them, and
// none can give such a file a name that is taken.

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

    // For a library that opens files by name; what it writes is not seen by write().
    const std::filesystem::path& hidden() const { return hidden_; }
    // Writes the whole contents, for what is encoded in memory.
    void write(const std::uint8_t* bytes, std::size_t size);
    // Waits until what was written is on the disk, so that not even a machine that stops leaves less under the
    // name.
    void sync();
    void commit();

private:
    void make();

    std::filesystem::path target_;
    std::filesystem::path hidden_;
    std::string name_; // as the user gave it
    bool overwrite_;
    int descriptor_ = -1; // holds the lock
    int listed_ = -1;     // its place among the unfinished files
};

// Removes what killed processes left of files in the making in the folder of this target.
void remove_abandoned_files(const std::filesystem::path& target);

// Throws media::error where a target of this name could not be written, as pending_file does for the name alone.
void require_free_name(const std::filesystem::path& target, bool overwrite);
} // namespace media
