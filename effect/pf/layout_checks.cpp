// Every size and offset of the effect API that the effect or a host touches, held against the published layout
// at compile time: one build of the plug-in must load in every host.

#include "effect/pf/effect_api.hpp"

#include <cstddef>

// NOLINTBEGIN(cppcoreguidelines-macro-usage): a table of assertions needs the member names as tokens.
#define CHECK_SIZE(type, bytes) static_assert(sizeof(type) == (bytes))
#define CHECK_OFFSET(type, field, bytes) static_assert(offsetof(type, field) == (bytes))

CHECK_SIZE(PF_InData, 408);
CHECK_OFFSET(PF_InData, inter, 0);
CHECK_OFFSET(PF_InData, utils, 176);
CHECK_OFFSET(PF_InData, effect_ref, 184);
CHECK_OFFSET(PF_InData, quality, 192);
CHECK_OFFSET(PF_InData, version, 196);
CHECK_OFFSET(PF_InData, serial_num, 200);
CHECK_OFFSET(PF_InData, appl_id, 204);
CHECK_OFFSET(PF_InData, num_params, 208);
CHECK_OFFSET(PF_InData, reserved, 212);
CHECK_OFFSET(PF_InData, what_cpu, 216);
CHECK_OFFSET(PF_InData, what_fpu, 220);
CHECK_OFFSET(PF_InData, current_time, 224);
CHECK_OFFSET(PF_InData, time_step, 228);
CHECK_OFFSET(PF_InData, total_time, 232);
CHECK_OFFSET(PF_InData, local_time_step, 236);
CHECK_OFFSET(PF_InData, time_scale, 240);
CHECK_OFFSET(PF_InData, field, 244);
CHECK_OFFSET(PF_InData, shutter_angle, 248);
CHECK_OFFSET(PF_InData, width, 252);
CHECK_OFFSET(PF_InData, height, 256);
CHECK_OFFSET(PF_InData, extent_hint, 260);
CHECK_OFFSET(PF_InData, output_origin_x, 276);
CHECK_OFFSET(PF_InData, output_origin_y, 280);
CHECK_OFFSET(PF_InData, downsample_x, 284);
CHECK_OFFSET(PF_InData, downsample_y, 292);
CHECK_OFFSET(PF_InData, pixel_aspect_ratio, 300);
CHECK_OFFSET(PF_InData, in_flags, 308);
CHECK_OFFSET(PF_InData, global_data, 312);
CHECK_OFFSET(PF_InData, sequence_data, 320);
CHECK_OFFSET(PF_InData, frame_data, 328);
CHECK_OFFSET(PF_InData, start_sampL, 336);
CHECK_OFFSET(PF_InData, dur_sampL, 340);
CHECK_OFFSET(PF_InData, total_sampL, 344);
CHECK_OFFSET(PF_InData, src_snd, 352);
CHECK_OFFSET(PF_InData, pica_basicP, 384);
CHECK_OFFSET(PF_InData, pre_effect_source_origin_x, 392);
CHECK_OFFSET(PF_InData, pre_effect_source_origin_y, 396);
CHECK_OFFSET(PF_InData, shutter_phase, 400);

CHECK_SIZE(PF_OutData, 408);
CHECK_OFFSET(PF_OutData, my_version, 0);
CHECK_OFFSET(PF_OutData, name, 4);
CHECK_OFFSET(PF_OutData, global_data, 40);
CHECK_OFFSET(PF_OutData, num_params, 48);
CHECK_OFFSET(PF_OutData, sequence_data, 56);
CHECK_OFFSET(PF_OutData, flat_sdata_size, 64);
CHECK_OFFSET(PF_OutData, frame_data, 72);
CHECK_OFFSET(PF_OutData, width, 80);
CHECK_OFFSET(PF_OutData, height, 84);
CHECK_OFFSET(PF_OutData, origin, 88);
CHECK_OFFSET(PF_OutData, out_flags, 96);
CHECK_OFFSET(PF_OutData, return_msg, 100);
CHECK_OFFSET(PF_OutData, start_sampL, 356);
CHECK_OFFSET(PF_OutData, dur_sampL, 360);
CHECK_OFFSET(PF_OutData, dest_snd, 368);
CHECK_OFFSET(PF_OutData, out_flags2, 400);

