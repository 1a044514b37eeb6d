#include "adapters/frei0r/instance.hpp"

#include "adapters/common/frame_draw.hpp"
#include "adapters/common/plain_arithmetic.hpp"
#include "adapters/frei0r/frei0r_header.hpp"

#include "host/looks.hpp"
#include "host/preset.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace frei0r
{
namespace
{
// Hosts keep shares of 1 with six decimals in their projects.
constexpr double same_share = 1e-6;

const std::vector<host::param_info>& params_of(const std::shared_ptr<const adapter::loaded_effect>& effect)
{
    static const std::vector<host::param_info> none;
    return effect ? effect->plugin.params() : none;
}

float share(std::uint8_t channel)
{
    return static_cast<float>(channel) / 255.0f;
}

std::uint8_t channel(float share_of_1)
{
    return static_cast<std::uint8_t>(std::lround(share_of_1 * 255.0f));
}

bool differs(double a, double b)
{
    return std::abs(a - b) > same_share;
}
} // namespace

instance::instance(std::shared_ptr<const adapter::loaded_effect> effect, const std::vector<param_row>& rows,
                   int width, int height, time_unit of_host)
    : effect_(std::move(effect)), rows_(rows), values_(rows.size()), width_(width), height_(height),
      of_host_(of_host), unit_(of_host), look_(params_of(effect_)), tracks_(look_)
{
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        values_[i].number = rows[i].normal;
        values_[i].text = rows[i].text;
        values_[i].rgb[0] = share(rows[i].color.red);
        values_[i].rgb[1] = share(rows[i].color.green);
        values_[i].rgb[2] = share(rows[i].color.blue);
    }
}

void instance::set(int index, const void* given)
{
    if (index < 0 || static_cast<std::size_t>(index) >= rows_.size() || given == nullptr)
        return;
    const adapter::plain_arithmetic plain;
    const auto i = static_cast<std::size_t>(index);
    const param_row& row = rows_[i];
    if (row.is_text())
        return set_text(i, *static_cast<const char* const*>(given));
    value& kept = values_[i];
    if (row.kind == row_kind::color)
    {
        f0r_param_color_t color{};
        std::memcpy(&color, given, sizeof color);
        const float rgb[3] = {color.r, color.g, color.b};
        const float standard[3] = {share(row.color.red), share(row.color.green), share(row.color.blue)};
        if (std::any_of(rgb, rgb + 3, [](float part) { return std::isnan(part); }))
            return;
        kept.own = false;
        for (std::size_t part = 0; part < 3; ++part)
        {
            kept.rgb[part] = std::clamp(rgb[part], 0.0f, 1.0f);
            kept.own =
                kept.own || differs(static_cast<double>(kept.rgb[part]), static_cast<double>(standard[part]));
        }
    }
    else
    {
        double number = 0.0;
        std::memcpy(&number, given, sizeof number);
        if (std::isnan(number) || number == kept.number)
            return;
        kept.number = std::clamp(number, 0.0, 1.0);
        kept.own = differs(kept.number, row.normal);
    }
    apply(row);
}

void instance::get(int index, void* into) const
{
    if (index < 0 || static_cast<std::size_t>(index) >= rows_.size() || into == nullptr)
        return;
    const param_row& row = rows_[static_cast<std::size_t>(index)];
    const value& kept = values_[static_cast<std::size_t>(index)];
    if (row.is_text())
    {
        char* text = const_cast<char*>(kept.text.c_str());
        std::memcpy(into, &text, sizeof text);
    }
    else if (row.kind == row_kind::color)
        std::memcpy(into, kept.rgb, sizeof kept.rgb);
    else
        std::memcpy(into, &kept.number, sizeof kept.number);
}

void instance::set_text(std::size_t index, const char* text)
{
    const std::string given = text ? text : "";
    if (values_[index].text == given)
        return;
    values_[index].text = given;
    if (rows_[index].kind == row_kind::time_unit)
        return read_unit();
    if (rows_[index].kind == row_kind::rate)
        read_rate();
    read_look(); // whose keys stand at frame numbers or at seconds, and so depend on the rate
}

