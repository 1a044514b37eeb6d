#include "still_source.hpp"

#include "argb_converter.hpp"
#include "media/sequence_name.hpp"
#include "orientation.hpp"
#include "source.hpp"

#include <cstring>
#include <system_error>
#include <utility>

namespace media
{
namespace
{
class still_source : public reader::source
{
public:
    still_source(frame_decoder& file, rational rate) : name_(file.file().name()), still_(decode_still(file))
    {
        info.kind = source_kind::still;
        info.width = still_.pixels.width();
        info.height = still_.pixels.height();
        info.rate = rate;
        info.alpha = still_.alpha;
    }

    bool read(std::int32_t, image_view into) override
    {
        require_size(info, into, name_);
        for (int y = 0; y < into.height; ++y)
            std::memcpy(into.row(y), still_.pixels.view().row(y), 4 * static_cast<std::size_t>(into.width));
        return true;
    }

private:
    std::string name_;
    decoded_still still_;
};

class sequence_source : public reader::source
{
public:
    sequence_source(const std::filesystem::path& pattern, rational rate)
        : name_(pattern.string()), files_(sequence_name::parse(pattern).value())
    {
        const std::vector<std::int32_t> numbers = files_.numbers_present();
        if (numbers.empty())
            throw error(name_ + ": no file of this pattern is there (the first would be called " +
                        files_.file(0).filename().string() + " or " + files_.file(1).filename().string() + ")");
        frame_decoder first(files_.file(numbers.front()));
        const decoded_still still = decode_still(first);
        info.kind = source_kind::sequence;
        info.width = still.pixels.width();
        info.height = still.pixels.height();
        info.rate = rate;
        info.first = numbers.front();
        info.frames = numbers.back() - numbers.front() + 1;
        info.alpha = still.alpha;
        last_ = numbers.back();
    }

    bool read(std::int32_t frame, image_view into) override
    {
        if (frame > last_)
            return false;
        std::error_code ignored;
        if (!std::filesystem::exists(files_.file(frame), ignored))
            throw error(files_.file(frame).string() + ": is missing from the sequence; add it, or give --frames "
                                                      "without it");
        frame_decoder file(files_.file(frame));
        const picture pixels = decode_still(file).pixels;
        if (pixels.width() != info.width || pixels.height() != info.height)
            throw error(file.file().name() + ": is " + std::to_string(pixels.width()) + "x" +
                        std::to_string(pixels.height()) + " pixels, but the sequence began with " +
                        std::to_string(info.width) + "x" + std::to_string(info.height));
        require_size(info, into, name_);
        for (int y = 0; y < into.height; ++y)
            std::memcpy(into.row(y), pixels.view().row(y), 4 * static_cast<std::size_t>(into.width));
        return true;
    }

private:
    std::string name_;
    sequence_name files_;
    std::int32_t last_ = 0;
};
} // namespace

decoded_still decode_still(frame_decoder& file)
{
    const AVFrame* frame = file.next();
    if (frame == nullptr)
        throw error(file.file().name() + ": the file is damaged or cut off (no picture in it)");
    decoded_still still;
    still.pixels = picture(frame->width, frame->height);
    still.alpha = argb_converter::has_alpha(*frame);
    argb_converter().convert(*frame, file.codec(), still.pixels.view());
    const orientation how = orientation_of(file.stream(), *frame);
    if (how.upright())
        return still;
    picture upright(how.shown_width(*frame), how.shown_height(*frame));
    set_upright(still.pixels.view(), how, upright.view());
    still.pixels = std::move(upright);
    return still;
}

std::unique_ptr<reader::source> open_sequence(const std::filesystem::path& pattern, rational rate)
{
    return std::make_unique<sequence_source>(pattern, rate);
}

std::unique_ptr<reader::source> open_file(const std::filesystem::path& path, std::optional<rational> rate)
{
    {
        frame_decoder file(path);
        if (file.file().is_picture())
            return std::make_unique<still_source>(file, rate.value_or(rational{25, 1}));
    }
    return open_clip(path, rate);
}
} // namespace media
