#include "bench/strokes/painter.hpp"

#include <agg_conv_stroke.h>
#include <agg_path_storage.h>
#include <agg_pixfmt_rgba.h>
#include <agg_rasterizer_scanline_aa.h>
#include <agg_renderer_base.h>
#include <agg_renderer_scanline.h>
#include <agg_rendering_buffer.h>
#include <agg_scanline_u.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace bench
{
namespace
{
class agg_painter : public painter
{
public:
    agg_painter(int width, int height)
        : pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4),
          buffer_(pixels_.data(), static_cast<unsigned>(width), static_cast<unsigned>(height), 4 * width),
          format_(buffer_), base_(format_), solid_(base_)
    {
        rasterizer_.filling_rule(agg::fill_non_zero);
        rasterizer_.clip_box(0.0, 0.0, width, height);
        solid_.color(agg::rgba8(40, 90, 200));
    }

    void clear() override { std::fill(pixels_.begin(), pixels_.end(), agg::int8u{0}); }

    std::uint64_t alpha_sum() const override
    {
        std::uint64_t sum = 0;
        for (std::size_t i = agg::order_rgba::A; i < pixels_.size(); i += 4)
            sum += pixels_[i];
        return sum;
    }

protected:
    using rasterizer = agg::rasterizer_scanline_aa<>;
    rasterizer& path() { return rasterizer_; }
    void render() { agg::render_scanlines(rasterizer_, scanline_, solid_); }

private:
    using pixel_format = agg::pixfmt_rgba32_pre;
    using renderer = agg::renderer_base<pixel_format>;

    std::vector<agg::int8u> pixels_;
    agg::rendering_buffer buffer_;
    pixel_format format_;
    renderer base_;
    agg::renderer_scanline_aa_solid<renderer> solid_;
    rasterizer rasterizer_;
    agg::scanline_u8 scanline_;
};

class filler : public agg_painter
{
public:
    using agg_painter::agg_painter;
    void draw(const wave_stroke& stroke) override { fill(stroke.outline); }

protected:
    void fill(const std::vector<point>& outline)
    {
        path().reset();
        path().move_to_d(outline[0].x, outline[0].y);
        for (std::size_t i = 1; i < outline.size(); ++i)
            path().line_to_d(outline[i].x, outline[i].y);
        render();
    }
};

// Makes the outline itself, across from each sample to both sides.
class outliner : public filler
{
public:
    using filler::filler;
    void draw(const wave_stroke& stroke) override
    {
        const std::size_t last = stroke.center.size() - 1;
        const auto radius = static_cast<double>(stroke.radius);
        outline_.resize(2 * (last + 1));
        for (std::size_t i = 0; i <= last; ++i)
        {
            const point from = stroke.center[i == 0 ? 0 : i - 1];
            const point to = stroke.center[i == last ? last : i + 1];
            const double x = to.x - from.x;
            const double y = to.y - from.y;
            const double scale = radius / std::sqrt(x * x + y * y);
            const point at = stroke.center[i];
            outline_[i] = {at.x - y * scale, at.y + x * scale};
            outline_[2 * last + 1 - i] = {at.x + y * scale, at.y - x * scale};
        }
        fill(outline_);
    }

private:
    std::vector<point> outline_;
};

// Points as AGG's converters read them.
class vertices
{
public:
    explicit vertices(const std::vector<point>& points) : points_(points) {}
    void rewind(unsigned) { next_ = 0; }
    unsigned vertex(double* x, double* y)
    {
        if (next_ == points_.size())
            return agg::path_cmd_stop;
        *x = points_[next_].x;
        *y = points_[next_].y;
        return next_++ == 0 ? agg::path_cmd_move_to : agg::path_cmd_line_to;
    }

private:
    const std::vector<point>& points_;
    std::size_t next_ = 0;
};

class stroker : public agg_painter
{
public:
    using agg_painter::agg_painter;
    void draw(const wave_stroke& stroke) override
    {
        vertices center(stroke.center);
        agg::conv_stroke<vertices> outline(center);
        outline.width(2.0 * static_cast<double>(stroke.radius));
        path().reset();
        path().add_path(outline);
        render();
    }
};
} // namespace

std::unique_ptr<painter> agg_fill_painter(int width, int height)
{
    return std::make_unique<filler>(width, height);
}

std::unique_ptr<painter> agg_outline_painter(int width, int height)
{
    return std::make_unique<outliner>(width, height);
}

std::unique_ptr<painter> agg_stroke_painter(int width, int height)
{
    return std::make_unique<stroker>(width, height);
}
} // namespace bench
