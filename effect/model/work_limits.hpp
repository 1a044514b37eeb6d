#pragma once
// Bounds on the work of one render. No setting that a host's sliders offer comes near them, nor does a shot of
// hours: they are what keeps a host that sends anything else, or a frame number of billions, from waiting for
// ever.

#include <cstdint>

// Lines of one direction that are drawn, and grid lines that are shown; sliders end at 100. Further ones are left
// out.
constexpr std::int32_t kMostLines = 512;

// Frames over which growth is summed for all lines of a render together: 11 hours at 25 frames a second for 8
// lines, 28 minutes for 200. Later frames add nothing.
constexpr std::int64_t kMostGrowthFrames = std::int64_t{1} << 23;

// Points of all rippled lines of a render together: 256 lines of the greatest length there is. Lines that find
// them used up are left out.
constexpr std::int64_t kMostRipplePoints = std::int64_t{1} << 24;

// Segments of one bend of an angular line; the slider ends at 20. Further ones are left out.
constexpr std::int64_t kMostBendSegments = 65536;

// Pieces that wrapped lines are cut into, all lines of a render together. A line as long as the sliders allow,
// across a grid of 100 pixels, has 40. Further ones are left out.
constexpr std::int64_t kMostPieces = 131072;

// The finest quality that lines are sampled at: 8 samples a pixel. Hosts ask for 0 or 1, one or two a pixel.
constexpr std::int32_t kMostQuality = 7;

// Pixels that all strokes of a render sweep together: this many canvases, or on small ones this many pixels, by
// the boxes around them. A stroke sweeps no more than one canvas, a line that does not wrap is one stroke, and
// sliders end at 200 lines. Lines that wrap get there after wrapping round hundreds of times over most of the
// canvas. Further strokes are left out.
constexpr std::int64_t kMostCanvases = 256;
constexpr std::int64_t kMostSweptPixels = std::int64_t{1} << 27;

// What a piece of a wrapped line counts as among them, besides its own: setting it up and laying it over the
// destination takes as long, however small it is.
constexpr std::int64_t kPixelsOfPiece = 4096;

// Samples, and positions between them, that strokes without a list of places look at, all strokes of a render
// together. Lists lack memory only where lines rise tens of pixels at every step. Further pixels are left out.
constexpr std::int64_t kMostSampleLooks = std::int64_t{1} << 28;
