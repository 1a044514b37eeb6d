#include "clip_rate.hpp"

#include <climits>
#include <cmath>

namespace media
{
namespace
{
bool near(double a, double b)
{
    return std::abs(a - b) <= 0.01 * b;
}

// The standard rate nearest to an average, as a ratio.
rational standard_rate(double average)
{
    static constexpr rational rates[] = {{10, 1},       {12, 1}, {15, 1}, {24000, 1001}, {24, 1}, {25, 1},
                                         {30000, 1001}, {30, 1}, {50, 1}, {60000, 1001}, {60, 1}};
    rational best = rates[0];
    for (const rational& rate : rates)
        if (std::abs(rate.num / double(rate.den) - average) < std::abs(best.num / double(best.den) - average))
            best = rate;
    return best;
}
AVRational average_rate(const AVStream* stream)
{
    if (stream->avg_frame_rate.num > 0 && stream->avg_frame_rate.den > 0)
        return stream->avg_frame_rate;
    // Of very short clips libav makes no average, though the container tells all that it takes.
    AVRational average{0, 1};
    if (stream->nb_frames > 0 && stream->duration > 0)
        av_reduce(&average.num, &average.den, stream->nb_frames * stream->time_base.den,
                  stream->duration * stream->time_base.num, INT_MAX);
    return average;
}
} // namespace

rational clip_rate(const AVStream* stream)
{
    const AVRational fitting = stream->r_frame_rate;
    const AVRational average = average_rate(stream);
    const bool fits = fitting.num > 0 && fitting.den > 0;
    const bool averaged = average.num > 0 && average.den > 0;
    if (!fits && !averaged)
        return {25, 1};
    if (!fits)
        return {average.num, average.den};
    if (!averaged)
        return {fitting.num, fitting.den};
    // Interlaced streams are often told by their fields.
    if (near(av_q2d(fitting), 2 * av_q2d(average)))
        return {average.num, average.den};
    if (av_q2d(fitting) > 60 && av_q2d(average) < 0.7 * av_q2d(fitting))
        return standard_rate(av_q2d(average));
    return {fitting.num, fitting.den};
}
} // namespace media
