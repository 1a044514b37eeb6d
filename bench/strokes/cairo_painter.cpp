#include "bench/strokes/painter.hpp"

#include <cairo.h>

#include <stdexcept>

namespace bench
{
namespace
{
class cairo_painter : public painter
{
public:
    cairo_painter(int width, int height)
        : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)), cairo_(cairo_create(surface_))
    {
        if (cairo_status(cairo_) != CAIRO_STATUS_SUCCESS)
            throw std::runtime_error("Cairo has no memory for a canvas");
        cairo_set_source_rgb(cairo_, 0.16, 0.35, 0.78);
    }
    ~cairo_painter() override
    {
        cairo_destroy(cairo_);
        cairo_surface_destroy(surface_);
    }

    void clear() override
    {
        cairo_save(cairo_);
        cairo_set_operator(cairo_, CAIRO_OPERATOR_CLEAR);
        cairo_paint(cairo_);
        cairo_restore(cairo_);
    }

    std::uint64_t alpha_sum() const override
    {
        cairo_surface_flush(surface_);
        const unsigned char* const pixels = cairo_image_surface_get_data(surface_);
        const int stride = cairo_image_surface_get_stride(surface_);
        std::uint64_t sum = 0;
        for (int y = 0; y < cairo_image_surface_get_height(surface_); ++y)
            for (int x = 0; x < cairo_image_surface_get_width(surface_); ++x)
                sum += *reinterpret_cast<const std::uint32_t*>(pixels + std::ptrdiff_t{stride} * y + 4 * x) >> 24U;
        return sum;
    }

protected:
    void add_path(const std::vector<point>& points)
    {
        cairo_new_path(cairo_);
        for (const point& p : points)
            cairo_line_to(cairo_, p.x, p.y);
    }
    cairo_t* cairo() const { return cairo_; }

private:
    cairo_surface_t* surface_;
    cairo_t* cairo_;
};

class stroker : public cairo_painter
{
public:
    using cairo_painter::cairo_painter;
    void draw(const wave_stroke& stroke) override
    {
        add_path(stroke.center);
        cairo_set_line_width(cairo(), 2.0 * static_cast<double>(stroke.radius));
        cairo_stroke(cairo());
    }
};

class filler : public cairo_painter
{
public:
    filler(int width, int height) : cairo_painter(width, height)
    {
        cairo_set_antialias(cairo(), CAIRO_ANTIALIAS_FAST);
    }
    void draw(const wave_stroke& stroke) override
    {
        add_path(stroke.outline);
        cairo_close_path(cairo());
        cairo_fill(cairo());
    }
};
} // namespace

std::unique_ptr<painter> cairo_stroke_painter(int width, int height)
{
    return std::make_unique<stroker>(width, height);
}

std::unique_ptr<painter> cairo_fill_painter(int width, int height)
{
    return std::make_unique<filler>(width, height);
}
} // namespace bench
