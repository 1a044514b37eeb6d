#include "transform.hpp"

#include "map_row.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace host
{
namespace
{
using u64 = std::uint64_t;

bool inside(const PF_EffectWorld& world, std::int64_t x, std::int64_t y)
{
    return x >= 0 && y >= 0 && x < world.width && y < world.height;
}

PF_Pixel pixel_or_nothing(const PF_EffectWorld& world, std::int64_t x, std::int64_t y)
{
    return inside(world, x, y) ? row_of(world, static_cast<int>(y))[x] : PF_Pixel{};
}

// The four pixels around a point: left and right of the upper row, then of the lower one.
struct neighbours
{
    PF_Pixel pixel[4];
    u64 weight[4];

    u64 weighted(A_u_char PF_Pixel::*channel, const u64 (&by)[4]) const
    {
        return by[0] * pixel[0].*channel + by[1] * pixel[1].*channel + by[2] * pixel[2].*channel +
               by[3] * pixel[3].*channel;
    }
};

// Weights add up to 2^32.
PF_Pixel mean(const neighbours& around)
{
    const PF_Pixel* p = around.pixel;
    const u64* w = around.weight;
    if ((p[0].alpha | p[1].alpha | p[2].alpha | p[3].alpha) == 0)
        return {};
    if (p[0].alpha == p[1].alpha && p[1].alpha == p[2].alpha && p[2].alpha == p[3].alpha)
    {
        // The common alpha cancels out of the quotients.
        const auto channel = [&](A_u_char PF_Pixel::*c)
        { return static_cast<A_u_char>((around.weighted(c, around.weight) + (u64{1} << 31)) >> 32); };
        return {p[0].alpha, channel(&PF_Pixel::red), channel(&PF_Pixel::green), channel(&PF_Pixel::blue)};
    }
    const u64 by_alpha[4] = {w[0] * p[0].alpha, w[1] * p[1].alpha, w[2] * p[2].alpha, w[3] * p[3].alpha};
    const u64 sum = by_alpha[0] + by_alpha[1] + by_alpha[2] + by_alpha[3];
    if (sum == 0)
        return {};
    const auto channel = [&](A_u_char PF_Pixel::*c)
    { return static_cast<A_u_char>((2 * around.weighted(c, by_alpha) + sum) / (2 * sum)); };
    return {static_cast<A_u_char>((sum + (u64{1} << 31)) >> 32), channel(&PF_Pixel::red),
            channel(&PF_Pixel::green), channel(&PF_Pixel::blue)};
}
} // namespace

PF_Pixel sample_bilinear(const PF_EffectWorld& world, std::int64_t x, std::int64_t y)
{
    const std::int64_t left = x >> 16;
    const std::int64_t top = y >> 16;
    if (left < -1 || top < -1 || left >= world.width || top >= world.height)
        return {};
    const auto fx = static_cast<u64>(x & 0xffff);
    const auto fy = static_cast<u64>(y & 0xffff);
    if (fx == 0 && fy == 0)
        return pixel_or_nothing(world, left, top);

    neighbours around{};
    if (left >= 0 && top >= 0 && left + 1 < world.width && top + 1 < world.height)
    {
        const PF_Pixel* upper = row_of(world, static_cast<int>(top)) + left;
        const PF_Pixel* lower = row_of(world, static_cast<int>(top) + 1) + left;
        around = {{upper[0], upper[1], lower[0], lower[1]}, {}};
    }
    else
    {
        around = {{pixel_or_nothing(world, left, top), pixel_or_nothing(world, left + 1, top),
                   pixel_or_nothing(world, left, top + 1), pixel_or_nothing(world, left + 1, top + 1)},
                  {}};
    }
    around.weight[0] = (65536 - fx) * (65536 - fy);
    around.weight[1] = fx * (65536 - fy);
    around.weight[2] = (65536 - fx) * fy;
    around.weight[3] = fx * fy;
    return mean(around);
}

PF_Pixel sample_nearest(const PF_EffectWorld& world, std::int64_t x, std::int64_t y)
{
    return pixel_or_nothing(world, (x + 32768) >> 16, (y + 32768) >> 16);
}

sampler sampler_for(PF_Quality quality)
{
    return quality >= PF_Quality_HI ? sample_bilinear : sample_nearest;
}

namespace
{
constexpr std::int64_t nowhere = std::int64_t{-1} << 40; // left of and above every world

// From the centre of a destination pixel to the sampling position in the source, 16.16.
struct back_map
{
    double xx, yx, ox; // source x = xx * x + yx * y + ox
    double xy, yy, oy;
    bool usable = false;

    static std::int64_t fixed(double pixels)
    {
        const double scaled = pixels * 65536.0 + 0.5;
        constexpr double limit = 1099511627776.0; // 2^40; not-a-number is nowhere as well
        if (!(scaled > -limit && scaled < limit))
            return nowhere;
        const auto whole = static_cast<std::int64_t>(scaled);
        return static_cast<double>(whole) > scaled ? whole - 1 : whole;
    }
    // Half a pixel back, from the plane to positions that count from pixel centres.
    std::int64_t source_x(double x, double y) const { return fixed((xx * x + yx * y + ox) - 0.5); }
    std::int64_t source_y(double x, double y) const { return fixed((xy * x + yy * y + oy) - 0.5); }
};

back_map back_map_of(const PF_FloatMatrix& matrix, bool src2dst)
{
    const auto& m = matrix.mat;
    const double det = m[0][0] * m[1][1] - m[0][1] * m[1][0];
    if (!std::isfinite(det) || det == 0.0)
        return {};
    back_map map{m[0][0], m[1][0], m[2][0], m[0][1], m[1][1], m[2][1], true};
    if (src2dst)
    {
        map.xx = m[1][1] / det;
        map.yx = -m[1][0] / det;
        map.xy = -m[0][1] / det;
        map.yy = m[0][0] / det;
        map.ox = -(map.xx * m[2][0] + map.yx * m[2][1]);
        map.oy = -(map.xy * m[2][0] + map.yy * m[2][1]);
    }
    map.usable = std::isfinite(map.xx) && std::isfinite(map.yx) && std::isfinite(map.ox) &&
                 std::isfinite(map.xy) && std::isfinite(map.yy) && std::isfinite(map.oy);
    return map;
}

bool is_whole_number(double value)
{
    return value > -1e6 && value < 1e6 && value == static_cast<double>(static_cast<std::int64_t>(value));
}

// Every sample then falls on a pixel's centre, exactly: coordinates stay far below 2^52.
bool moves_by_whole_pixels(const back_map& map)
{
    return map.xx == 1.0 && map.yy == 1.0 && map.xy == 0.0 && map.yx == 0.0 && is_whole_number(map.ox) &&
           is_whole_number(map.oy);
}

// The mean of the exposures' samples, colours weighted by alpha, rounded to nearest, halves upwards.
class exposure
{
public:
    void add(PF_Pixel sample)
    {
        alpha_ += sample.alpha;
        red_ += u64{sample.alpha} * sample.red;
        green_ += u64{sample.alpha} * sample.green;
        blue_ += u64{sample.alpha} * sample.blue;
    }
    PF_Pixel mean(u64 count) const
    {
        if (alpha_ == 0)
            return {};
        const auto nearest = [](u64 a, u64 b) { return static_cast<A_u_char>((2 * a + b) / (2 * b)); };
        return {nearest(alpha_, count), nearest(red_, alpha_), nearest(green_, alpha_), nearest(blue_, alpha_)};
    }

private:
    u64 alpha_ = 0, red_ = 0, green_ = 0, blue_ = 0;
};

PF_Pixel exposed(const std::vector<back_map>& maps, sampler sample, const PF_EffectWorld& src, double x, double y)
{
    exposure sum;
    for (const back_map& map : maps)
        if (map.usable)
            sum.add(sample(src, map.source_x(x, y), map.source_y(x, y)));
    return sum.mean(maps.size());
}

// The first column of begin to end from which on `reached` is true; it never turns back to false. End where it
// never is.
template <class Reached>
int first_column(int begin, int end, Reached reached)
{
    while (begin < end)
    {
        const int middle = begin + (end - begin) / 2;
        if (reached(middle))
            end = middle;
        else
            begin = middle + 1;
    }
    return begin;
}

struct columns
{
    int begin, end;
};

// The columns whose position along one axis, 16.16, is at least 0 and below `limit`. Positions never turn back
// along a row: multiplication by a constant and addition of one keep the order of what they round.
columns columns_within(double step, double part, double offset, double limit, columns all)
{
    const auto scaled = [=](int column)
    { return (((step * (column + 0.5) + part) + offset) - 0.5) * 65536.0 + 0.5; };
    const auto past = [=](double bound)
    { return first_column(all.begin, all.end, [=](int column) { return scaled(column) >= bound; }); };
    const auto under = [=](double bound)
    { return first_column(all.begin, all.end, [=](int column) { return scaled(column) < bound; }); };
    return step >= 0.0 ? columns{past(0.0), past(limit)} : columns{under(limit), under(0.0)};
}

// One row of samples after the other, at one level.
class row_sampler
{
public:
    row_sampler(simd_level level, PF_Quality quality, const PF_EffectWorld& src, const back_map& map)
        : level_(level), fine_(quality >= PF_Quality_HI), sample_(sampler_for(quality)), src_(src), map_(map),
          fast_(level_ != simd_level::scalar && positions_fit()), whole_(moves_by_whole_pixels(map))
    {
    }

    // The row's samples for the columns from `all.begin` on.
    void row(int row, columns all, PF_Pixel* out) const
    {
        columns inside{all.begin, all.begin};
        if (fast_)
            inside = run(row, all, out);
        one_by_one(row, {all.begin, inside.begin}, out);
        one_by_one(row, {inside.end, all.end}, out + (inside.end - all.begin));
    }

private:
    // Positions within the source are 32-bit numbers, and no step on the way to one is infinite.
    bool positions_fit() const
    {
        const auto moderate = [](double value) { return value > -1e12 && value < 1e12; };
        return src_.width < 32768 && src_.height < 32768 && moderate(map_.xx) && moderate(map_.yx) &&
               moderate(map_.ox) && moderate(map_.xy) && moderate(map_.yy) && moderate(map_.oy);
    }

    // one_by_one(row, ...) for the columns, answered, whose samples lie well inside the source.
    columns run(int row, columns all, PF_Pixel* out) const
    {
        const double y = row + 0.5;
        const row_map map{map_.xx, map_.yx * y, map_.ox, map_.xy, map_.yy * y, map_.oy};
        const auto limit = [](int size) { return 65536.0 * (size - 1); };
        const columns across = columns_within(map.xx, map.yx_y, map.ox, limit(src_.width), all);
        const columns down = columns_within(map.xy, map.yy_y, map.oy, limit(src_.height), all);
        const columns inside{std::max(across.begin, down.begin), std::min(across.end, down.end)};
        const int count = inside.end - inside.begin;
        if (count < shortest_mapped_run)
            return {all.begin, all.begin};
        PF_Pixel* const first = out + (inside.begin - all.begin);
        if (whole_)
            std::copy_n(row_of(src_, row + static_cast<int>(map_.oy)) + (inside.begin + static_cast<int>(map_.ox)),
                        count, first);
        else
            sample_run(map, inside.begin, count, first);
        return inside;
    }

    void sample_run(const row_map& map, int column, int count, PF_Pixel* out) const
    {
#if defined(__x86_64__)
        if (level_ == simd_level::avx2)
            return (fine_ ? bilinear_row_avx2 : nearest_row_avx2)(src_, map, column, count, out);
#endif
        (fine_ ? bilinear_row_sse2 : nearest_row_sse2)(src_, map, column, count, out);
    }

    void one_by_one(int row, columns these, PF_Pixel* out) const
    {
        for (int column = these.begin; column < these.end; ++column)
            *out++ = sample_(src_, map_.source_x(column + 0.5, row + 0.5), map_.source_y(column + 0.5, row + 0.5));
    }

    simd_level level_;
    bool fine_;
    sampler sample_;
    const PF_EffectWorld& src_;
    const back_map& map_;
    bool fast_;
    bool whole_; // sample_run copies
};

void map_rows(simd_level level, const blend& how, PF_Quality quality, const PF_EffectWorld& src,
              const std::vector<back_map>& maps, const PF_Rect& area, const PF_EffectWorld& dst)
{
    const row_sampler sampler(level, quality, src, maps[0]);
    std::vector<PF_Pixel> samples(static_cast<std::size_t>(area.right - area.left));
    for (int row = area.top; row < area.bottom; ++row)
    {
        if (maps.size() == 1)
            sampler.row(row, {area.left, area.right}, samples.data());
        else
            for (int column = area.left; column < area.right; ++column)
                samples[static_cast<std::size_t>(column - area.left)] =
                    exposed(maps, sampler_for(quality), src, column + 0.5, row + 0.5);
        blend_rows_at(level, how, {samples.data(), 0, row_of(dst, row) + area.left, 0, area.right - area.left, 1});
    }
}

// The source's pixels with their alpha weighed by the mask.
std::vector<PF_Pixel> masked(const PF_EffectWorld& src, const PF_MaskWorld* mask)
{
    std::vector<PF_Pixel> pixels;
    pixels.reserve(static_cast<std::size_t>(src.width) * static_cast<std::size_t>(src.height));
    for (int y = 0; y < src.height; ++y)
        for (int x = 0; x < src.width; ++x)
        {
            PF_Pixel pixel = row_of(src, y)[x];
            pixel.alpha = static_cast<A_u_char>((pixel.alpha * mask_alpha(mask, x, y) + 127) / 255);
            pixels.push_back(pixel);
        }
    return pixels;
}
} // namespace

void transform_onto(const blend& how, PF_Quality quality, const PF_EffectWorld& src, const PF_MaskWorld* mask,
                    const transform& map, const PF_Rect* dest_rect, const PF_EffectWorld& dst, simd_level level)
{
    std::vector<back_map> maps;
    bool any = false;
    for (int i = 0; i < map.count; ++i)
    {
        maps.push_back(back_map_of(map.matrices[i], map.src2dst));
        any = any || maps.back().usable;
    }
    const PF_Rect area = clipped(dest_rect, dst);
    if (!any || is_empty(area))
        return;

    const stable_source source(src, dst);
    PF_EffectWorld readable = source.world();
    std::vector<PF_Pixel> weighed;
    if (mask)
    {
        weighed = masked(readable, mask);
        readable.data = weighed.data();
        readable.rowbytes = readable.width * 4;
    }

    if (how.mode != PF_Xfer_COPY && maps.size() == 1 && moves_by_whole_pixels(maps[0]))
    {
        // map_rows(level, how, quality, readable, maps, area, dst): pixels outside the source change
        // nothing.
        const PF_Rect from{area.left + static_cast<int>(maps[0].ox), area.top + static_cast<int>(maps[0].oy),
                           area.right + static_cast<int>(maps[0].ox), area.bottom + static_cast<int>(maps[0].oy)};
        transfer(how, readable, &from, nullptr, dst, area.left, area.top, level);
        return;
    }
    map_rows(level, how, quality, readable, maps, area, dst);
}
} // namespace host
