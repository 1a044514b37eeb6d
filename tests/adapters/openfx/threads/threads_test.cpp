// Frames drawn on several threads at once: run by the thread sanitizer too.

#include "tests/adapters/openfx/ofx_session.hpp"

#include <thread>

namespace
{
using namespace ofx;

// Every frame with an instance of its own, the load pair and the descriptions before each, several at once and out
// of order.
TEST(openfx_threads, draws_on_several_threads_with_an_instance_for_each_frame)
{
    constexpr int threads = 4, frames = 24;
    std::vector<plain_picture> expected;
    host::param_tracks values = defaults();
    set(values, "Lines Have Ends", "on");
    for (int frame = 0; frame < frames; ++frame)
        expected.push_back(reference(composition(48, 36), values, frame));

    strict::host host;
    const strict::binary library(FILIGRANE_OFX_FILE);
    OfxPlugin& plugin = *library.plugin(0);
    std::vector<std::string> wrong(threads);
    const auto work = [&](int own)
    {
        for (int i = own; i < frames; i += threads)
        {
            const int frame = (i * 7) % frames;
            if (host.load(plugin) != kOfxStatOK)
                wrong[static_cast<std::size_t>(own)] = "load";
            auto descriptor = host.describe(plugin, generator);
            auto instance = host.create(plugin, *descriptor, generator);
            instance->params.find("linesHaveEnds")->value[0] = 1;
            auto image = std::make_shared<host_image>(48, 36, image_manner{});
            strict::connect(*instance, "Output", [image](double) { return image; }, {});
            host.render(plugin, *instance, {.time = static_cast<double>(frame), .window = {0, 0, 48, 36}});
            host.destroy(plugin, std::move(instance));
            strict::host::forget(*descriptor);
            if (const std::string d = difference(expected[static_cast<std::size_t>(frame)], image->read());
                !d.empty())
                wrong[static_cast<std::size_t>(own)] = "frame " + std::to_string(frame) + ": " + d;
        }
    };
    std::vector<std::thread> running;
    for (int own = 0; own < threads; ++own)
        running.emplace_back(work, own);
    for (std::thread& each : running)
        each.join();
    EXPECT_EQ(wrong, std::vector<std::string>(threads));
    EXPECT_EQ(host.complaints(), std::vector<std::string>());
}

TEST(openfx_threads, draws_one_instance_on_several_threads)
{
    constexpr int threads = 4;
    session s(generator);
    std::vector<std::shared_ptr<host_image>> images;
    for (int frame = 0; frame < 16; ++frame)
        images.push_back(std::make_shared<host_image>(40, 30, image_manner{}));
    strict::connect(*s.instance, "Output", [&](double time) { return images[static_cast<std::size_t>(time)]; },
                    {});
    std::vector<std::thread> running;
    for (int own = 0; own < threads; ++own)
        running.emplace_back(
            [&s, own]
            {
                for (int frame = own; frame < 16; frame += threads)
                    s.host.render(s.plugin, *s.instance,
                                  {.time = static_cast<double>(frame), .window = {0, 0, 40, 30}});
            });
    for (std::thread& each : running)
        each.join();
    for (int frame = 0; frame < 16; ++frame)
        EXPECT_EQ(difference(reference(composition(40, 30), defaults(), frame),
                             images[static_cast<std::size_t>(frame)]->read()),
                  "");
}
} // namespace