CHECK_SIZE(PF_ParamDef, 176);
CHECK_OFFSET(PF_ParamDef, uu, 0);
CHECK_OFFSET(PF_ParamDef, ui_flags, 4);
CHECK_OFFSET(PF_ParamDef, ui_width, 8);
CHECK_OFFSET(PF_ParamDef, ui_height, 10);
CHECK_OFFSET(PF_ParamDef, param_type, 12);
CHECK_OFFSET(PF_ParamDef, name, 16);
CHECK_OFFSET(PF_ParamDef, flags, 48);
CHECK_OFFSET(PF_ParamDef, unused, 52);
CHECK_OFFSET(PF_ParamDef, u, 56);

CHECK_SIZE(PF_LayerDef, 120);
CHECK_OFFSET(PF_LayerDef, reserved0, 0);
CHECK_OFFSET(PF_LayerDef, reserved1, 8);
CHECK_OFFSET(PF_LayerDef, world_flags, 16);
CHECK_OFFSET(PF_LayerDef, data, 24);
CHECK_OFFSET(PF_LayerDef, rowbytes, 32);
CHECK_OFFSET(PF_LayerDef, width, 36);
CHECK_OFFSET(PF_LayerDef, height, 40);
CHECK_OFFSET(PF_LayerDef, extent_hint, 44);
CHECK_OFFSET(PF_LayerDef, platform_ref, 64);
CHECK_OFFSET(PF_LayerDef, reserved_long1, 72);
CHECK_OFFSET(PF_LayerDef, reserved_long4, 80);
CHECK_OFFSET(PF_LayerDef, pix_aspect_ratio, 88);
CHECK_OFFSET(PF_LayerDef, reserved_long2, 96);
CHECK_OFFSET(PF_LayerDef, origin_x, 104);
CHECK_OFFSET(PF_LayerDef, origin_y, 108);
CHECK_OFFSET(PF_LayerDef, reserved_long3, 112);
CHECK_OFFSET(PF_LayerDef, dephault, 116);

CHECK_SIZE(PF_SliderDef, 88);
CHECK_OFFSET(PF_SliderDef, value, 0);
CHECK_OFFSET(PF_SliderDef, value_str, 4);
CHECK_OFFSET(PF_SliderDef, value_desc, 36);
CHECK_OFFSET(PF_SliderDef, valid_min, 68);
CHECK_OFFSET(PF_SliderDef, valid_max, 72);
CHECK_OFFSET(PF_SliderDef, slider_min, 76);
CHECK_OFFSET(PF_SliderDef, slider_max, 80);
CHECK_OFFSET(PF_SliderDef, dephault, 84);

CHECK_SIZE(PF_FixedSliderDef, 92);
CHECK_OFFSET(PF_FixedSliderDef, value, 0);
CHECK_OFFSET(PF_FixedSliderDef, value_str, 4);
CHECK_OFFSET(PF_FixedSliderDef, value_desc, 36);
CHECK_OFFSET(PF_FixedSliderDef, valid_min, 68);
CHECK_OFFSET(PF_FixedSliderDef, valid_max, 72);
CHECK_OFFSET(PF_FixedSliderDef, slider_min, 76);
CHECK_OFFSET(PF_FixedSliderDef, slider_max, 80);
CHECK_OFFSET(PF_FixedSliderDef, dephault, 84);
CHECK_OFFSET(PF_FixedSliderDef, precision, 88);
CHECK_OFFSET(PF_FixedSliderDef, display_flags, 90);

CHECK_SIZE(PF_FloatSliderDef, 88);
CHECK_OFFSET(PF_FloatSliderDef, value, 0);
CHECK_OFFSET(PF_FloatSliderDef, phase, 8);
CHECK_OFFSET(PF_FloatSliderDef, value_desc, 16);
CHECK_OFFSET(PF_FloatSliderDef, valid_min, 48);
CHECK_OFFSET(PF_FloatSliderDef, valid_max, 52);
CHECK_OFFSET(PF_FloatSliderDef, slider_min, 56);
CHECK_OFFSET(PF_FloatSliderDef, slider_max, 60);
CHECK_OFFSET(PF_FloatSliderDef, dephault, 64);
CHECK_OFFSET(PF_FloatSliderDef, precision, 68);
CHECK_OFFSET(PF_FloatSliderDef, display_flags, 70);
CHECK_OFFSET(PF_FloatSliderDef, fs_flags, 72);
CHECK_OFFSET(PF_FloatSliderDef, curve_tolerance, 76);
CHECK_OFFSET(PF_FloatSliderDef, useExponent, 80);
CHECK_OFFSET(PF_FloatSliderDef, exponent, 84);