void instance::read_rate()
{
    const std::string& rate = value_of(row_kind::rate, 0).text;
    const std::optional<adapter::frame_rate> asked = adapter::rate_of_text(rate);
    if (!asked)
        complain("\"" + rate +
                 "\" is no frame rate: give frames a second up to 1000, as in 25, 29.97 or 30000/1001");
    rate_ = asked.value_or(adapter::frame_rate{});
}

void instance::read_unit()
{
    const std::string& unit = value_of(row_kind::time_unit, 0).text;
    const std::optional<time_unit> counted = unit_of_text(unit, of_host_);
    if (!counted)
        complain("\"" + unit + "\" is no time unit: there are auto, seconds and milliseconds");
    unit_ = counted.value_or(of_host_);
}

void instance::read_look()
{
    look_ = host::param_tracks(params_of(effect_));
    const std::string& look = value_of(row_kind::look, 0).text;
    if (effect_ && !look.empty() && look != "none")
        try
        {
            host::load_preset(host::find_look(look, effect_->look_folders), effect_->plugin.params(),
                              adapter::composition_at(width_, height_, rate_), look_);
        }
        catch (const std::exception& failure)
        {
            complain(failure.what());
        }
    for (const param_row& row : rows_)
        apply(row);
}

const instance::value& instance::value_of(row_kind kind, int index) const
{
    const auto row = std::find_if(rows_.begin(), rows_.end(),
                                  [kind, index](const param_row& candidate)
                                  { return candidate.kind == kind && candidate.index == index; });
    return values_[static_cast<std::size_t>(row - rows_.begin())];
}

void instance::apply(const param_row& row)
{
    if (row.is_text() || !effect_)
        return;
    const host::param_info& info = params_of(effect_)[static_cast<std::size_t>(row.index)];
    const value& kept = value_of(row.kind, row.index);
    const bool is_point = row.kind == row_kind::point_x || row.kind == row_kind::point_y;
    const bool own = is_point
                         ? value_of(row_kind::point_x, row.index).own || value_of(row_kind::point_y, row.index).own
                         : kept.own;
    if (!own)
        return tracks_.set(row.index, look_.of(row.index));
    host::param_value set = host::default_value(info);
    if (is_point)
        set = point_value(info);
    else if (row.kind == row_kind::color)
    {
        set.color.red = channel(kept.rgb[0]);
        set.color.green = channel(kept.rgb[1]);
        set.color.blue = channel(kept.rgb[2]);
    }
    else
        set.x = natural_value(row, kept.number);
    tracks_.set(row.index, set);
}

host::param_value instance::point_value(const host::param_info& info) const
{
    host::param_value point;
    point.percent = true;
    for (const param_row& row : rows_)
    {
        if (row.index != info.index)
            continue;
        double& part = row.kind == row_kind::point_x ? point.x : point.y;
        part = natural_value(row, value_of(row.kind, row.index).number);
    }
    return point;
}

void instance::update(double time, const std::uint8_t* input, std::uint8_t* output) noexcept
{
    if (drawing_.fetch_add(1) > 0 && !sliced_.exchange(true))
        complain("the host draws with one filter on several threads at once; where these are slices of one frame "
                 "(threads=N in MLT), leave that off: every slice becomes a picture of its own");
    try
    {
        draw(time, input, output);
    }
    catch (const std::exception& failure)
    {
        if (!failed_.exchange(true))
            complain(failure.what());
        pass_on(input, output);
    }
    drawing_.fetch_sub(1);
}

void instance::draw(double time, const std::uint8_t* input, std::uint8_t* output)
{
    if (!effect_)
        return pass_on(input, output);
    const adapter::plain_arithmetic plain;
    const std::int32_t frame = frame_of(time, unit_, rate_, untimed_);
    const std::ptrdiff_t rowbytes = std::ptrdiff_t{4} * width_;
    adapter::draw_frame(*effect_, adapter::composition_at(width_, height_, rate_, frame), tracks_, frame,
                        {input, rowbytes}, {output, rowbytes});
}

void instance::pass_on(const std::uint8_t* input, std::uint8_t* output) const noexcept
{
    const std::size_t bytes =
        std::size_t{4} * static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    if (input == nullptr)
        std::memset(output, 0, bytes);
    else if (input != output)
        std::memcpy(output, input, bytes);
}
} // namespace frei0r
