#include "effect/shell/params.hpp"

#include "effect/model/numeric.hpp"
#include "effect/shell/param_ids.hpp"

#include <cstring>

namespace
{
// One row of the table: what makes one registered parameter. Numbers are in the parameter's own unit.
struct param_row
{
    param_id id;
    PF_ParamType type;
    const char* name; // a checkbox's is its label
    PF_ParamFlags flags;
    A_long value = 0; // default; 16.16 for fixed sliders and points' x
    A_long minimum = 0;
    A_long maximum = 0;
    A_long y = 0; // 16.16
    float number = 0.0f;
    float number_min = 0.0f;
    float number_max = 0.0f;
    PF_Pixel color = {};
    const char* choices = nullptr;
};

constexpr PF_ParamFlags kAnimatable = PF_ParamFlag_COLLAPSE_TWIRLY;
constexpr PF_ParamFlags kFixedInTime = PF_ParamFlag_COLLAPSE_TWIRLY | PF_ParamFlag_CANNOT_TIME_VARY;
constexpr A_long kOne = 65536; // 1.0 in 16.16

constexpr param_row topic(param_id id, const char* name)
{
    return {.id = id, .type = PF_Param_GROUP_START, .name = name, .flags = kAnimatable};
}

constexpr param_row topic_end(param_id id)
{
    return {.id = id, .type = PF_Param_GROUP_END, .name = nullptr, .flags = 0};
}

constexpr param_row slider(param_id id, const char* name, A_long value, A_long minimum, A_long maximum,
                           PF_ParamFlags flags = kAnimatable)
{
    return {.id = id,
            .type = PF_Param_SLIDER,
            .name = name,
            .flags = flags,
            .value = value,
            .minimum = minimum,
            .maximum = maximum};
}

// 0 to 1, shown as a percentage. The defaults are exact in 16.16.
constexpr param_row percent(param_id id, const char* name, double value)
{
    return {.id = id,
            .type = PF_Param_FIX_SLIDER,
            .name = name,
            .flags = kAnimatable,
            .value = trunc_i32(value * kOne)};
}

constexpr param_row number(param_id id, const char* name, float value, float minimum, float maximum)
{
    return {.id = id,
            .type = PF_Param_FLOAT_SLIDER,
            .name = name,
            .flags = kAnimatable,
            .number = value,
            .number_min = minimum,
            .number_max = maximum};
}

constexpr param_row angle(param_id id, const char* name)
{
    return {.id = id, .type = PF_Param_ANGLE, .name = name, .flags = kAnimatable};
}

// In percent of the layer.
constexpr param_row point(param_id id, const char* name, A_long x, A_long y)
{
    return {
        .id = id, .type = PF_Param_POINT, .name = name, .flags = kAnimatable, .value = x * kOne, .y = y * kOne};
}

constexpr param_row color(param_id id, const char* name, PF_Pixel value)
{
    return {.id = id, .type = PF_Param_COLOR, .name = name, .flags = kAnimatable, .color = value};
}

constexpr param_row checkbox(param_id id, const char* label, bool on)
{
    return {.id = id, .type = PF_Param_CHECKBOX, .name = label, .flags = kFixedInTime, .value = on ? 1 : 0};
}

// The choices are numbered from 1.
constexpr param_row popup(param_id id, const char* name, A_long value, A_long count, const char* choices)
{
    return {.id = id,
            .type = PF_Param_POPUP,
            .name = name,
            .flags = kFixedInTime,
            .value = value,
            .maximum = count,
            .choices = choices};
}

// In the order of registration, which is the order of the ids.
constexpr param_row kParams[] = {
    topic(kGridTopic, "Grid"),
    slider(kHeight, "Height", 200, 2, 2000, kFixedInTime),
    slider(kWidth, "Width", 200, 2, 2000, kFixedInTime),
    checkbox(kMatchLayerSize, "Make Size Match Layer Size", true),
    point(kPosition, "Position", 50, 50),
    angle(kRotation, "Rotation"),
    slider(kRows, "Rows", 4, 0, 100, kFixedInTime),
    slider(kColumns, "Columns", 4, 0, 100, kFixedInTime),
    checkbox(kShowGrid, "Show Grid", false),
    point(kCompressionCenter, "Compression Center", 50, 50),
    slider(kLineCompression, "Line Compression", 0, -100, 100),
    percent(kSpacingRandomness, "Line Spacing Randomness", 0.0),
    topic_end(kGridTopicEnd),
    topic(kLinesTopic, "Lines"),
    slider(kNormalWidth, "Normal Line Width (NLW)", 2, 1, 200),
    slider(kNormalWidthRandomness, "NLW Randomness", 0, 0, 2000),
    slider(kStressedWidth, "Stressed Line Width", 100, -100, 100),
    slider(kDistortion, "Distortion", 35, 0, 100),
    percent(kDistortionRandomness, "Distortion Randomness", 0.0),
    color(kNormalColor, "Normal Color", {255, 0, 0, 255}),
    color(kStressedColor, "Stressed Color", {255, 255, 0, 0}),
    percent(kBlendAmount, "Blend Amount", 0.5),
    percent(kOpacity, "Opacity", 1.0),
    percent(kOpacityRandomness, "Opacity Randomness", 0.0),
    checkbox(kAngularLines, "Angular Lines", false),
    slider(kTolerance, "Tolerance", 1, 1, 20),
    checkbox(kCompositeOnOriginal, "Composite On Original", false),
    checkbox(kFastDraw, "Fast Draw", false),
    topic_end(kLinesTopicEnd),
    topic(kEndsTopic, "Lines With Ends"),
    checkbox(kLinesHaveEnds, "Lines Have Ends", false),
    checkbox(kLockHorizontalToVertical, "Lock Horizontal To Vertical", false),
    slider(kVerticalLength, "Vertical Length", 200, 0, 4000),
    slider(kHorizontalLength, "Horizontal Length", 200, 0, 4000),
    slider(kLengthRandomness, "Length Randomness", 0, 0, 2000),
    point(kVerticalStart, "Vertical Starting Point", 50, 10),
    point(kHorizontalStart, "Horizontal Starting Point", 10, 50),
    percent(kStartRandomness, "Starting Point Randomness", 0.0),
    slider(kVerticalOffset, "Vertical Offset", 0, -4000, 4000),
    slider(kHorizontalOffset, "Horizontal Offset", 0, -4000, 4000),
    number(kVerticalGrowth, "Vertical Growth", 3.0f, 0.0f, 100.0f),
    number(kHorizontalGrowth, "Horizontal Growth", 3.0f, 0.0f, 100.0f),
    slider(kGrowthRandomness, "Growth Randomness", 0, 0, 2000),
    checkbox(kLineWrapping, "Line Wrapping", false),
    topic_end(kEndsTopicEnd),
    topic(kRipplesTopic, "Ripples"),
    percent(kFrequency, "Frequency", 0.75),
    percent(kFrequencyRandomness, "Frequency Randomness", 0.0),
    slider(kSize, "Size", 15, 1, 100),
    slider(kSizeRandomness, "Size Randomness", 0, 0, 2000),
    slider(kSpeed, "Speed", 5, 0, 100),
    slider(kSpeedRandomness, "Speed Randomness", 0, 0, 2000),
    number(kTurbulence, "Turbulance", 3.0f, 1.0f, 7.0f),
    percent(kTurbulenceRandomness, "Turbulance Randomness", 0.0),
    popup(kAffect, "Affect", 3, 3, "Vert Lines|Horz Lines|Both"),
    slider(kRandomSeed, "Random Seed", 12345, 1, 2147483647),
    topic_end(kRipplesTopicEnd),
    topic(kDisplacementTopic, "Displacement"),
    checkbox(kUseDisplacement, "Use Displacement", false),
    angle(kDisplacementAngle, "Angle of Displacement"),
    slider(kDisplacementAmount, "Amount of Displacement", 3, 0, 100),
    percent(kSoften, "Soften", 0.5),
    topic_end(kDisplacementTopicEnd),
};
static_assert(sizeof kParams / sizeof kParams[0] == kParamCount - 1);

void fill_slider(PF_SliderDef& def, const param_row& row)
{
    def.value = row.value;
    def.dephault = row.value;
    def.valid_min = row.minimum;
    def.valid_max = row.maximum;
    def.slider_min = row.minimum;
    def.slider_max = row.maximum;
}

void fill_percent(PF_FixedSliderDef& def, const param_row& row)
{
    def.value = row.value;
    def.dephault = row.value;
    def.valid_max = kOne;
    def.slider_max = kOne;
    def.precision = 1;
    def.display_flags = PF_ValueDisplayFlag_PERCENT;
}

void fill_number(PF_FloatSliderDef& def, const param_row& row)
{
    def.value = static_cast<double>(row.number);
    def.dephault = row.number;
    def.valid_min = row.number_min;
    def.valid_max = row.number_max;
    def.slider_min = row.number_min;
    def.slider_max = row.number_max;
    def.precision = 1;
    def.display_flags = 0x20; // neither percent nor pixels: the bit that saved projects know
    def.curve_tolerance = 0.05f;
}

// Fills what the kind asks for into a record that is all zero.
void fill_union(PF_ParamDefUnion& u, const param_row& row)
{
    switch (row.type)
    {
    case PF_Param_SLIDER:
        return fill_slider(u.sd, row);
    case PF_Param_FIX_SLIDER:
        return fill_percent(u.fd, row);
    case PF_Param_FLOAT_SLIDER:
        return fill_number(u.fs_d, row);
    case PF_Param_POINT:
        u.td.x_value = u.td.x_dephault = row.value;
        u.td.y_value = u.td.y_dephault = row.y;
        return;
    case PF_Param_COLOR:
        u.cd.value = u.cd.dephault = row.color;
        return;
    case PF_Param_CHECKBOX:
        u.bd.value = row.value;
        u.bd.dephault = static_cast<PF_Boolean>(row.value);
        u.bd.u.nameptr = row.name;
        return;
    case PF_Param_POPUP:
        u.pd.value = row.value;
        u.pd.dephault = static_cast<A_short>(row.value);
        u.pd.num_choices = static_cast<A_short>(row.maximum);
        u.pd.u.namesptr = row.choices;
        return;
    default: // angles start at 0; topics carry no value
        return;
    }
}
} // namespace

PF_Err add_params(PF_InData* in_data, PF_OutData* out_data)
{
    for (const param_row& row : kParams)
    {
        PF_ParamDef def;
        std::memset(&def, 0, sizeof def);
        def.param_type = row.type;
        def.flags = row.flags;
        if (row.name != nullptr)
            in_data->utils->ansi.strcpy(def.name, row.type == PF_Param_CHECKBOX ? "" : row.name);
        fill_union(def.u, row);
        def.uu.id = row.id;
        const PF_Err err = in_data->inter.add_param(in_data->effect_ref, -1, &def);
        if (err != PF_Err_NONE)
            return err;
    }
    out_data->num_params = kParamCount;
    return PF_Err_NONE;
}
