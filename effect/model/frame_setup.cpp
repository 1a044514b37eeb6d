#include "effect/model/frame_setup.hpp"

#include "effect/model/frame_data.hpp"
#include "effect/model/numeric.hpp"
#include "effect/model/work_limits.hpp"
#include "effect/shell/param_ids.hpp"

#include <algorithm>

namespace
{
// Reads the host's parameters in the unit of each kind.
class param_reader
{
public:
    param_reader(PF_ParamDef** params, const PF_InData* in_data) : params_(params), in_data_(in_data) {}

    std::int32_t integer(param_id id) const { return params_[id]->u.sd.value; }
    std::uint8_t on(param_id id) const { return params_[id]->u.bd.value != 0 ? 1 : 0; }
    PF_Pixel color(param_id id) const { return params_[id]->u.cd.value; }

    // 0 to 100, with its fraction.
    double percent(param_id id) const { return static_cast<double>(params_[id]->u.fd.value) / 655.36; }
    std::int32_t whole_percent(param_id id) const { return trunc_i32(percent(id)); }

    double degrees(param_id id) const { return static_cast<double>(params_[id]->u.ad.value) * (1.0 / 65536.0); }

    // A point in full-resolution layer pixels; the host gives it in pixels of the downsampled layer.
    double point_x(param_id id) const { return scaled(params_[id]->u.td.x_value, in_data_->downsample_x); }
    double point_y(param_id id) const { return scaled(params_[id]->u.td.y_value, in_data_->downsample_y); }

private:
    static double scaled(PF_Fixed v, const PF_RationalScale& downsample)
    {
        return static_cast<double>(v) * (1.0 / 65536.0) * static_cast<double>(downsample.den) /
               static_cast<double>(downsample.num);
    }