CHECK_SIZE(PF_AngleDef, 16);
CHECK_OFFSET(PF_AngleDef, value, 0);
CHECK_OFFSET(PF_AngleDef, dephault, 4);
CHECK_OFFSET(PF_AngleDef, valid_min, 8);
CHECK_OFFSET(PF_AngleDef, valid_max, 12);

CHECK_SIZE(PF_CheckBoxDef, 16);
CHECK_OFFSET(PF_CheckBoxDef, value, 0);
CHECK_OFFSET(PF_CheckBoxDef, dephault, 4);
CHECK_OFFSET(PF_CheckBoxDef, reserved, 5);
CHECK_OFFSET(PF_CheckBoxDef, reserved1, 6);
CHECK_OFFSET(PF_CheckBoxDef, u, 8);

CHECK_SIZE(PF_ColorDef, 8);
CHECK_OFFSET(PF_ColorDef, value, 0);
CHECK_OFFSET(PF_ColorDef, dephault, 4);

CHECK_SIZE(PF_PointDef, 20);
CHECK_OFFSET(PF_PointDef, x_value, 0);
CHECK_OFFSET(PF_PointDef, y_value, 4);
CHECK_OFFSET(PF_PointDef, reserved, 8);
CHECK_OFFSET(PF_PointDef, restrict_bounds, 11);
CHECK_OFFSET(PF_PointDef, x_dephault, 12);
CHECK_OFFSET(PF_PointDef, y_dephault, 16);

CHECK_SIZE(PF_PopupDef, 16);
CHECK_OFFSET(PF_PopupDef, value, 0);
CHECK_OFFSET(PF_PopupDef, num_choices, 4);
CHECK_OFFSET(PF_PopupDef, dephault, 6);
CHECK_OFFSET(PF_PopupDef, u, 8);

CHECK_SIZE(PF_SampPB, 104);
CHECK_OFFSET(PF_SampPB, x_radius, 0);
CHECK_OFFSET(PF_SampPB, y_radius, 4);
CHECK_OFFSET(PF_SampPB, area, 8);
CHECK_OFFSET(PF_SampPB, src, 16);
CHECK_OFFSET(PF_SampPB, samp_behave, 24);
CHECK_OFFSET(PF_SampPB, allow_asynch, 28);
CHECK_OFFSET(PF_SampPB, motion_blur, 32);
CHECK_OFFSET(PF_SampPB, comp_mode, 36);
CHECK_OFFSET(PF_SampPB, mask0, 48);
CHECK_OFFSET(PF_SampPB, fcm_table, 56);
CHECK_OFFSET(PF_SampPB, fcd_table, 64);
CHECK_OFFSET(PF_SampPB, reserved, 72);

CHECK_SIZE(PF_CompositeMode, 12);
CHECK_OFFSET(PF_CompositeMode, xfer, 0);
CHECK_OFFSET(PF_CompositeMode, rand_seed, 4);
CHECK_OFFSET(PF_CompositeMode, opacity, 8);
CHECK_OFFSET(PF_CompositeMode, rgb_only, 9);
CHECK_OFFSET(PF_CompositeMode, opacitySu, 10);

CHECK_SIZE(PF_MaskWorld, 136);
CHECK_OFFSET(PF_MaskWorld, mask, 0);
CHECK_OFFSET(PF_MaskWorld, offset, 120);
CHECK_OFFSET(PF_MaskWorld, what_is_mask, 128);

CHECK_SIZE(PF_FloatMatrix, 72);
CHECK_OFFSET(PF_FloatMatrix, mat, 0);

CHECK_SIZE(PF_RationalScale, 8);
CHECK_OFFSET(PF_RationalScale, num, 0);
CHECK_OFFSET(PF_RationalScale, den, 4);

