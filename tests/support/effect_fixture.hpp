#pragma once
// A host of one frame, made for the effect's unit tests and for nothing else: it serves every callback the effect
// calls, writes each call down as one line of text, and fails or throws where a test asks it to. It draws as
// little as possible: a transfer lays the visible source pixels over the destination, a transform only writes
// itself down. The maths table is the system library's. Callbacks without a reference find the fixture through a
// static, so only one may live at a time.

#include "effect/pf/effect_api.hpp"
#include "effect/shell/mem_pool.hpp"
#include "effect/shell/param_ids.hpp"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

extern "C" PF_Err PluginEntry(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                              PF_LayerDef* output, void* extra);

class effect_fixture
{
public:
    // A layer of that size at frame 0, high quality, full resolution; parameters as the effect registers them,
    // points at their default percentages of the layer.
    explicit effect_fixture(A_long width = 64, A_long height = 48);
    ~effect_fixture();
    effect_fixture(const effect_fixture&) = delete;
    effect_fixture& operator=(const effect_fixture&) = delete;

    void set(int id, A_long value) { defs[at(id)].u.sd.value = value; }
    void set_percent(int id, double percent); // rounded up, so that a whole percentage stays one when truncated
    void set_number(int id, double value) { defs[at(id)].u.fs_d.value = value; }
    void set_angle(int id, double degrees);
    void set_point(int id, double x, double y); // pixels, as the host delivers them
    void set_color(int id, PF_Pixel color) { defs[at(id)].u.cd.value = color; }

    PF_Err command(PF_Cmd cmd);
    PF_Err render() { return command(PF_Cmd_RENDER); }
    PF_ParamDef** params() { return pointers_.data(); }
    PF_LayerDef& input() { return defs[0].u.ld; }
    static PF_Pixel* pixel(const PF_LayerDef& world, A_long x, A_long y);

    // The calls whose line starts with one of these words, in order.
    std::vector<std::string> calls(std::initializer_list<std::string_view> words) const;

    PF_InData in_data{};
    PF_OutData out_data{};
    PF_UtilCallbacks utils{};
    PF_LayerDef output{};
    std::vector<PF_ParamDef> defs;
    std::vector<PF_ParamDef> added; // the records as registered

    std::vector<std::string> log;
    bool recording = true;
    // Asked before each call, by its name: what is not 0 is the call's answer (a handle or an address is then
    // null), and it may throw.
    std::function<PF_Err(std::string_view)> on_call;
    // May change the value that is checked out at a time.
    std::function<void(PF_ParamIndex, A_long, PF_ParamDef&)> on_checkout;
    // Before a transfer's pixels are moved.
    std::function<void(const PF_Rect&)> on_transfer;
    int worlds_alive = 0;
    std::size_t handles_alive() const { return handles_.size(); }

private:
    friend struct fixture_callbacks;
    static std::size_t at(int id) { return static_cast<std::size_t>(id); }
    void note(const std::string& line);
    std::string name_of(const PF_LayerDef* world) const;
    PF_LayerDef make_world(A_long width, A_long height, int fill_byte);

    std::vector<PF_ParamDef*> pointers_;
    std::map<const void*, std::string> names_;
    std::vector<void*> handles_; // given back at the end, where the effect may not
    int worlds_made_ = 0;
};

// A pool over memory of its own, filled with a poison that nothing may rely on.
class pool_block
{
public:
    explicit pool_block(std::size_t bytes);
    mem_pool pool;

private:
    std::vector<std::max_align_t> memory_;
};
