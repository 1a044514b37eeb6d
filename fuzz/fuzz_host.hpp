#pragma once
// A host for fuzzers: cheap, strict and short of memory. It serves every callback the effect calls, refuses calls
// by a pattern, refuses worlds and handles past its memory, and holds what reaches it against what a host may
// expect. Transfers and transforms lay visible pixels over the destination, no more. Callbacks without a reference
// find it through a static, so only one may live at a time.

#include "effect/pf/effect_api.hpp"
#include "effect/shell/param_ids.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" PF_Err PluginEntry(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                              PF_LayerDef* output, void* extra);

namespace fuzz
{
class fuzz_host
{
public:
    static constexpr std::uint64_t kMemory = std::uint64_t{256} << 20; // for all worlds and handles together
    static constexpr PF_Err kRefused = 1000;

    // Frame 0 of a layer of 64x48 at high quality and full resolution; parameters at their defaults.
    fuzz_host();
    ~fuzz_host();
    fuzz_host(const fuzz_host&) = delete;
    fuzz_host& operator=(const fuzz_host&) = delete;

    // The layer as it will be made by render(): 1 to 512 pixels a side.
    void set_layer(A_long width, A_long height);
    A_long layer_width() const { return layer_width_; }
    A_long layer_height() const { return layer_height_; }
    void set_point(int id, A_long x_fixed, A_long y_fixed);

    // Makes input and output, sends the render command, and checks what it left behind: answer, padding, input,
    // worlds and handles.
    PF_Err render();
    PF_LayerDef& output() { return output_; }
    std::vector<std::uint8_t> picture() const; // the output's bytes, padding included

    PF_ParamDef& param(int id) { return defs_[static_cast<std::size_t>(id)]; }
    PF_ParamDef** params() { return pointers_.data(); }

    PF_InData in_data{};
    PF_OutData out_data{};
    PF_UtilCallbacks utils{};
    PF_Rect output_extent{};
    bool output_extent_given = false; // the whole output otherwise
    A_long row_padding = 0;           // bytes at the end of every row, a multiple of 4
    std::uint32_t refuse_first = 0;   // counted calls from this one on ...
    std::uint32_t refuse_every = 0;   // ... and every so many are refused; 0: none
    bool other_value_later = false;   // check-outs after time 0 give `later_value`
    double later_value = 0.0;
    std::uint8_t filling = 0xA5; // what handles hold at first

private:
    friend struct fuzz_callbacks;
    static constexpr std::uint8_t kPadding = 0x5A;

    bool refuses();
    bool take(std::uint64_t bytes);
    bool make_world(A_long width, A_long height, PF_LayerDef* world);
    void fill_padding(const PF_LayerDef& world) const;
    void give_back_world(PF_LayerDef* world);

    std::array<PF_ParamDef, kParamCount> defs_;
    std::array<PF_ParamDef*, kParamCount> pointers_;
    A_long layer_width_ = 0;
    A_long layer_height_ = 0;
    PF_LayerDef output_{};
    std::vector<std::uint8_t> input_before_;
    std::vector<void*> handles_;
    std::uint64_t taken_ = 0;
    std::uint32_t counted_ = 0;
    int worlds_alive_ = 0;
};
} // namespace fuzz
