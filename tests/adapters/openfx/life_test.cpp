// The library's life: hosts load it twice, unload it early, keep its texts, and have it on several threads.

#include "tests/adapters/openfx/ofx_session.hpp"

#include <cstdlib>
#include <thread>

namespace
{
using namespace ofx;

TEST(openfx_life, goes_through_load_and_unload_any_number_of_times)
{
    strict::host host;
    const strict::binary library(FILIGRANE_OFX_FILE);
    OfxPlugin& plugin = *library.plugin(0);
    EXPECT_EQ(host.load(plugin), kOfxStatOK);
    auto first = host.describe(plugin, filter);
    EXPECT_EQ(host.act(plugin, "OfxActionUnload"), kOfxStatOK);
    EXPECT_EQ(host.load(plugin), kOfxStatOK);
    EXPECT_EQ(host.act(plugin, "OfxActionLoad"), kOfxStatOK); // unpaired
    OfxStatus described = kOfxStatFailed;
    auto second = host.describe(plugin, filter, &described);
    EXPECT_EQ(described, kOfxStatOK);
    EXPECT_EQ(first->params.params.size(), second->params.params.size());
    auto instance = host.create(plugin, *second, filter);
    EXPECT_EQ(host.act(plugin, "OfxActionUnload"), kOfxStatOK);
    EXPECT_EQ(host.act(plugin, "OfxActionUnload"), kOfxStatOK);

    // Unloading takes nothing away that a render may still use.
    image_manner manner;
    auto image = std::make_shared<host_image>(30, 20, manner);
    strict::connect(
        *instance, "Output", [image](double) { return image; }, manner);
    EXPECT_EQ(host.render(plugin, *instance, {.window = {0, 0, 30, 20}}), kOfxStatOK);
    EXPECT_EQ(difference(reference(composition(30, 20), defaults(), 0), image->read()), "");
    EXPECT_EQ(host.destroy(plugin, std::move(instance)), kOfxStatOK);
    for (const auto& effect : {std::ref(first), std::ref(second)})
        strict::host::forget(*effect.get());
    EXPECT_EQ(host.complaints(), std::vector<std::string>());
}

TEST(openfx_life, keeps_the_texts_that_it_gave)
{
    strict::host host;
    const strict::binary library(FILIGRANE_OFX_FILE);
    OfxPlugin& plugin = *library.plugin(0);
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_EQ(host.load(plugin), kOfxStatOK);
        strict::host::forget(*host.describe(plugin, general));
        EXPECT_EQ(host.act(plugin, "OfxActionUnload"), kOfxStatOK);
    }
    const auto& given = strict::the_watch().texts_given;
    EXPECT_GT(given.size(), 400u);
    for (const auto& [text, said] : given)
        ASSERT_EQ(text, said);
    EXPECT_EQ(host.complaints(), std::vector<std::string>());
}

TEST(openfx_life, refuses_to_load_without_what_it_needs)
{
    for (const char* needed : {"OfxPropertySuite", "OfxImageEffectSuite", "OfxParameterSuite"})
    {
        strict::host host;
        const strict::binary library(FILIGRANE_OFX_FILE);
        host.absent_suites = {needed};
        EXPECT_EQ(host.load(*library.plugin(0)), kOfxStatFailed) << needed;
        EXPECT_EQ(host.act(*library.plugin(0), "OfxActionDescribe"), kOfxStatFailed);
        host.absent_suites.clear();
        EXPECT_EQ(host.load(*library.plugin(0)), kOfxStatOK);
        EXPECT_EQ(host.complaints(), std::vector<std::string>());
    }
    strict::host host;
    const strict::binary library(FILIGRANE_OFX_FILE);
    EXPECT_EQ(host.act(*library.plugin(0), "OfxActionLoad"), kOfxStatFailed); // no host was set
    library.plugin(0)->setHost(nullptr);
    EXPECT_EQ(host.act(*library.plugin(0), "OfxActionLoad"), kOfxStatFailed);
    EXPECT_EQ(library.plugin(0)->mainEntry(nullptr, nullptr, nullptr, nullptr), kOfxStatFailed);
}

TEST(openfx_life, fails_to_load_without_the_effects_file_and_tries_anew)
{
    strict::host host;
    const strict::binary library(FILIGRANE_OFX_FILE);
    setenv("FILIGRANE_PLUGIN", "/nowhere/Filigrane.so", 1);
    EXPECT_EQ(host.load(*library.plugin(0)), kOfxStatFailed);
    unsetenv("FILIGRANE_PLUGIN");
    EXPECT_EQ(host.load(*library.plugin(0)), kOfxStatOK);
    EXPECT_EQ(host.complaints(), std::vector<std::string>());
}

TEST(openfx_life, does_without_a_message_suite)
{
    session s;
    s.host.absent_suites = {"OfxMessageSuite"};
    EXPECT_EQ(s.host.load(s.plugin), kOfxStatOK);
    s.draw(200000, 1, {}, {}, kOfxStatFailed); // larger than any layer
    s.host.absent_suites.clear();
    EXPECT_EQ(s.host.load(s.plugin), kOfxStatOK);
    s.draw(200000, 1, {}, {}, kOfxStatFailed);
    ASSERT_EQ(strict::the_watch().messages.size(), 1u);
    EXPECT_NE(strict::the_watch().messages[0].find("200000"), std::string::npos);
}

// Every frame with an instance of its own, the load pair and the descriptions before each, several at once and out
// of order.
TEST(openfx_life, draws_on_several_threads_with_an_instance_for_each_frame)
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

TEST(openfx_life, draws_one_instance_on_several_threads)
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
