#include "changing_frames.hpp"

#include "effect/shell/param_ids.hpp"
#include "host/error.hpp"
#include "host/render.hpp"

#include <algorithm>
#include <limits>
#include <random>

namespace changing
{
namespace
{
class chance
{
public:
    explicit chance(std::uint32_t number) : bits_(number) {}

    bool one_in(std::uint32_t n) { return bits_() % n == 0; }
    int integer(int lowest, int highest)
    {
        return lowest + static_cast<int>(bits_() % static_cast<std::uint32_t>(highest - lowest + 1));
    }
    double share() { return static_cast<double>(bits_()) / 4294967296.0; }
    double number(double lowest, double highest) { return lowest + share() * (highest - lowest); }
    template <class T, std::size_t N>
    T any_of(const T (&values)[N])
    {
        return values[bits_() % N];
    }
    PF_Pixel color()
    {
        const std::uint32_t v = bits_();
        return {static_cast<A_u_char>(v >> 24), static_cast<A_u_char>(v >> 16), static_cast<A_u_char>(v >> 8),
                static_cast<A_u_char>(v)};
    }

private:
    std::mt19937 bits_;
};

// Sets values by index, in and out of the ranges that the effect registers.
class values_maker
{
public:
    values_maker(const host::plugin& effect, chance& dice) : values(effect.params()), dice_(dice) {}

    void set(param_id id, double x) { values.set(id, {.x = x}); }
    void integer(param_id id, int lowest, int highest) { set(id, dice_.integer(lowest, highest)); }
    void percent(param_id id) { set(id, dice_.share()); }
    void now_and_then(param_id id, std::uint32_t one_in) { set(id, dice_.one_in(one_in) ? 1 : 0); }
    void point(param_id id)
    {
        values.set(id, {.x = dice_.number(-20.0, 120.0), .y = dice_.number(-20.0, 120.0), .percent = true});
    }
    void color(param_id id) { values.set(id, {.color = dice_.color()}); }

