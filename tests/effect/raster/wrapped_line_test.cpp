// Lines that have ends and wrap: cut into pieces where they run over the grid's far edge.
#include "drawn_line.hpp"
#include "effect/model/work_limits.hpp"

namespace
{
using raster_test::piece;
using raster_test::same;

class wrapped_line : public raster_test::drawn_line
{
};

// Pieces of a wrapped line, sample by sample from the near end: a piece closes with the first sample that is over
// the edge; from there on everything lies as many periods farther back as it takes for that sample to be inside.
std::vector<std::vector<StrokePoint>> wrapped(std::vector<StrokePoint> samples, bool vertical, float edge,
                                              float period)
{
    std::vector<std::vector<StrokePoint>> pieces;
    std::vector<StrokePoint> open; // near end first
    while (!samples.empty())
    {
        const StrokePoint s = samples.back();
        samples.pop_back();
        open.push_back(s);
        float at = vertical ? s.y : s.x;
        if (at < edge && !samples.empty())
            continue;
        pieces.emplace_back(open.rbegin(), open.rend());
        open.clear();
        while (!(at < edge))
        {
            at -= period;
            for (StrokePoint& rest : samples)
                (vertical ? rest.y : rest.x) -= period;
        }
    }
    return pieces;
}

TEST_F(wrapped_line, is_cut_at_the_far_edge_as_by_a_second_version)
{
    frame_.linesHaveEnds = 1;
    frame_.lineWrapping = 1;
    std::size_t most = 0;
    for (const bool vertical : {false, true})
        for (const double length : {10.0, 79.0, 100.0, 180.0, 333.3, 500.0})
            for (const double start : {-400.0, -150.5, 4.0, 20.0})
            {
                sp_line& l = line(vertical, {{start, 60.0}, {start + length / 2, 67.0}, {start + length, 61.0}});
                const float edge = vertical ? 128.0f - 24.0f : 128.0f - 16.0f;
                const auto want = wrapped(expected(l, 3.0f), vertical, edge, vertical ? 80.0f : 96.0f);
                const auto& got = draw(l, 3.0f);
                most = std::max(most, want.size());
                // A piece that lies off the canvas whole still decides the pixels of its clamped box.
                ASSERT_EQ(got.size(), want.size()) << start << " + " << length;
                for (std::size_t i = 0; i < got.size(); ++i)
                    expect_samples(got[i].samples, want[i]);
            }
    EXPECT_GE(most, 5U);
}

TEST_F(wrapped_line, is_whole_unless_it_both_has_ends_and_wraps)
{
    for (const int which : {0, 1, 2})
    {
        frame_.linesHaveEnds = which == 1;
        frame_.lineWrapping = which == 2;
        sp_line& l = line(false, {{-150.0, 60.0}, {100.0, 65.0}});
        const std::vector<StrokePoint> want = expected(l, 3.0f);
        const auto& got = draw(l, 3.0f);
        ASSERT_EQ(got.size(), 1U);
        expect_samples(got[0].samples, want);
    }
}

TEST_F(wrapped_line, cut_in_pieces_shows_its_one_colour_in_the_first_alone)
{
    one_colour(100);
    frame_.linesHaveEnds = 1;
    frame_.lineWrapping = 1;
    sp_line& l = line(false, {{-60.0, 60.0}, {100.0, 65.0}});
    const std::vector<piece> got = draw(l, 3.0f);
    ASSERT_EQ(got.size(), 2U);
    // The piece beginning with the line's first sample is drawn last.
    EXPECT_TRUE(same(got[0].samples[0].color, {0, 0, 0, 0}));
    EXPECT_TRUE(same(got[1].samples[0].color, {255, 255, 100, 0}));
}

TEST_F(wrapped_line, ends_at_the_far_edge_of_a_grid_without_width)
{
    frame_.linesHaveEnds = 1;
    frame_.lineWrapping = 1;
    frame_.width = 0;
    sp_line& l = line(false, {{-60.0, 60.0}, {100.0, 65.0}});
    const mem_pool before = stage_.pool;
    EXPECT_EQ(draw(l, 3.0f).size(), 1U);
    EXPECT_EQ(stage_.pool.next, before.next);
}

TEST_F(wrapped_line, is_cut_into_no_more_pieces_than_the_render_may_have)
{
    frame_.linesHaveEnds = 1;
    frame_.lineWrapping = 1;
    for (const int left : {2, 1, 0})
    {
        frame_.piecesDrawn = kMostPieces - left;
        const std::size_t drawn = draw(line(false, {{-60.0, 60.0}, {100.0, 65.0}}), 3.0f).size();
        EXPECT_EQ(drawn, static_cast<std::size_t>(left));
        EXPECT_EQ(frame_.piecesDrawn, kMostPieces);
    }
}

TEST_F(wrapped_line, is_flushed_piece_by_piece_and_gives_its_samples_back)
{
    frame_.linesHaveEnds = 1;
    frame_.lineWrapping = 1;
    sp_line& l = line(false, {{-60.0, 60.0}, {100.0, 65.0}});
    const mem_pool before = stage_.pool;
    std::vector<std::size_t> calls_at_piece;
    const auto note = stage_.on_sqrt;
    stage_.on_sqrt = [&]
    {
        note();
        if (calls_at_piece.size() < pieces_.size())
            calls_at_piece.push_back(stage_.calls.size());
    };
    draw(l, 3.0f);
    ASSERT_EQ(calls_at_piece.size(), 2U);
    EXPECT_EQ(calls_at_piece[0], 0U);
    EXPECT_GT(calls_at_piece[1], 0U);
    EXPECT_GT(stage_.calls.size(), calls_at_piece[1]);
    EXPECT_EQ(stage_.pool.next, before.next);
    EXPECT_EQ(stage_.pool.remaining, before.remaining);
}
} // namespace
