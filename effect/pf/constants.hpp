#pragma once
// The numbers of the effect API that the effect and its hosts exchange.

#include "effect/pf/types.hpp"

enum : PF_Cmd
{
    PF_Cmd_ABOUT = 0,
    PF_Cmd_GLOBAL_SETUP = 1,
    PF_Cmd_GLOBAL_SETDOWN = 3,
    PF_Cmd_PARAMS_SETUP = 4,
    PF_Cmd_SEQUENCE_SETUP = 5,
    PF_Cmd_SEQUENCE_RESETUP = 6,
    PF_Cmd_SEQUENCE_FLATTEN = 7,
    PF_Cmd_SEQUENCE_SETDOWN = 8,
    PF_Cmd_DO_DIALOG = 9,
    PF_Cmd_FRAME_SETUP = 10,
    PF_Cmd_RENDER = 11,
    PF_Cmd_FRAME_SETDOWN = 12,
    PF_Cmd_USER_CHANGED_PARAM = 13,
    PF_Cmd_UPDATE_PARAMS_UI = 14,
    PF_Cmd_EVENT = 15,
    PF_Cmd_GET_EXTERNAL_DEPENDENCIES = 16,
    PF_Cmd_COMPLETELY_GENERAL = 17,
    PF_Cmd_QUERY_DYNAMIC_FLAGS = 18,
    PF_Cmd_AUDIO_RENDER = 19,
    PF_Cmd_AUDIO_SETUP = 20,
    PF_Cmd_AUDIO_SETDOWN = 21,
    PF_Cmd_ARBITRARY_CALLBACK = 22,
    PF_Cmd_SMART_PRE_RENDER = 23,
    PF_Cmd_SMART_RENDER = 24,
    PF_Cmd_GET_FLATTENED_SEQUENCE_DATA = 28,
    PF_Cmd_TRANSLATE_PARAMS_TO_PREFS = 29,
    PF_Cmd_SMART_RENDER_GPU = 31,
    PF_Cmd_GPU_DEVICE_SETUP = 32,
    PF_Cmd_GPU_DEVICE_SETDOWN = 33,
};

enum : PF_Err
{
    PF_Err_NONE = 0,
    PF_Err_OUT_OF_MEMORY = 4,
    PF_Err_INTERNAL_STRUCT_DAMAGED = 512,
    PF_Err_INVALID_INDEX = 513,
    PF_Err_UNRECOGNIZED_PARAM_TYPE = 514,
    PF_Err_INVALID_CALLBACK = 515,
    PF_Err_BAD_CALLBACK_PARAM = 516,
};

enum : PF_ParamType
{
    PF_Param_LAYER = 0,
    PF_Param_SLIDER = 1,
    PF_Param_FIX_SLIDER = 2,
    PF_Param_ANGLE = 3,
    PF_Param_CHECKBOX = 4,
    PF_Param_COLOR = 5,
    PF_Param_POINT = 6,
    PF_Param_POPUP = 7,
    PF_Param_FLOAT_SLIDER = 10,
    PF_Param_GROUP_START = 13,
    PF_Param_GROUP_END = 14,
};

enum : PF_ParamFlags
{
    PF_ParamFlag_CANNOT_TIME_VARY = 0x2,
    PF_ParamFlag_COLLAPSE_TWIRLY = 0x20,
    PF_ParamFlag_START_COLLAPSED = 0x20,
    PF_ParamFlag_SUPERVISE = 0x40,
};

enum : PF_ValueDisplayFlags
{
    PF_ValueDisplayFlag_PERCENT = 1,
    PF_ValueDisplayFlag_PIXEL = 2,
};

enum : PF_OutFlags
{
    PF_OutFlag_WIDE_TIME_INPUT = 0x2,
    PF_OutFlag_NON_PARAM_VARY = 0x4,
    PF_OutFlag_USE_OUTPUT_EXTENT = 0x40,
    PF_OutFlag_DISPLAY_ERROR_MESSAGE = 0x100,
};

enum : PF_Quality
{
    PF_Quality_DRAWING_AUDIO = -1,
    PF_Quality_LO = 0,
    PF_Quality_HI = 1,
};

enum : A_u_long
{
    PF_Stage_DEVELOP = 0,
    PF_Stage_ALPHA = 1,
    PF_Stage_BETA = 2,
    PF_Stage_RELEASE = 3,
};

// The version word: vers<<19 | subvers<<15 | bugfix<<11 | stage<<9 | build.
constexpr A_u_long PF_VERSION(A_u_long vers, A_u_long subvers, A_u_long bugfix, A_u_long stage, A_u_long build)
{
    return vers << 19 | subvers << 15 | bugfix << 11 | stage << 9 | build;
}

enum : PF_TransferMode
{
    PF_Xfer_COPY = 0,
    PF_Xfer_BEHIND = 1,
    PF_Xfer_IN_FRONT = 2,
};

enum : PF_WorldFlags
{
    PF_WorldFlag_DEEP = 1,
    PF_WorldFlag_WRITEABLE = 2,
};

enum : PF_NewWorldFlags
{
    PF_NewWorldFlag_NONE = 0,
    PF_NewWorldFlag_CLEAR_PIXELS = 1,
    PF_NewWorldFlag_DEEP_PIXELS = 2,
};

constexpr A_AppID kAppAfterEffects = 0x46585443; // 'FXTC'
constexpr A_AppID kAppKeyG = 0x4B657947;         // 'KeyG'
