#pragma once
// The scalar and small record types of the effect API, as every host lays them out on 64-bit targets.
// Declarations only. 16.16 numbers are `PF_Fixed`; rectangles are half-open (right and bottom excluded).

#include <cstdint>

using A_long = std::int32_t;
using A_u_long = std::uint32_t;
using A_short = std::int16_t;
using A_u_short = std::uint16_t;
using A_char = char;
using A_u_char = std::uint8_t;
using A_FpLong = double;
using A_FpShort = float;
using A_AppID = A_long;

using PF_Err = A_long;
using PF_Cmd = A_long;
using PF_Quality = A_long;
using PF_ModeFlags = A_long;
using PF_Field = A_long;
using PF_ParamType = A_long;
using PF_ParamFlags = A_long;
using PF_ParamUIFlags = A_long;
using PF_ParamValue = A_long;
using PF_ParamIndex = A_long;
using PF_WorldFlags = A_long;
using PF_NewWorldFlags = A_long;
using PF_OutFlags = A_long;
using PF_InFlags = A_long;
using PF_MaskFlags = A_long;
using PF_ChangeFlags = A_long;
using PF_TransferMode = A_long;
using PF_Fixed = A_long; // 16.16: 65536 is 1.0
using PF_FSliderFlags = A_u_long;
using PF_SampleEdgeBehav = A_u_long;
using PF_Precision = A_short;
using PF_ValueDisplayFlags = A_short;
using PF_Boolean = A_u_char;
using PF_FpLong = double;
using PF_FpShort = float;

using PF_Handle = char**;                    // a pointer to the block's master pointer
using PF_ProgPtr = struct PF_OpaqueProgPtr*; // the host's own record of this effect: `effect_ref`

// One pixel, straight (unmultiplied) alpha.
struct PF_Pixel
{
    A_u_char alpha;
    A_u_char red;
    A_u_char green;
    A_u_char blue;
};

struct PF_LRect
{
    A_long left;
    A_long top;
    A_long right;
    A_long bottom;
};
using PF_Rect = PF_LRect;
using PF_UnionableRect = PF_LRect;

struct PF_Point
{
    A_long h;
    A_long v;
};

struct PF_FixedPoint
{
    PF_Fixed x;
    PF_Fixed y;
};

struct PF_RationalScale
{
    A_long num;
    A_u_long den;
};

struct PF_SpecVersion
{
    A_short major;
    A_short minor;
};

// Row vectors: x' = x*mat[0][0] + y*mat[1][0] + mat[2][0], and likewise y' with column 1.
struct PF_FloatMatrix
{
    PF_FpLong mat[3][3];
};

struct PF_SoundFormatInfo
{
    PF_FpLong rateF;
    A_short num_channels;
    A_short format;
    A_short sample_size;
};

struct PF_SoundWorld
{
    PF_SoundFormatInfo fi;
    A_long num_samples;
    void* dataP;
};
