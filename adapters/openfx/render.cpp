#include "adapters/openfx/actions.hpp"

#include "adapters/common/plain_arithmetic.hpp"
#include "adapters/openfx/api/names.hpp"
#include "adapters/openfx/geometry.hpp"
#include "adapters/openfx/image.hpp"
#include "adapters/openfx/library.hpp"
#include "adapters/openfx/pixels.hpp"
#include "adapters/openfx/properties.hpp"
#include "adapters/openfx/values.hpp"

#include "host/error.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

namespace openfx
{
namespace
{
constexpr int rows_between_polls = 64;

// Rows of the effect's picture, from the top, without a gap.
struct picture
{
    int width = 0;
    int height = 0;
    std::unique_ptr<std::uint8_t[]> argb;

    std::uint8_t* row(int y) const { return argb.get() + static_cast<std::ptrdiff_t>(y) * width * 4; }
};

class unwanted
{
public:
    explicit unwanted(OfxImageEffectHandle effect) : effect_(effect) {}

    // Whether the host gave the frame up; asks it every so many rows.
    bool at_row(int row) const { return row % rows_between_polls == 0 && now(); }
    bool now() const { return suites().effect->abort && suites().effect->abort(effect_) == 1; }

private:
    OfxImageEffectHandle effect_;
};

// Refused before memory is asked for: the host library would refuse it, too.
void check_size(const host::composition& comp)
{
    constexpr int most = 30000;
    if (comp.width > most || comp.height > most)
        throw host::error("a frame of " + std::to_string(comp.width) + " by " + std::to_string(comp.height) +
                          " pixels cannot be drawn; " + std::to_string(most) + " each way is the most");
}

picture blank(const placement& where)
{
    check_size(where.comp);
    picture made{where.comp.picture_width(), where.comp.picture_height(), nullptr};
    made.argb = std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(made.width) *
                                                 static_cast<std::size_t>(made.height) * 4);
    return made;
}

// Fills the lines that the source has; where it has none the picture stays transparent black. False where the host
// gave up.
bool read_source(const image& source, const row_map& rows, const OfxRectI& frame, const picture& to,
                 const unwanted& stop)
{
    const int left = std::max(frame.x1, source.bounds.x1);
    const int right = std::min(frame.x2, source.bounds.x2);
    for (int line = frame.y1; line < frame.y2 && left < right; ++line)
    {
        if (stop.at_row(line - frame.y1))
            return false;
        int y = rows.row_of(line);
        if (rows.layout != row_layout::whole) // a field's last row may stand for one line more
            y = std::clamp(y, source.bounds.y1, source.bounds.y2 - 1);
        if (y < source.bounds.y1 || y >= source.bounds.y2)
            continue;
        const std::byte* from =
            source.row(y) + static_cast<std::size_t>(left - source.bounds.x1) * source.format.pixel_bytes();
        read_pixels(source.format, from, to.row(frame.y2 - 1 - line) + 4 * (left - frame.x1), right - left);
    }
    return true;
}

// Writes what lies in the window and in the image.
void write_output(const picture& from, const placement& where, const OfxRectI& window, const image& output,
                  const unwanted& stop)
{
    const int left = std::max({window.x1, output.bounds.x1, where.frame.x1});
    const int right = std::min({window.x2, output.bounds.x2, where.frame.x2});
    const int bottom = std::max(window.y1, output.bounds.y1);
    const int top = std::min(window.y2, output.bounds.y2);
    for (int y = bottom; y < top && left < right; ++y)
    {
        if (stop.at_row(y - bottom))
            return;
        const int line = std::clamp(where.rows.line_of(y), where.frame.y1, where.frame.y2 - 1);
        std::byte* to =
            output.row(y) + static_cast<std::size_t>(left - output.bounds.x1) * output.format.pixel_bytes();
        write_pixels(output.format, from.row(where.frame.y2 - 1 - line) + 4 * (left - where.frame.x1), to,
                     right - left);
    }
}

std::optional<OfxRectD> defined_region(OfxImageClipHandle clip, OfxTime time)
{
    OfxRectD region{};
    if (!clip || !suites().effect->clipGetRegionOfDefinition ||
        suites().effect->clipGetRegionOfDefinition(clip, time, &region) != kOfxStatOK)
        return std::nullopt;
    return usable_region(region);
}

std::optional<OfxPointD> project_size(OfxImageEffectHandle effect)
{
    OfxPropertySetHandle handle = nullptr;
    if (suites().effect->getPropertySet(effect, &handle) != kOfxStatOK)
        return std::nullopt;
    const property_set properties(handle);
    return OfxPointD{properties.number(kOfxImageEffectPropProjectSize, 0.0, 0),
                     properties.number(kOfxImageEffectPropProjectSize, 0.0, 1)};
}
} // namespace

int frame_of(OfxTime time)
{
    constexpr double late = 1.0 / 1024.0;
    using limits = std::numeric_limits<int>;
    const double frame = std::floor(time + late);
    if (std::isnan(frame))
        return 0;
    return static_cast<int>(
        std::clamp(frame, static_cast<double>(limits::min()), static_cast<double>(limits::max())));
}

OfxStatus render(const library& lib, OfxImageEffectHandle effect, OfxPropertySetHandle in_args)
{
    const property_set arguments(in_args);
    const OfxTime time = arguments.number(kOfxPropTime, 0.0);
    const unwanted stop(effect);
    if (stop.now())
        return kOfxStatOK;
    const fetched_image drawn(effect, kOfxImageEffectOutputClipName, time);
    if (!drawn.there())
        return kOfxStatFailed;
    const std::optional<image> output = drawn.describe();
    if (!output)
        return kOfxStatErrImageFormat;

    told_sizes told;
    told.scale_x = arguments.number(kOfxImageEffectPropRenderScale, 1.0, 0);
    told.scale_y = arguments.number(kOfxImageEffectPropRenderScale, 1.0, 1);
    told.defined = defined_region(drawn.clip(), time);
    told.project_size = project_size(effect);
    const placement where = place(*output, told);
    const picture frame = blank(where);
    {
        const fetched_image shown(effect, kOfxImageEffectSimpleSourceClipName, time);
        if (const std::optional<image> source = shown.there() ? shown.describe() : std::nullopt)
        {
            const row_map rows = rows_of(*source, told.scale_y, defined_region(shown.clip(), time));
            if (!read_source(*source, rows, where.frame, frame, stop))
                return kOfxStatOK;
        }
    }
    {
        const adapter::plain_arithmetic plain;
        const int number = frame_of(time);
        frame_values values(lib, params_of(effect), time, number);
        host::render_frame(lib.effect->plugin, where.comp, values.tracks(), number,
                           {frame.argb.get(), frame.width, frame.height, frame.width * 4},
                           {frame.argb.get(), frame.width, frame.height, frame.width * 4});
    }
    if (!stop.now())
        write_output(frame, where, arguments.rectangle(kOfxImageEffectPropRenderWindow).value_or(output->bounds),
                     *output, stop);
    return kOfxStatOK;
}
} // namespace openfx
