#pragma once
// The displacement pass: the drawn lines' alpha shifts the input picture.

#include "effect/pf/effect_api.hpp"

// For the host's iterate, one pixel at a time: `refcon` is the frame_data, `in` the matte's pixel at (x, y), `out`
// the output's. Within the offset's width of a near edge the matte itself shows. Writes the frame's shared
// sampling block, so it must not run for two pixels at once.
PF_Err displace_img(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out);

class frame_data;

// What every pixel of a column, of a row and of a value of the matte's alpha shares, worked out once for a frame.
// Carved from the frame's pool.
struct displacement_plan
{
    struct line // a column or a row
    {
        PF_Fixed matte; // where it lies in the matte, whole pixels
        float place;    // its position, 16.16
        bool bare;      // the matte itself shows in it
    };

    frame_data* frame;
    PF_Err (*sample)(PF_ProgPtr, PF_Fixed x, PF_Fixed y, const PF_SampPB*, PF_Pixel*); // the host's
    PF_ProgPtr host;
    PF_SampPB matte; // what is sampled first, then
    PF_SampPB input;
    line* columns; // `width` of them
    line* rows;
    A_long width; // of the input
    A_long height;
    float shift_x[256]; // by the matte's alpha, 16.16
    float shift_y[256];
};

// For the frame's matte as it is now; null where the pool has no room, or displaced positions are not sure to fit
// 16.16.
displacement_plan* plan_displacement(frame_data& frame) noexcept;

// The same as displace_img, call by call: `refcon` is the plan.
PF_Err displace_img_planned(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out);