CHECK_SIZE(PF_SpecVersion, 4);
CHECK_OFFSET(PF_SpecVersion, major, 0);
CHECK_OFFSET(PF_SpecVersion, minor, 2);

CHECK_SIZE(PF_FixedPoint, 8);
CHECK_OFFSET(PF_FixedPoint, x, 0);
CHECK_OFFSET(PF_FixedPoint, y, 4);

CHECK_SIZE(PF_Pixel, 4);
CHECK_OFFSET(PF_Pixel, alpha, 0);
CHECK_OFFSET(PF_Pixel, red, 1);
CHECK_OFFSET(PF_Pixel, green, 2);
CHECK_OFFSET(PF_Pixel, blue, 3);

CHECK_SIZE(PF_LRect, 16);
CHECK_OFFSET(PF_LRect, left, 0);
CHECK_OFFSET(PF_LRect, top, 4);
CHECK_OFFSET(PF_LRect, right, 8);
CHECK_OFFSET(PF_LRect, bottom, 12);

CHECK_SIZE(PF_Point, 8);
CHECK_OFFSET(PF_Point, h, 0);
CHECK_OFFSET(PF_Point, v, 4);

CHECK_SIZE(PF_SoundFormatInfo, 16);
CHECK_OFFSET(PF_SoundFormatInfo, rateF, 0);
CHECK_OFFSET(PF_SoundFormatInfo, num_channels, 8);
CHECK_OFFSET(PF_SoundFormatInfo, format, 10);
CHECK_OFFSET(PF_SoundFormatInfo, sample_size, 12);

CHECK_SIZE(PF_SoundWorld, 32);
CHECK_OFFSET(PF_SoundWorld, fi, 0);
CHECK_OFFSET(PF_SoundWorld, num_samples, 16);
CHECK_OFFSET(PF_SoundWorld, dataP, 24);

CHECK_SIZE(PF_InteractCallbacks, 176);
CHECK_OFFSET(PF_InteractCallbacks, checkout_param, 0);
CHECK_OFFSET(PF_InteractCallbacks, checkin_param, 8);
CHECK_OFFSET(PF_InteractCallbacks, add_param, 16);
CHECK_OFFSET(PF_InteractCallbacks, abort, 24);
CHECK_OFFSET(PF_InteractCallbacks, progress, 32);
CHECK_OFFSET(PF_InteractCallbacks, register_ui, 40);
CHECK_OFFSET(PF_InteractCallbacks, checkout_layer_audio, 48);
CHECK_OFFSET(PF_InteractCallbacks, checkin_layer_audio, 56);
CHECK_OFFSET(PF_InteractCallbacks, get_audio_data, 64);
CHECK_OFFSET(PF_InteractCallbacks, reserved_str, 72);
CHECK_OFFSET(PF_InteractCallbacks, reserved, 96);

CHECK_SIZE(PF_ANSICallbacks, 160);
CHECK_OFFSET(PF_ANSICallbacks, atan, 0);
CHECK_OFFSET(PF_ANSICallbacks, atan2, 8);
CHECK_OFFSET(PF_ANSICallbacks, ceil, 16);
CHECK_OFFSET(PF_ANSICallbacks, cos, 24);
CHECK_OFFSET(PF_ANSICallbacks, exp, 32);
CHECK_OFFSET(PF_ANSICallbacks, fabs, 40);
CHECK_OFFSET(PF_ANSICallbacks, floor, 48);
CHECK_OFFSET(PF_ANSICallbacks, fmod, 56);
CHECK_OFFSET(PF_ANSICallbacks, hypot, 64);
CHECK_OFFSET(PF_ANSICallbacks, log, 72);
CHECK_OFFSET(PF_ANSICallbacks, log10, 80);
CHECK_OFFSET(PF_ANSICallbacks, pow, 88);
CHECK_OFFSET(PF_ANSICallbacks, sin, 96);
CHECK_OFFSET(PF_ANSICallbacks, sqrt, 104);
CHECK_OFFSET(PF_ANSICallbacks, tan, 112);
CHECK_OFFSET(PF_ANSICallbacks, sprintf, 120);
CHECK_OFFSET(PF_ANSICallbacks, strcpy, 128);
CHECK_OFFSET(PF_ANSICallbacks, asin, 136);
CHECK_OFFSET(PF_ANSICallbacks, acos, 144);
CHECK_OFFSET(PF_ANSICallbacks, unused, 152);

