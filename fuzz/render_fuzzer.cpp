// Whole renders: any parameter values, any frame, hosts that refuse calls or leave callbacks out.

#include "fuzz/frame_orders.hpp"
#include "fuzz/require.hpp"

#include <vector>

namespace
{
PF_Err render(const std::uint8_t* data, std::size_t size, std::uint8_t filling, std::vector<std::uint8_t>* picture)
{
    fuzz::byte_reader bytes(data, size);
    fuzz::fuzz_host host;
    fuzz::read_orders(bytes, host);
    fuzz::keep_affordable(host);
    host.filling = filling;
    const PF_Err err = host.render();
    if (host.refuse_every == 0 && err == PF_Err_NONE)
        *picture = host.picture();
    return err;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::uint8_t> picture;
    const PF_Err err = render(data, size, 0xA5, &picture);

    // Again now and then, over other leftovers in memory: the picture may not depend on them.
    if (size % 8 == 0 && !picture.empty())
    {
        std::vector<std::uint8_t> again;
        fuzz::require(render(data, size, 0x3C, &again) == err, "a frame is answered the same again");
        fuzz::require(picture == again, "a frame is the same again, whatever lay in memory");
    }
    return 0;
}
