#pragma once
// The stroke rasteriser: draws one stroke, given as samples with a radius and a colour each, onto the canvas. A
// pixel takes the radius and colour of the sample nearest to its centre. A member of the frame record; set up once
// per render, then for each stroke or piece of a wrapped one.

#include "effect/pf/effect_api.hpp"
#include "effect/raster/simd_level.hpp"
#include "effect/raster/stroke_point.hpp"
#include "effect/shell/mem_pool.hpp"

#include <cstddef>
#include <cstdint>

class aeg;
struct nearest_sample;

class LineCreatorClass
{
public:
    // The coverage table: rows of hundredths of a pixel that the rim lies beyond the pixel centre, plus one;
    // columns of 255ths of the sine of the rim's direction. Only the first 200 rows are filled.
    static constexpr int kTableColumns = 256;
    static constexpr int kTableRows = 300;
    static constexpr int kTableFilledRows = 200;

    // Carves and fills the coverage table; null where the pool is short. Answers 1.
    int CreateTables();
    // Draws the current stroke. Answers 1.
    int Render();

    // Swept boxes, with a solid core where every pixel is sure to be covered / every pixel decided on its own.
    void SubRenderMonocolor();
    void SubRenderMulticolor();

    // Decide one pixel of the canvas: column x, row y, both inside it. The nearest sample's radius gives the
    // alpha; the colour is the stroke's, or the nearest sample's. Writing the same pixel twice writes the same
    // value.
    void CalculatePixelMonocolor(int x, int y);
    void CalculatePixelMulticolor(int x, int y);

    StrokePoint* points = nullptr;
    mem_pool* pool = nullptr;
    PF_InData* in_data = nullptr;
    aeg* context = nullptr;         // whose tiles are marked
    PF_Pixel* pixels = nullptr;     // the canvas
    float* coverageTable = nullptr; // kTableRows x kTableColumns
    float halfDiagonal = 0.0f;      // half of what a pixel's diagonal is longer than its side, pixels
    std::int32_t width = 0;         // of the canvas, pixels
    std::int32_t height = 0;
    std::int32_t rowBytes = 0;
    std::int32_t pointCount = 0;
    std::int32_t axis = 0;               // 0: the stroke runs along x, 1: along y
    std::int32_t samplesPerPixel = 0;    // 1 at low quality, 2 at high
    float outerRadius = 0.0f;            // pixels: nothing is drawn farther out
    float innerRadius = 0.0f;            // half side of the square that is covered around every sample
    float coreOpacity = 0.0f;            // factor of the alpha reached at the radius; 1 for none
    std::uint8_t* coveredMask = nullptr; // width x height: 1 where the current stroke's core is
    bool monocolor = false;
    simd_level level =
        simd_level::baseline;     // scalar: the plain functions of the whole effect, not of the strokes alone
    std::int64_t sweptPixels = 0; // at most, by all strokes of the render so far
    std::int64_t sampleLooks = 0; // of searches without a list of places, by all strokes so far
    void (LineCreatorClass::*pixelFunction)(int, int) = nullptr;
    void (LineCreatorClass::*subRenderFunction)() = nullptr;

    // The colour of a pixel `dist` from what it is nearest to. False where that does not reach it.
    template <bool Multicolor>
    bool shade(const nearest_sample& near, float dist, PF_Pixel* out) const noexcept;

    PF_Pixel* pixel_at(int x, int y) const noexcept
    {
        auto* const row = reinterpret_cast<unsigned char*>(pixels) + static_cast<std::ptrdiff_t>(y) * rowBytes;
        return reinterpret_cast<PF_Pixel*>(row) + x;
    }

private:
    template <bool Multicolor>
    void calculate_pixel(int x, int y);
    float coverage(float edge, float row_offset, float dist) const noexcept;
};
