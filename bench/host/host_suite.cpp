#include "bench/suites.hpp"

#include "bench/host/pictures.hpp"
#include "bench/host/pixman_peer.hpp"
#include "bench/measure.hpp"

#include "effect/model/matrix.hpp"
#include "session.hpp" // the host library's own

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <functional>
#include <stdexcept>

namespace bench
{
namespace
{
constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kSide = 2208; // of the square canvas that turns onto such a frame
constexpr int kTiles = 32;

// A world of the host's, with the same picture in pixman.
class picture
{
public:
    picture(host::session& host, filling f, int width, int height)
        : original_(filled_picture(f, width, height)), pixman(original_, width, height)
    {
        if (host.utils.new_world(host.in_data.effect_ref, width, height, 0, &world) != PF_Err_NONE)
            throw std::runtime_error("the host has no memory for a world");
        restore();
    }

    void restore()
    {
        const auto row = 4 * static_cast<std::size_t>(world.width);
        for (int y = 0; y < world.height; ++y)
            std::memcpy(reinterpret_cast<char*>(world.data) + std::ptrdiff_t{world.rowbytes} * y,
                        original_.data() + std::ptrdiff_t{world.width} * y, row);
    }

private:
    std::vector<PF_Pixel> original_;

public:
    PF_EffectWorld world{};
    pixman_picture pixman;
};

PF_CompositeMode in_front()
{
    PF_CompositeMode mode{};
    mode.xfer = PF_Xfer_IN_FRONT;
    mode.opacity = 255;
    return mode;
}

PF_Err take_pixel(void*, A_long, A_long, PF_Pixel* in, PF_Pixel* out)
{
    *out = *in;
    return PF_Err_NONE;
}

class host_bench
{
public:
    explicit host_bench(run& r)
        : run_(r), host_(host::render_options{}, nullptr), utils_(host_.utils), ref_(host_.in_data.effect_ref),
          table_("the host's functions, a frame of 1920x1080 each: milliseconds",
                 {"call", "ours", "pixman", "ours / pixman"})
    {
    }

    void time_transfers()
    {
        using enum filling;
        const std::pair<filling, filling> pairs[] = {{strokes, clear}, {strokes, strokes}, {clear, mixed},
                                                     {opaque, mixed},  {mixed, opaque},    {mixed, mixed}};
        for (const auto& [from_filling, to_filling] : pairs)
        {
            picture from(host_, from_filling, kWidth, kHeight);
            picture to(host_, to_filling, kWidth, kHeight);
            const std::string what = std::string(filling_name(from_filling)) + " on " + filling_name(to_filling);
            time(
                "transfer_rect, " + what, to,
                [&] {
                    transfer(from, to, {0, 0, kWidth, kHeight});
                },
                [&] { to.pixman.lay_over(from.pixman, 0, 0); });
            if (from_filling == strokes)
                time(
                    "transfer_rect, " + what + ", 1024 tiles", to, [&] { transfer_tiles(from, to); },
                    [&] { to.pixman.lay_tiles_over(from.pixman, kTiles); });
        }
    }

    void time_transforms()
    {
        using enum filling;
        for (const filling f : {strokes, mixed})
        {
            picture from(host_, f, kSide, kSide);
            picture to(host_, clear, kWidth, kHeight);
            const std::string what = std::string(filling_name(f)) + " on clear";
            time(
                "transform_world, whole pixels, " + what, to, [&] { turn(from, to, 0.0, PF_Quality_HI); },
                [&] { to.pixman.lay_over(from.pixman, (kWidth - kSide) / 2, (kHeight - kSide) / 2); });
            time(
                "transform_world, 30 degrees, " + what, to, [&] { turn(from, to, 30.0, PF_Quality_HI); },
                [&] { to.pixman.lay_turned_over(from.pixman, 30.0, true); });
            time(
                "transform_world, 30 degrees, nearest, " + what, to, [&] { turn(from, to, 30.0, PF_Quality_LO); },
                [&] { to.pixman.lay_turned_over(from.pixman, 30.0, false); });
        }
    }