    PF_ParamDef** params_;
    const PF_InData* in_data_;
};

// Top left of a box of `size` centred on `position`, on whole pixels.
std::int32_t centred(float position, std::int32_t size)
{
    return trunc_i32(static_cast<double>(position - static_cast<float>(size / 2)));
}

void set_up_grid(frame_data& frame, const param_reader& p)
{
    const PF_InData* in_data = frame.in_data;
    frame.matchLayerSize = p.on(kMatchLayerSize);
    frame.height = frame.matchLayerSize != 0 ? in_data->height : p.integer(kHeight);
    frame.width = frame.matchLayerSize != 0 ? in_data->width : p.integer(kWidth);

    frame.positionX = static_cast<float>(p.point_x(kPosition));
    frame.positionY = static_cast<float>(p.point_y(kPosition));
    frame.rotation = static_cast<float>(p.degrees(kRotation));
    frame.rows = p.integer(kRows);
    frame.columns = p.integer(kColumns);
    frame.showGrid = p.on(kShowGrid);
    frame.compressionCenterX = static_cast<float>(p.point_x(kCompressionCenter));
    frame.compressionCenterY = static_cast<float>(p.point_y(kCompressionCenter));
    frame.lineCompression = p.integer(kLineCompression);
    frame.spacingRandomness = p.whole_percent(kSpacingRandomness);

    frame.columnSpacing = frame.columns != 0 ? div_i32(frame.width, frame.columns) : frame.width;
    frame.rowSpacing = frame.rows != 0 ? div_i32(frame.height, frame.rows) : frame.height;
    frame.gridLeft = centred(frame.positionX, frame.width);
    frame.gridRight = wrap_add(frame.gridLeft, frame.width);
    frame.gridTop = centred(frame.positionY, frame.height);
    frame.gridBottom = wrap_add(frame.gridTop, frame.height);
}

// The square canvas: the next multiple of 32 strictly above the grid's diagonal, so that the grid fits at any
// rotation and the side divides into 32 tiles.
void set_up_square(frame_data& frame)
{
    const std::int32_t diagonal = trunc_i32(
        frame.in_data->utils->ansi.hypot(static_cast<double>(frame.width), static_cast<double>(frame.height)));
    frame.squareSize = wrap_add(diagonal, 32 - diagonal % 32);
    frame.squareTop = centred(frame.positionY, frame.squareSize);
    frame.squareLeft = centred(frame.positionX, frame.squareSize);
    frame.marginX = wrap_sub(frame.squareSize, frame.width) / 2;
    frame.marginY = wrap_sub(frame.squareSize, frame.height) / 2;
    frame.compressionCenterX -= static_cast<float>(frame.squareLeft);
    frame.compressionCenterY -= static_cast<float>(frame.squareTop);
}

void set_up_lines(frame_data& frame, const param_reader& p)
{
    frame.normalWidth = p.integer(kNormalWidth);
    frame.normalWidthRandomness = p.integer(kNormalWidthRandomness);
    frame.distortion = p.integer(kDistortion);
    frame.distortionRandomness = p.whole_percent(kDistortionRandomness);
    frame.normalColor = p.color(kNormalColor);
    frame.stressedColor = p.color(kStressedColor);

    // Fast Draw means the normal colour and width only; a displacement matte takes no notice of it.
    if (p.on(kFastDraw) != 0 && p.on(kUseDisplacement) == 0)
    {
        frame.normalShare = 100;
        frame.stressedWidth = 0;
    }
    else
    {
        frame.normalShare = trunc_i32(-p.percent(kBlendAmount) + 100.0);
        frame.stressedWidth = p.integer(kStressedWidth);
    }
    frame.opacity = p.whole_percent(kOpacity);
    frame.opacityRandomness = p.whole_percent(kOpacityRandomness);
    frame.angularLines = p.on(kAngularLines);
    frame.tolerance = p.integer(kTolerance);
    frame.compositeOnOriginal = p.on(kCompositeOnOriginal);
}

void set_up_ripples(frame_data& frame, const param_reader& p)
{
    // From the grid's average side at a frequency of 0 down to 10 pixels at 100 %.
    const float avg = static_cast<float>(wrap_add(frame.height, frame.width)) * 0.5f;
    const auto wavelength = static_cast<float>(static_cast<double>(avg) * (1.0 + p.percent(kFrequency) / -100.0));
    frame.rippleWavelength = std::clamp(wavelength, std::min(avg, 10.0f), std::max(avg, 10.0f));
    frame.frequencyRandomness = static_cast<float>(p.percent(kFrequencyRandomness));
    frame.rippleSize = static_cast<float>(p.integer(kSize));
    frame.sizeRandomness = static_cast<float>(p.integer(kSizeRandomness));
    frame.speed = static_cast<float>(p.integer(kSpeed));
    frame.speedRandomness = static_cast<float>(p.integer(kSpeedRandomness));
    frame.turbulence = static_cast<float>(frame.params[kTurbulence]->u.fs_d.value);
    frame.turbulenceRandomness = p.whole_percent(kTurbulenceRandomness);
    frame.affect = p.integer(kAffect);
    frame.randomSeed = static_cast<float>(p.integer(kRandomSeed));
}

void set_up_ends(frame_data& frame, const param_reader& p)
{
    frame.linesHaveEnds = p.on(kLinesHaveEnds);
    frame.lockHorizontalToVertical = p.on(kLockHorizontalToVertical);
    frame.verticalLength = p.integer(kVerticalLength);
    frame.horizontalLength = p.integer(kHorizontalLength);
    frame.lengthRandomness = p.integer(kLengthRandomness);
    frame.verticalStartX = wrap_sub(trunc_i32(p.point_x(kVerticalStart)), frame.squareLeft);
    frame.verticalStartY = wrap_sub(trunc_i32(p.point_y(kVerticalStart)), frame.squareTop);
    frame.horizontalStartX = wrap_sub(trunc_i32(p.point_x(kHorizontalStart)), frame.squareLeft);
    frame.horizontalStartY = wrap_sub(trunc_i32(p.point_y(kHorizontalStart)), frame.squareTop);
    frame.startRandomness = p.whole_percent(kStartRandomness);
    frame.verticalOffset = p.integer(kVerticalOffset);
    frame.horizontalOffset = p.integer(kHorizontalOffset);
    frame.lineWrapping = p.on(kLineWrapping);
}

void set_up_displacement(frame_data& frame, const param_reader& p)
{
    // The angle is rounded through single precision and the offset truncated to whole pixels: a quarter turn lies
    // just past 90 degrees and loses a pixel.
    const PF_ANSICallbacks& ansi = frame.in_data->utils->ansi;
    const auto a = static_cast<double>(static_cast<float>(p.degrees(kDisplacementAngle) * 0.017453292519943295));
    const auto amount = static_cast<double>(p.integer(kDisplacementAmount));
    frame.displaceX = to_fixed(trunc_i32(ansi.sin(a) * amount));
    frame.displaceY = to_fixed(trunc_i32(ansi.cos(a) * amount));
    frame.useDisplacement = p.on(kUseDisplacement);
    frame.soften = p.whole_percent(kSoften);
}

void set_up_rasteriser(frame_data& frame)
{
    const auto quality = static_cast<double>(std::min(frame.in_data->quality, kMostQuality));
    frame.qualityStep = static_cast<float>(1.0 / (quality + 1.0));

    LineCreatorClass& creator = frame.lineCreator;
    creator.pool = frame.pool;
    creator.in_data = frame.in_data;
    creator.samplesPerPixel = trunc_i32(quality + 1.0);
    creator.level = chosen_simd_level();
    creator.coreOpacity = 1.0f;
    creator.monocolor = true;
    creator.pixelFunction = &LineCreatorClass::CalculatePixelMonocolor;
    if (frame.useDisplacement != 0)
    {
        // No solid core for the matte: "Soften" fades it from the centre line outwards.
        creator.coreOpacity = static_cast<float>(frame.soften) / -100.0f + 1.0f;
        creator.subRenderFunction = &LineCreatorClass::SubRenderMulticolor;
    }
    else if (frame.normalShare == 0 || frame.normalShare == 100)
    {
        creator.subRenderFunction = &LineCreatorClass::SubRenderMonocolor;
    }
    else
    {
        creator.monocolor = false;
        creator.pixelFunction = &LineCreatorClass::CalculatePixelMulticolor;
        creator.subRenderFunction = &LineCreatorClass::SubRenderMulticolor;
    }
}
} // namespace

void set_up_frame(frame_data& frame, mem_pool* pool, PF_InData* in_data, PF_OutData* out_data,
                  PF_ParamDef** params, PF_LayerDef* output)
{
    frame.pool = pool;
    frame.in_data = in_data;
    frame.out_data = out_data;
    frame.input = &params[kInputLayer]->u.ld;
    frame.output = output;
    frame.params = params;
    frame.frameNumber = div_i32(in_data->current_time, in_data->time_step);

    const param_reader p(params, in_data);
    set_up_grid(frame, p);
    set_up_square(frame);
    set_up_lines(frame, p);
    set_up_ripples(frame, p);
    set_up_ends(frame, p);
    set_up_displacement(frame, p);
    set_up_rasteriser(frame);
}
