#pragma once
// The top-level object of one render. Carved from the frame's pool.

#include "effect/model/ae_obj.hpp"
#include "effect/pf/effect_api.hpp"
#include "effect/shell/mem_pool.hpp"

#include <list>

class aeg;
class frame_data;
class sp_line;

class grid : public ae_obj
{
public:
    explicit grid(mem_pool* frame_pool) : pool(frame_pool) {}

    // Converts the frame's parameters, prepares the output and draws. Answers what the host said to making the
    // displacement's scratch world, or to its disposal; nothing else is an error here.
    PF_Err draw(PF_InData* in_data_, PF_OutData* out_data, PF_ParamDef** params, PF_LayerDef* output);

    // Lays out and draws the whole line field onto `target`. In the displacement pass the lines are a white matte.
    // Answers the host's error where a canvas world could not be made, else what it said to the final transform.
    PF_Err draw_curve(PF_LayerDef* target, unsigned char displacement_pass);

    mem_pool* pool;
    frame_data* frame = nullptr;
    PF_InData* in_data = nullptr;
    // The straight lines that rippled ones bend where they cross. Nodes are on the general heap and no destructor
    // runs at the end of a render, so the list is empty again whenever draw_curve returns. The lines are the
    // pool's.
    std::list<sp_line*> lines;
    aeg* context = nullptr;        // where lines are drawn; the pool's; null where it could not be had
    PF_LayerDef* target = nullptr; // what draw_curve was given
};
