// filigrane_bench: times strokes, frames and their stages, and prints tables. The exit status is 0 when what was
// compared drew the same, 1 when not or for an error, 2 for a command line that makes no sense. A figure that a
// table asks for and that is not met is no error.

#include "bench/suites.hpp"

#include "effect/raster/simd_level.hpp"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace
{
struct suite
{
    const char* name;
    const char* what;
    void (*time)(bench::run&);
    bool quick; // one of those that steer
};

const suite kSuites[] = {
    {"strokes", "strokes against Cairo, AGG and the plain functions", bench::time_strokes, true},
    {"wide_strokes", "radius 200 against radius 20", bench::time_wide_strokes, true},
    {"frames", "whole frames, fast against plain", bench::time_frames, true},
    {"frame_matrix", "whole frames at three sizes and both qualities", bench::time_frame_matrix, false},
    {"jobs", "frames in a row on one job and on two", bench::time_jobs, false},
    {"looks", "a frame of every look", bench::time_looks, false},
    {"layout", "stages of a line: sampling, ripples, crossings", bench::time_layout, false},
    {"raster", "stages of a stroke: swept boxes, pixel functions, flushing", bench::time_raster, false},
    {"host", "the host's compositing and sampling, against pixman", bench::time_host, false},
    {"growth", "frames over lines, width, size, number and turbulence", bench::time_growth, false},
};

void print_help()
{
    std::printf("filigrane_bench [--csv FOLDER] [--effort FACTOR] [quick | NAME...]\n"
                "  NAME: part of the name of what to time; all of it without one\n");
    for (const suite& s : kSuites)
        std::printf("    %-14s %s\n", s.name, s.what);
    std::printf("  quick: the comparisons that steer, in less than a minute\n"
                "  --csv: writes the tables as comma-separated values, too\n"
                "  --effort: time spent on each case, 1 to begin with\n"
                "FILIGRANE_SIMD=sse2 times the fast ways at that level.\n");
}

const char* level_name(simd_level level)
{
    return level == simd_level::scalar ? "scalar" : level == simd_level::avx2 ? "avx2" : "baseline";
}

bool chosen(const suite& s, const bench::run& r, const std::vector<std::string>& names)
{
    if (r.brief)
        return s.quick;
    bool any = names.empty();
    for (const std::string& name : names)
        any = any || std::string_view(s.name).find(name) != std::string_view::npos;
    return any;
}
} // namespace

int main(int argc, char** argv)
{
    bench::run r;
    std::vector<std::string> names;
    for (int i = 1; i < argc; ++i)
    {
        const std::string_view word = argv[i];
        if (word == "--help" || word == "-h")
        {
            print_help();
            return 0;
        }
        if (word == "--csv" && i + 1 < argc)
            r.csv = argv[++i];
        else if (word == "--effort" && i + 1 < argc && std::atof(argv[i + 1]) > 0.0)
            r.effort = std::atof(argv[++i]);
        else if (word == "quick")
            r.brief = true;
        else if (!word.starts_with("-"))
            names.emplace_back(word);
        else
        {
            std::fprintf(stderr, "filigrane_bench: %s makes no sense here; see --help\n", argv[i]);
            return 2;
        }
    }
    if (r.brief)
        r.effort *= 0.5;
    try
    {
        std::printf("fast: %s\n", level_name(chosen_simd_level()));
        int timed = 0;
        for (const suite& s : kSuites)
            if (chosen(s, r, names))
            {
                s.time(r);
                ++timed;
            }
        if (timed == 0)
        {
            std::fprintf(stderr, "filigrane_bench: nothing of that name is timed; see --help\n");
            return 2;
        }
    }
    catch (const std::exception& failure)
    {
        std::fprintf(stderr, "filigrane_bench: %s\n", failure.what());
        return 1;
    }
    return r.failed ? 1 : 0;
}