    host::param_tracks values;

private:
    chance& dice_;
};

// Every parameter somewhere in its range, held to what a small frame can show; what is drawn is `k`.
void set_in_range(values_maker& v, chance& dice, kind k)
{
    v.now_and_then(kMatchLayerSize, 2);
    v.integer(kWidth, 2, 48);
    v.integer(kHeight, 2, 48);
    v.point(kPosition);
    v.set(kRotation, dice.one_in(2) ? 0.0 : dice.number(-400.0, 400.0));
    v.integer(kRows, 0, 4);
    v.integer(kColumns, 0, 4);
    v.set(kShowGrid, k == kind::grid ? 1 : 0);
    v.point(kCompressionCenter);
    v.integer(kLineCompression, -100, 100);
    v.percent(kSpacingRandomness);
    v.integer(kNormalWidth, 1, 8);
    v.integer(kNormalWidthRandomness, 0, 100);
    v.integer(kStressedWidth, -100, 100);
    v.integer(kDistortion, 0, 20);
    v.percent(kDistortionRandomness);
    v.color(kNormalColor);
    v.color(kStressedColor);
    v.set(kBlendAmount, dice.one_in(3) ? dice.integer(0, 1) : dice.share());
    v.percent(kOpacity);
    v.percent(kOpacityRandomness);
    v.set(kAngularLines, k == kind::angular ? 1 : 0);
    v.integer(kTolerance, 1, 20);
    v.now_and_then(kCompositeOnOriginal, 3);
    v.now_and_then(kFastDraw, 5);
    v.set(kLinesHaveEnds, k == kind::ends || k == kind::wrapping ? 1 : 0);
    v.now_and_then(kLockHorizontalToVertical, 3);
    v.integer(kVerticalLength, 0, 200);
    v.integer(kHorizontalLength, 0, 200);
    v.integer(kLengthRandomness, 0, 200);
    v.point(kVerticalStart);
    v.point(kHorizontalStart);
    v.percent(kStartRandomness);
    v.integer(kVerticalOffset, -30, 30);
    v.integer(kHorizontalOffset, -30, 30);
    v.set(kVerticalGrowth, dice.number(0.0, 100.0));
    v.set(kHorizontalGrowth, dice.number(0.0, 100.0));
    v.integer(kGrowthRandomness, 0, 2000);
    v.set(kLineWrapping, k == kind::wrapping ? 1 : 0);
    v.percent(kFrequency);
    v.percent(kFrequencyRandomness);
    v.integer(kSize, 1, 12);
    v.integer(kSizeRandomness, 0, 100);
    v.integer(kSpeed, 0, 8);
    v.integer(kSpeedRandomness, 0, 100);
    v.set(kTurbulence, dice.number(1.0, 7.0));
    v.percent(kTurbulenceRandomness);
    v.set(kAffect, k == kind::columns_ripple ? 1 : k == kind::rows_ripple ? 2 : dice.integer(1, 3));
    v.integer(kRandomSeed, 1, std::numeric_limits<int>::max());
    v.set(kUseDisplacement, k == kind::displacement ? 1 : 0);
    v.set(kDisplacementAngle, dice.number(-400.0, 400.0));
    v.integer(kDisplacementAmount, 0, 30);
    v.percent(kSoften);
}

// A few values that no slider gives but a host may hold. Radii and counts of lines stay small.
void set_out_of_range(values_maker& v, chance& dice)
{
    constexpr double kNowhere[] = {
        std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -3.0, 0.0, 20.0, 1e300};
    constexpr int kFar[] = {std::numeric_limits<int>::min(), -1'000'000, 1'000'000,
                            std::numeric_limits<int>::max()};
    for (int i = dice.integer(1, 3); i > 0; --i)
    {
        switch (dice.integer(0, 14))
        {
        case 0:
            v.set(kMatchLayerSize, 0);
            v.integer(kWidth, -5, 70);
            break;
        case 1:
            v.set(kMatchLayerSize, 0);
            v.integer(kHeight, -5, 70);
            break;
        case 2:
            v.integer(kRows, -5, 20);
            break;
        case 3:
            v.integer(kColumns, -5, 20);
            break;
        case 4:
            v.integer(kNormalWidth, -20, 40);
            v.set(kStressedWidth, 0);
            break;
        case 5:
            v.integer(kStressedWidth, -300, 300);
            break;
        case 6:
            v.set(kTurbulence, dice.any_of(kNowhere));
            break;
        case 7:
            v.set(kVerticalGrowth, dice.any_of(kNowhere));
            break;
        case 8:
            v.integer(kAffect, -1, 6);
            break;
        case 9:
            v.values.set(kPosition, {.x = dice.number(-40000.0, 40000.0), .y = dice.number(-40000.0, 40000.0)});
            break;
        case 10:
            v.set(kRandomSeed, dice.any_of(kFar));
            break;
        case 11:
            v.set(kLineCompression, dice.integer(-1000, 1000));
            break;
        case 12:
            v.integer(kTolerance, -2, 60);
            break;
        case 13:
            v.set(kOpacity, dice.number(-3.0, 3.0));
            v.set(kBlendAmount, dice.number(-3.0, 3.0));
            break;
        default:
            v.set(kDisplacementAmount, dice.any_of(kFar));
            v.set(kSoften, dice.number(-3.0, 3.0));
            break;
        }
    }
}

host::composition composition_of(chance& dice)
{
    host::composition comp;
    comp.width = dice.integer(1, 48);
    comp.height = dice.integer(1, 40);
    comp.downsample = dice.one_in(6) ? dice.integer(2, 4) : 1;
    comp.quality = dice.one_in(4) ? PF_Quality_LO : PF_Quality_HI;
    comp.time_step = dice.one_in(20) ? dice.integer(-2, 0) : dice.integer(1, 3);
    comp.total_frames = 500;
    return comp;
}

// Mostly early, where growing lines have ends; seldom far on, where ripples take much memory.
std::int32_t frame_number(chance& dice)
{
    if (dice.one_in(10))
        return dice.integer(-20, -1);
    return dice.one_in(20) ? dice.integer(0, 500) : dice.integer(0, 25);
}
} // namespace

kind kind_of(std::uint32_t number)
{
    return static_cast<kind>(number % kKinds);
}

outcome render(const host::plugin& effect, std::uint32_t number)
{
    chance dice(number);
    values_maker v(effect, dice);
    set_in_range(v, dice, kind_of(number));
    if (dice.one_in(5))
        set_out_of_range(v, dice);
    const host::composition comp = composition_of(dice);
    const std::int32_t frame = frame_number(dice);

    outcome out;
    const int refused_from = dice.one_in(8) ? dice.integer(1, 60) : 0;
    const bool from_then_on = dice.one_in(4);
    const PF_Err code = dice.one_in(2) ? PF_Err_OUT_OF_MEMORY : PF_Err_INTERNAL_STRUCT_DAMAGED;
    int calls = 0;
    host::render_options options;
    options.checked = !dice.one_in(4);
    options.row_padding = 4 * dice.integer(0, 3);
    options.no_handle_callbacks = dice.one_in(6);
    options.fail = [&](const char*, int)
    {
        ++calls;
        const bool now = refused_from != 0 && (from_then_on ? calls >= refused_from : calls == refused_from);
        out.refused = out.refused || now;
        return now ? code : PF_Err_NONE;
    };

    const int width = comp.picture_width();
    const int height = comp.picture_height();
    std::vector<std::uint8_t> input(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    for (std::uint8_t& byte : input)
        byte = static_cast<std::uint8_t>(dice.integer(0, 255));
    out.pixels.resize(input.size());
    try
    {
        out.result = host::render_frame(effect, comp, v.values, frame, {input.data(), width, height, 4 * width},
                                        {out.pixels.data(), width, height, 4 * width}, options)
                         .result;
    }
    catch (const host::error& told)
    {
        out.complaint = told.what();
    }
    for (std::size_t i = 4; i < out.pixels.size(); ++i)
        out.drawn = out.drawn || out.pixels[i] != out.pixels[i % 4];
    return out;
}

std::uint64_t outcome::digest() const
{
    std::uint64_t hash = 14695981039346656037U;
    const auto take = [&hash](int byte)
    { hash = (hash ^ static_cast<std::uint64_t>(byte & 0xFF)) * 1099511628211U; };
    for (int shift = 0; shift < 32; shift += 8)
        take(result >> shift);
    for (const char letter : complaint)
        take(letter);
    for (const std::uint8_t byte : pixels)
        take(byte);
    return hash;
}
} // namespace changing