CHECK_SIZE(PF_ColorCallbacks, 64);
CHECK_OFFSET(PF_ColorCallbacks, fn, 0);

CHECK_SIZE(PF_UtilCallbacks, 552);
CHECK_OFFSET(PF_UtilCallbacks, begin_sampling, 0);
CHECK_OFFSET(PF_UtilCallbacks, subpixel_sample, 8);
CHECK_OFFSET(PF_UtilCallbacks, area_sample, 16);
CHECK_OFFSET(PF_UtilCallbacks, get_batch_func_is_deprecated, 24);
CHECK_OFFSET(PF_UtilCallbacks, end_sampling, 32);
CHECK_OFFSET(PF_UtilCallbacks, composite_rect, 40);
CHECK_OFFSET(PF_UtilCallbacks, blend, 48);
CHECK_OFFSET(PF_UtilCallbacks, convolve, 56);
CHECK_OFFSET(PF_UtilCallbacks, copy, 64);
CHECK_OFFSET(PF_UtilCallbacks, fill, 72);
CHECK_OFFSET(PF_UtilCallbacks, gaussian_kernel, 80);
CHECK_OFFSET(PF_UtilCallbacks, iterate, 88);
CHECK_OFFSET(PF_UtilCallbacks, premultiply, 96);
CHECK_OFFSET(PF_UtilCallbacks, premultiply_color, 104);
CHECK_OFFSET(PF_UtilCallbacks, new_world, 112);
CHECK_OFFSET(PF_UtilCallbacks, dispose_world, 120);
CHECK_OFFSET(PF_UtilCallbacks, iterate_origin, 128);
CHECK_OFFSET(PF_UtilCallbacks, iterate_lut, 136);
CHECK_OFFSET(PF_UtilCallbacks, transfer_rect, 144);
CHECK_OFFSET(PF_UtilCallbacks, transform_world, 152);
CHECK_OFFSET(PF_UtilCallbacks, host_new_handle, 160);
CHECK_OFFSET(PF_UtilCallbacks, host_lock_handle, 168);
CHECK_OFFSET(PF_UtilCallbacks, host_unlock_handle, 176);
CHECK_OFFSET(PF_UtilCallbacks, host_dispose_handle, 184);
CHECK_OFFSET(PF_UtilCallbacks, get_callback_addr, 192);
CHECK_OFFSET(PF_UtilCallbacks, app, 200);
CHECK_OFFSET(PF_UtilCallbacks, ansi, 208);
CHECK_OFFSET(PF_UtilCallbacks, colorCB, 368);
CHECK_OFFSET(PF_UtilCallbacks, get_platform_data, 432);
CHECK_OFFSET(PF_UtilCallbacks, host_get_handle_size, 440);
CHECK_OFFSET(PF_UtilCallbacks, iterate_origin_non_clip_src, 448);
CHECK_OFFSET(PF_UtilCallbacks, iterate_generic, 456);
CHECK_OFFSET(PF_UtilCallbacks, host_resize_handle, 464);
CHECK_OFFSET(PF_UtilCallbacks, subpixel_sample16, 472);
CHECK_OFFSET(PF_UtilCallbacks, area_sample16, 480);
CHECK_OFFSET(PF_UtilCallbacks, fill16, 488);
CHECK_OFFSET(PF_UtilCallbacks, premultiply_color16, 496);
CHECK_OFFSET(PF_UtilCallbacks, iterate16, 504);
CHECK_OFFSET(PF_UtilCallbacks, iterate_origin16, 512);
CHECK_OFFSET(PF_UtilCallbacks, iterate_origin_non_clip_src16, 520);
CHECK_OFFSET(PF_UtilCallbacks, get_pixel_data8, 528);
CHECK_OFFSET(PF_UtilCallbacks, get_pixel_data16, 536);
CHECK_OFFSET(PF_UtilCallbacks, reserved, 544);

CHECK_SIZE(PF_ParamDefUnion, 120);
CHECK_SIZE(void*, 8);
CHECK_SIZE(PF_EntryPoint, 8);

#undef CHECK_SIZE
#undef CHECK_OFFSET
// NOLINTEND(cppcoreguidelines-macro-usage)
