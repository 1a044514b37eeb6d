#include "effect/layout/rising_values.hpp"

#include <cstring>
#include <utility>

float tangent_memory::of(double angle)
{
    for (int i = 0; i < kept_; ++i)
        // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison,cert-exp42-c,cert-flp37-c): the same bits are meant
        if (std::memcmp(&angle_[i], &angle, sizeof angle) == 0)
            return slope_[i];
    const auto slope = static_cast<float>(tan_(angle * 0.017453292519943295));
    const int slot = kept_ < kKept ? kept_++ : std::exchange(oldest_, (oldest_ + 1) % kKept);
    angle_[slot] = angle;
    slope_[slot] = slope;
    return slope;
}

void rising_values::enter(int segment)
{
    const curve_pt_t& p0 = line_->points[segment];
    const curve_pt_t& p1 = line_->points[segment + 1];
    length_ = line_->run(p1) - line_->run(p0);
    slope_before_ = static_cast<double>(tangents_->of(p0.angle)) * length_;
    slope_after_ = static_cast<double>(tangents_->of(p1.angle)) * length_;
    segment_ = segment;
}

bool rising_values::value(float t, float* out)
{
    if (!line_->has_points())
        return false;
    const auto at = static_cast<double>(t);
    for (int i = 0; i + 1 < line_->num_points; ++i)
    {
        const curve_pt_t& p0 = line_->points[i];
        const curve_pt_t& p1 = line_->points[i + 1];
        if (!(line_->run(p0) <= at && at < line_->run(p1)))
            continue;
        if (i != segment_)
            enter(i);
        const auto s = static_cast<float>((at - line_->run(p0)) / length_);
        const float s2 = s * s;
        const float s3 = s2 * s;
        const float h00 = 2.0f * s3 - 3.0f * s2 + 1.0f;
        const float h01 = -2.0f * s3 + 3.0f * s2;
        const float h10 = s3 - 2.0f * s2 + s;
        const float h11 = s3 - s2;
        *out = static_cast<float>(
            static_cast<double>(h00) * line_->across(p0) + static_cast<double>(h01) * line_->across(p1) +
            slope_before_ * static_cast<double>(h10) + slope_after_ * static_cast<double>(h11));
        return true;
    }
    return false;
}
