#include "media/reader.hpp"

#include "media/error.hpp"
#include "media/sequence_name.hpp"
#include "source.hpp"

#include <system_error>

namespace media
{
reader::reader(const std::filesystem::path& path, std::optional<rational> rate)
{
    if (rate && (rate->num <= 0 || rate->den <= 0))
        throw error(path.string() + ": the frame rate must be above 0");
    // A file that is really called frame_#.png is taken at its word.
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored) && sequence_name::parse(path))
        source_ = open_sequence(path, rate.value_or(rational{25, 1}));
    else
        source_ = open_file(path, rate);
}

reader::~reader() = default;
reader::reader(reader&&) noexcept = default;
reader& reader::operator=(reader&&) noexcept = default;

const source_info& reader::info() const
{
    return source_->info;
}

bool reader::read(std::int32_t frame, image_view into)
{
    return source_->read(frame, into);
}

void require_size(const source_info& info, image_view into, const std::string& name)
{
    if (into.width != info.width || into.height != info.height)
        throw error(name + ": is " + std::to_string(info.width) + "x" + std::to_string(info.height) +
                    " pixels, asked for as " + std::to_string(into.width) + "x" + std::to_string(into.height));
}
} // namespace media
