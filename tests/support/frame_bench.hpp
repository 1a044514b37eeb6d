#pragma once
// A frame record on its own, without a render around it: for tests of what reads it.

#include "effect/model/frame_data.hpp"
#include "effect/model/frame_setup.hpp"
#include "effect/model/matrix.hpp"
#include "tests/support/effect_fixture.hpp"

class frame_bench
{
public:
    explicit frame_bench(A_long width = 200, A_long height = 200, std::size_t pool_bytes = 1 << 20)
        : host(width, height), memory(pool_bytes)
    {
        set_up();
    }

    // Converts the host's parameters as they are now; layoutMatrix becomes the identity.
    void set_up()
    {
        set_up_frame(frame, &memory.pool, &host.in_data, &host.out_data, host.params(), &host.output);
        AEG_SetIdentityMatrix(&frame.rotationMatrix);
        AEG_SetIdentityMatrix(&frame.layoutMatrix);
    }

    // A pool without room from here on.
    void starve() { memory.pool.remaining = 0; }

    effect_fixture host;
    pool_block memory;
    frame_data frame;
};
