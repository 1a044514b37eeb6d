// Samples in blocks: one loop finds the segments, plain loops of a fixed length do the arithmetic, each operation
// rounded as in sample_line.

#include "effect/layout/falling_values.hpp"
#include "effect/layout/sp_line.hpp"
#include "effect/raster/blend.hpp"
#include "effect/raster/line_samples.hpp"
#include "effect/shell/mem_pool.hpp"

#include <cmath>
#include <limits>

namespace
{
class sample_block
{
public:
    sample_block(const sp_line& line, const line_sampling& s, StrokePoint* out) noexcept
        : s_(s), vertical_(line.vertical != 0), out_(out)
    {
    }

    // A sample at `at` and further ones as long as they lie above the line's end and no lower than `lowest`, all
    // on the segment from p0 to p1, given by their positions along the line and across it. Answers where the next
    // sample lies.
    float add(float at, double lowest, double run0, double run1, double across0, double across1) noexcept
    {
        const float step = s_.step;
        const double end = s_.last;
        int used = used_;
        do
        {
            at_[used] = at;
            run0_[used] = run0;
            run1_[used] = run1;
            across0_[used] = across0;
            across1_[used] = across1;
            at -= step;
            if (++used == kBlendBlock)
            {
                used_ = used;
                flush();
                used = 0;
            }
        } while (static_cast<double>(at) > end && static_cast<double>(at) >= lowest);
        used_ = used;
        return at;
    }

    // Writes what has been added.
    void flush() noexcept
    {
        place();
        widen();
        if (!s_.one_color)
            blend_colors(s_.normal_color, s_.stressed_color, s_.normal_share, deviation_, s_.max_deviation,
                         color_);
        const float* const x = vertical_ ? cross_ : at_;
        const float* const y = vertical_ ? at_ : cross_;
        for (int i = 0; i < used_; ++i)
            out_[i] = {x[i], y[i], half_width_[i], color_[i]};
        out_ += used_;
        used_ = 0;
    }

    const StrokePoint* end() const noexcept { return out_; }

private:
    void place() noexcept
    {
        float share[kBlendBlock];
        for (int i = 0; i < kBlendBlock; ++i)
            share[i] = static_cast<float>((static_cast<double>(at_[i]) - run0_[i]) / (run0_[i] - run1_[i]));
        for (int i = 0; i < kBlendBlock; ++i)
            cross_[i] =
                static_cast<float>(across0_[i] + static_cast<double>(share[i]) * (across0_[i] - across1_[i]));
    }

    // Sets the radii, and how far off the base the samples lie, without a sign.
    void widen() noexcept
    {
        const float width = s_.width;
        const float max_deviation = s_.max_deviation;
        const float stressed_width = s_.stressed_width;
        const double base = s_.base_across;
        float stress[kBlendBlock];
        for (int i = 0; i < kBlendBlock; ++i)
            deviation_[i] = static_cast<float>(static_cast<double>(cross_[i]) - base);
        for (int i = 0; i < kBlendBlock; ++i)
        {
            stress[i] = std::fabs(deviation_[i] * width / max_deviation) * stressed_width;
            deviation_[i] = std::fabs(deviation_[i]);
        }
        for (int i = 0; i < kBlendBlock; ++i)
            half_width_[i] =
                static_cast<float>(static_cast<double>(stress[i]) / 100.0 + static_cast<double>(width));
    }

    const line_sampling& s_;
    bool vertical_;
    StrokePoint* out_;
    int used_ = 0;
    float at_[kBlendBlock] = {};
    double run0_[kBlendBlock] = {};
    double run1_[kBlendBlock] = {};
    double across0_[kBlendBlock] = {};
    double across1_[kBlendBlock] = {};
    float cross_[kBlendBlock] = {};
    float deviation_[kBlendBlock] = {};
    float half_width_[kBlendBlock] = {};
    PF_Pixel color_[kBlendBlock] = {};
};
} // namespace

int sample_line_fast(const sp_line& line, const line_sampling& s, mem_pool* pool, StrokePoint* out) noexcept
{
    double* const highest =
        falling_values::fall(line) ? nullptr : pool_array_used<double>(pool, line.num_points, 0);
    falling_values values(line, highest);
    sample_block block(line, s, out);
    double curve_pt_t::*const run = line.vertical != 0 ? &curve_pt_t::y : &curve_pt_t::x;
    double curve_pt_t::*const across = line.vertical != 0 ? &curve_pt_t::x : &curve_pt_t::y;
    constexpr double kNone = std::numeric_limits<double>::infinity();
    for (float c = s.first; static_cast<double>(c) > s.last;)
    {
        const int i = values.segment(c);
        if (i == 0)
        {
            c -= s.step;
            continue;
        }
        // Where points fall, the segment is that of all samples down to its end.
        const curve_pt_t& p0 = line.points[i - 1];
        const curve_pt_t& p1 = line.points[i];
        c = block.add(c, values.falling() ? p1.*run : kNone, p0.*run, p1.*run, p0.*across, p1.*across);
    }
    block.flush();
    if (highest != nullptr)
        pool_release(pool, highest);
    return static_cast<int>(block.end() - out);
}