    void time_pixel_by_pixel()
    {
        using enum filling;
        picture from(host_, mixed, kWidth, kHeight);
        picture to(host_, mixed, kWidth, kHeight);
        const PF_Pixel none = {0, 0, 0, 0};
        time(
            "fill", to, [&] { utils_.fill(ref_, &none, nullptr, &to.world); }, [&] { to.pixman.fill(0); });
        time(
            "copy", to, [&] { utils_.copy(ref_, &from.world, &to.world, nullptr, nullptr); },
            [&] { to.pixman.copy(from.pixman); });
        time("iterate, a function that copies", to,
             [&] { utils_.iterate(&host_.in_data, 0, 1, &from.world, nullptr, nullptr, take_pixel, &to.world); },
             {});
        time("subpixel_sample, a call a pixel, on pixels", to, [&] { sample(from, to, 0); }, {});
        time(
            "subpixel_sample, a call a pixel, half off", to, [&] { sample(from, to, 32768); },
            [&] { to.pixman.copy_half_off(from.pixman); });
    }

    void show()
    {
        run_.show(table_, "host");
        std::printf("pixman's pixels are premultiplied, its products rounded one by one and its places between "
                    "pixels 1/128 apart;\nours are straight, and the exact quotients rounded once. pixman has no "
                    "call for one sample: it samples the frame at once.\n");
    }

private:
    void time(const std::string& name, picture& to, const std::function<void()>& ours,
              const std::function<void()>& theirs)
    {
        series timed;
        timed.add_timed("ours",
                        [&]
                        {
                            to.restore();
                            const double before = thread_seconds();
                            ours();
                            return thread_seconds() - before;
                        });
        if (theirs)
            timed.add_timed("pixman",
                            [&]
                            {
                                to.pixman.restore();
                                const double before = thread_seconds();
                                theirs();
                                return thread_seconds() - before;
                            });
        timed.run(0.25 * run_.effort);
        const double own = timed.median(0);
        const double peer = theirs ? timed.median(1) : 0.0;
        table_.add({name, figure(1e3 * own), theirs ? figure(1e3 * peer) : "", theirs ? figure(own / peer) : ""});
    }

    void transfer(picture& from, picture& to, const PF_Rect& rect)
    {
        const PF_CompositeMode mode = in_front();
        utils_.transfer_rect(ref_, PF_Quality_HI, 0, 0, &rect, &from.world, &mode, nullptr, rect.left, rect.top,
                             &to.world);
    }

    void transfer_tiles(picture& from, picture& to)
    {
        const int width = kWidth / kTiles;
        const int height = kHeight / kTiles;
        for (int y = 0; y < kTiles; ++y)
            for (int x = 0; x < kTiles; ++x)
                transfer(from, to, {x * width, y * height, (x + 1) * width, (y + 1) * height});
    }

    // Centre on centre, as the effect turns its canvas onto a frame.
    void turn(picture& from, picture& to, double degrees, PF_Quality quality)
    {
        PF_FloatMatrix m;
        AEG_SetIdentityMatrix(&m);
        if (degrees != 0.0)
            AEG_RotateMatrixPlus(&m, &host_.in_data, degrees, kSide / 2, kSide / 2);
        AEG_TranslateMatrix(&m, (kWidth - kSide) / 2, (kHeight - kSide) / 2);
        const PF_CompositeMode mode = in_front();
        utils_.transform_world(ref_, quality, 0, 0, &from.world, &mode, nullptr, &m, 1, 1, &to.world.extent_hint,
                               &to.world);
    }

    void sample(picture& from, picture& to, PF_Fixed off)
    {
        PF_SampPB how{};
        how.src = &from.world;
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x)
                utils_.subpixel_sample(ref_, x * 65536 + off, y * 65536 + off, &how,
                                       reinterpret_cast<PF_Pixel*>(reinterpret_cast<char*>(to.world.data) +
                                                                   std::ptrdiff_t{to.world.rowbytes} * y) +
                                           x);
    }

    run& run_;
    host::session host_;
    const PF_UtilCallbacks& utils_;
    PF_ProgPtr ref_;
    table table_;
};
} // namespace

void time_host(run& r)
{
    host_bench all(r);
    all.time_transfers();
    all.time_transforms();
    all.time_pixel_by_pixel();
    all.show();
}
} // namespace bench
