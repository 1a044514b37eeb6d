#pragma once
// The tables of functions through which an effect calls its host. Entries that no effect of ours calls are
// plain addresses, so that the tables keep their published size.

#include "effect/pf/params.hpp"
#include "effect/pf/types.hpp"

struct PF_InData;

struct PF_CompositeMode
{
    PF_TransferMode xfer;
    A_long rand_seed;
    A_u_char opacity;
    PF_Boolean rgb_only;
    A_u_short opacitySu;
};

struct PF_MaskWorld
{
    PF_EffectWorld mask;
    PF_Point offset;
    PF_MaskFlags what_is_mask;
};

struct PF_SampPB
{
    PF_Fixed x_radius;
    PF_Fixed y_radius;
    PF_Fixed area;
    PF_EffectWorld* src;
    PF_SampleEdgeBehav samp_behave;
    A_long allow_asynch;
    A_long motion_blur;
    PF_CompositeMode comp_mode;
    PF_Pixel* mask0;
    A_u_char* fcm_table;
    A_u_char* fcd_table;
    A_long reserved[8];
};

using PF_IteratePixel8Func = PF_Err (*)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out);

struct PF_InteractCallbacks
{
    PF_Err (*checkout_param)(PF_ProgPtr, PF_ParamIndex, A_long what_time, A_long time_step, A_u_long time_scale,
                             PF_ParamDef*);
    PF_Err (*checkin_param)(PF_ProgPtr, PF_ParamDef*);
    PF_Err (*add_param)(PF_ProgPtr, PF_ParamIndex, PF_ParamDef*);
    PF_Err (*abort)(PF_ProgPtr);
    PF_Err (*progress)(PF_ProgPtr, A_long, A_long);
    void* register_ui;
    void* checkout_layer_audio;
    void* checkin_layer_audio;
    void* get_audio_data;
    void* reserved_str[3];
    void* reserved[10];
};

struct PF_ANSICallbacks
{
    double (*atan)(double);
    double (*atan2)(double, double);
    double (*ceil)(double);
    double (*cos)(double);
    double (*exp)(double);
    double (*fabs)(double);
    double (*floor)(double);
    double (*fmod)(double, double);
    double (*hypot)(double, double);
    double (*log)(double);
    double (*log10)(double);
    double (*pow)(double, double);
    double (*sin)(double);
    double (*sqrt)(double);
    double (*tan)(double);
    int (*sprintf)(char*, const char*, ...);
    char* (*strcpy)(char*, const char*);
    double (*asin)(double);
    double (*acos)(double);
    A_long unused[1];
};

struct PF_ColorCallbacks
{
    void* fn[8];
};

struct PF_UtilCallbacks
{
    void* begin_sampling;
    PF_Err (*subpixel_sample)(PF_ProgPtr, PF_Fixed x, PF_Fixed y, const PF_SampPB*, PF_Pixel* dst);
    void* area_sample;
    void* get_batch_func_is_deprecated;
    void* end_sampling;
    void* composite_rect;
    void* blend;
    void* convolve;
    PF_Err (*copy)(PF_ProgPtr, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r, PF_Rect* dst_r);
    PF_Err (*fill)(PF_ProgPtr, const PF_Pixel* color, const PF_Rect* dst_rect, PF_EffectWorld* world);
    void* gaussian_kernel;
    PF_Err (*iterate)(PF_InData*, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon, PF_IteratePixel8Func, PF_EffectWorld* dst);
    void* premultiply;
    void* premultiply_color;
    PF_Err (*new_world)(PF_ProgPtr, A_long width, A_long height, PF_NewWorldFlags, PF_EffectWorld*);
    PF_Err (*dispose_world)(PF_ProgPtr, PF_EffectWorld*);
    void* iterate_origin;
    void* iterate_lut;
    PF_Err (*transfer_rect)(PF_ProgPtr, PF_Quality, PF_ModeFlags, PF_Field, const PF_Rect* src_rec,
                            const PF_EffectWorld* src, const PF_CompositeMode*, const PF_MaskWorld*, A_long dest_x,
                            A_long dest_y, PF_EffectWorld* dst);
    PF_Err (*transform_world)(PF_ProgPtr, PF_Quality, PF_ModeFlags, PF_Field, const PF_EffectWorld* src,
                              const PF_CompositeMode*, const PF_MaskWorld*, const PF_FloatMatrix* matrices,
                              A_long num_matrices, PF_Boolean src2dst, const PF_Rect* dest_rect,
                              PF_EffectWorld* dst);
    PF_Handle (*host_new_handle)(std::uint64_t size);
    void* (*host_lock_handle)(PF_Handle);
    void (*host_unlock_handle)(PF_Handle);
    void (*host_dispose_handle)(PF_Handle);
    void* get_callback_addr;
    void* app;
    PF_ANSICallbacks ansi;
    PF_ColorCallbacks colorCB;
    void* get_platform_data;
    std::uint64_t (*host_get_handle_size)(PF_Handle);
    void* iterate_origin_non_clip_src;
    void* iterate_generic;
    void* host_resize_handle;
    void* subpixel_sample16;
    void* area_sample16;
    void* fill16;
    void* premultiply_color16;
    void* iterate16;
    void* iterate_origin16;
    void* iterate_origin_non_clip_src16;
    void* get_pixel_data8;
    void* get_pixel_data16;
    A_long reserved[1];
};
