#pragma once
// A line as the frame draws it, and the strokes that it hands to the rasteriser.

#include "effect/layout/sp_line.hpp"
#include "effect/model/matrix.hpp"
#include "effect/raster/blend.hpp"
#include "raster_stage.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace raster_test
{
constexpr int kSide = 128;

// What a stroke was when the rasteriser got it.
struct piece
{
    std::vector<StrokePoint> samples;
    int axis = 0;
    float inner_radius = 0.0f;
    float outer_radius = 0.0f;
    bool solid_core = false;
};

// A frame on a square canvas, a grid of 96 by 80 in its middle, and every piece that its lines hand over.
class drawn_line : public testing::Test
{
protected:
    drawn_line()
    {
        frame_.pool = &stage_.pool;
        frame_.in_data = &stage_.in_data;
        frame_.squareSize = kSide;
        frame_.width = 96;
        frame_.height = 80;
        frame_.marginX = 16;
        frame_.marginY = 24;
        frame_.qualityStep = 0.5f;
        frame_.opacity = 100;
        frame_.normalShare = 50;
        frame_.normalColor = {9, 255, 100, 0};
        frame_.stressedColor = {9, 0, 200, 255};
        frame_.layoutMatrix = {{{-1.0, 0.0, 0.0}, {0.0, -1.0, 0.0}, {128.0, 128.0, 1.0}}};
        stage_.set_up(frame_.lineCreator);
        stage_.on_sqrt = [this] { note(); };
    }

    // The half turn as a frame has it: the sine of pi is not quite 0.
    void turn_as_a_frame_does()
    {
        AEG_SetIdentityMatrix(&frame_.layoutMatrix);
        AEG_RotateMatrixPlus(&frame_.layoutMatrix, &stage_.in_data, 180.0, 64.0, 64.0);
    }

    void one_colour(int normal_share)
    {
        frame_.normalShare = normal_share;
        frame_.lineCreator.monocolor = true;
        frame_.lineCreator.pixelFunction = &LineCreatorClass::CalculatePixelMonocolor;
        frame_.lineCreator.subRenderFunction = &LineCreatorClass::SubRenderMonocolor;
    }

    // A line through points given as running position and across position; its base is the first one's.
    sp_line& line(bool vertical, std::vector<fpoint_t> along)
    {
        const float base = static_cast<float>(along[0].y);
        if (vertical)
            for (fpoint_t& p : along)
                std::swap(p.x, p.y);
        sp_line& l = *pool_new<sp_line>(&stage_.pool, &frame_, static_cast<unsigned char>(vertical ? 1 : 0),
                                        along.data(), static_cast<int>(along.size()));
        (vertical ? l.base_x : l.base_y) = base;
        return l;
    }

    const std::vector<piece>& draw(sp_line& l, float width)
    {
        pieces_.clear();
        l.draw(rng_, stage_.context.get(), width);
        return pieces_;
    }

    // The samples written a second way, from the line as it is before it is drawn.
    std::vector<StrokePoint> expected(const sp_line& l, float width) const
    {
        std::vector<curve_pt_t> points(l.points, l.points + l.num_points);
        AEG_TransformPoints(&frame_.layoutMatrix, l.num_points, points.data());
        fpoint_t base = {l.vertical != 0 ? static_cast<double>(l.base_x) : 0.0,
                         l.vertical != 0 ? 0.0 : static_cast<double>(l.base_y)};
        AEG_TransformPoints(&frame_.layoutMatrix, 1, &base);
        const auto run = [&l](const curve_pt_t& p) { return l.vertical != 0 ? p.y : p.x; };
        const auto across = [&l](const curve_pt_t& p) { return l.vertical != 0 ? p.x : p.y; };
        const double base_across = l.vertical != 0 ? base.x : base.y;
        float widest = 0.0f;
        for (const curve_pt_t& p : points)
            widest = std::fmax(widest, std::fabs(static_cast<float>(across(p) - base_across)));

        std::vector<StrokePoint> samples;
        const auto first = static_cast<float>(run(points.front()));
        for (int step = 0;; ++step)
        {
            const float c = first - static_cast<float>(step) * frame_.qualityStep;
            if (!(static_cast<double>(c) > run(points.back())))
                break;
            for (std::size_t i = 0; i + 1 < points.size(); ++i)
            {
                const double high = run(points[i]);
                const double low = run(points[i + 1]);
                if (!(low <= static_cast<double>(c) && static_cast<double>(c) < high))
                    continue;
                const auto part = static_cast<float>((static_cast<double>(c) - high) / (high - low));
                const double rise = across(points[i]) - across(points[i + 1]);
                const auto cross = static_cast<float>(across(points[i]) + static_cast<double>(part) * rise);
                const auto off = static_cast<float>(static_cast<double>(cross) - base_across);
                const float stress = std::fabs(off * width / widest) * static_cast<float>(frame_.stressedWidth);
                StrokePoint s{};
                s.x = l.vertical != 0 ? cross : c;
                s.y = l.vertical != 0 ? c : cross;
                s.halfWidth = static_cast<float>(static_cast<double>(stress) / 100.0 + static_cast<double>(width));
                if (!frame_.lineCreator.monocolor)
                {
                    PF_Pixel normal = frame_.normalColor;
                    PF_Pixel stressed = frame_.stressedColor;
                    normal.alpha = stressed.alpha = s.color.alpha = 255;
                    blend_color(normal, stressed, static_cast<short>(frame_.normalShare), std::fabs(off), widest,
                                &s.color);
                }
                samples.push_back(s);
                break;
            }
        }
        return samples;
    }

    static void expect_samples(const std::vector<StrokePoint>& got, const std::vector<StrokePoint>& want)
    {
        ASSERT_EQ(got.size(), want.size());
        for (std::size_t i = 0; i < got.size(); ++i)
            ASSERT_EQ(std::memcmp(&got[i], &want[i], sizeof got[i]), 0)
                << "sample " << i << ": (" << got[i].x << ", " << got[i].y << "), radius " << got[i].halfWidth
                << ", " << text(got[i].color) << ", not (" << want[i].x << ", " << want[i].y << "), radius "
                << want[i].halfWidth << ", " << text(want[i].color);
    }

    stage stage_{kSide, kSide};
    frame_data frame_;
    Loom::RandomGenerator32 rng_{17};
    std::vector<piece> pieces_;

private:
    void note()
    {
        const LineCreatorClass& c = frame_.lineCreator;
        if (!pieces_.empty() && last_points_ == c.points && last_count_ == c.pointCount &&
            last_calls_ == stage_.calls.size())
            return;
        last_points_ = c.points;
        last_count_ = c.pointCount;
        last_calls_ = stage_.calls.size();
        pieces_.push_back({{c.points, c.points + c.pointCount},
                           c.axis,
                           c.innerRadius,
                           c.outerRadius,
                           c.subRenderFunction == &LineCreatorClass::SubRenderMonocolor});
    }

    const StrokePoint* last_points_ = nullptr;
    int last_count_ = 0;
    std::size_t last_calls_ = 0;
};
} // namespace raster_test
