#pragma once
// One frame's parameters, converted once to the units that the generator works in, and the geometry that follows
// from them. Carved from the frame's pool; written by grid::draw before any line is made, read-only afterwards but
// for the two matrices, the line colours' alpha and the rasteriser's working state.
//
// Frames of reference: the layer (full-resolution pixels, origin at its top left) and the canvas (a square of
// `squareSize` pixels that holds the grid at any rotation, its origin at (squareLeft, squareTop) of the layer).
// y goes down in both. Percentages are whole, 0 to 100, unless stated.

#include "effect/model/ae_obj.hpp"
#include "effect/pf/effect_api.hpp"
#include "effect/raster/line_creator.hpp"
#include "effect/shell/mem_pool.hpp"

#include <cstdint>

class frame_data : public ae_obj
{
public:
    mem_pool* pool = nullptr;
    PF_InData* in_data = nullptr;
    PF_OutData* out_data = nullptr;
    PF_LayerDef* input = nullptr;
    PF_LayerDef* output = nullptr;
    PF_ParamDef** params = nullptr;
    PF_SampPB sampling{};            // for subpixel_sample; all zero but `src`
    PF_EffectWorld scratch{};        // the displacement matte, the input's size; made only with useDisplacement
    PF_FloatMatrix rotationMatrix{}; // canvas: turn by `rotation` about its centre
    PF_FloatMatrix layoutMatrix{};   // canvas: turn by 180 degrees; every line's points go through it when drawn
    std::int64_t frameNumber = 0;    // 0 for a time step of 0
    LineCreatorClass lineCreator;
    float qualityStep = 0.0f; // sampling step along a line, pixels: 1 at low quality, 0.5 at high
    std::int32_t columnSpacing = 0;
    std::int32_t rowSpacing = 0;
    std::int32_t squareSize = 0; // multiple of 32, above the grid's diagonal
    std::int32_t squareTop = 0;  // layer
    std::int32_t squareLeft = 0;
    std::int32_t marginX = 0; // the grid's left and top edge on the canvas
    std::int32_t marginY = 0;
    std::int32_t gridLeft = 0; // layer; right and bottom excluded
    std::int32_t gridTop = 0;
    std::int32_t gridRight = 0;
    std::int32_t gridBottom = 0;
    std::int32_t height = 0; // of the grid
    std::int32_t width = 0;
    std::uint8_t matchLayerSize = 0;
    float positionX = 0.0f; // layer
    float positionY = 0.0f;
    float rotation = 0.0f; // degrees
    std::int32_t rows = 0;
    std::int32_t columns = 0;
    std::uint8_t showGrid = 0;
    float compressionCenterX = 0.0f; // canvas
    float compressionCenterY = 0.0f;
    std::int32_t lineCompression = 0; // percent, -100 to 100
    std::int32_t spacingRandomness = 0;
    std::int32_t normalWidth = 0; // pixels
    std::int32_t normalWidthRandomness = 0;
    std::int32_t stressedWidth = 0; // percent, -100 to 100
    std::int32_t distortion = 0;    // pixels
    std::int32_t distortionRandomness = 0;
    PF_Pixel normalColor{};
    PF_Pixel stressedColor{};
    std::int32_t normalShare = 0; // 100 minus "Blend Amount"
    std::int32_t opacity = 0;
    std::int32_t opacityRandomness = 0;
    std::uint8_t angularLines = 0;
    std::int32_t tolerance = 0;
    std::uint8_t compositeOnOriginal = 0;
    std::uint8_t linesHaveEnds = 0;
    std::uint8_t lockHorizontalToVertical = 0;
    std::int32_t verticalLength = 0; // pixels
    std::int32_t horizontalLength = 0;
    std::int32_t lengthRandomness = 0;
    std::int32_t verticalStartX = 0; // canvas
    std::int32_t verticalStartY = 0;
    std::int32_t horizontalStartX = 0;
    std::int32_t horizontalStartY = 0;
    std::int32_t startRandomness = 0;
    std::int32_t verticalOffset = 0; // pixels
    std::int32_t horizontalOffset = 0;
    std::uint8_t lineWrapping = 0;
    std::int64_t piecesDrawn = 0;     // of wrapped lines, so far
    float rippleWavelength = 0.0f;    // pixels
    float frequencyRandomness = 0.0f; // percent, not truncated
    float rippleSize = 0.0f;          // pixels
    float sizeRandomness = 0.0f;
    float speed = 0.0f;
    float speedRandomness = 0.0f;
    float randomSeed = 0.0f; // seeds above 2^24 lose their low bits: pictures were made with that
    std::int32_t affect = 0; // 1 vertical lines ripple, 2 horizontal ones, 3 both
    float turbulence = 0.0f;
    std::int32_t turbulenceRandomness = 0;
    PF_Fixed displaceX = 0; // whole pixels, 16.16
    PF_Fixed displaceY = 0;
    std::int32_t soften = 0;
    std::uint8_t useDisplacement = 0;
};
