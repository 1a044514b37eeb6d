#pragma once
// The plug-in in the strict host, and the same frames from the host library without OpenFX between.

#include "tests/adapters/openfx/strict_host/strict_host.hpp"

#include "host/plugin.hpp"
#include "host/render.hpp"

#include <gtest/gtest.h>

namespace ofx
{
using strict::host_image;
using strict::image_manner;
using strict::plain_picture;

inline const std::string filter = "OfxImageEffectContextFilter";
inline const std::string general = "OfxImageEffectContextGeneral";
inline const std::string generator = "OfxImageEffectContextGenerator";

// A loaded plug-in with one instance. At its end all is let go in order, and nothing may have been done wrong.
class session
{
public:
    explicit session(const std::string& context = filter);
    ~session();
    session(const session&) = delete;
    session& operator=(const session&) = delete;

    strict::host host;
    strict::binary library;
    OfxPlugin& plugin;
    std::unique_ptr<OfxImageEffectStruct> descriptor;
    std::unique_ptr<OfxImageEffectStruct> instance;
    bool expect_clean = true;

    OfxParamStruct& param(const std::string& name);
    // Connects the source; a picture without pixels is none.
    void show(const plain_picture& source, const image_manner& manner = {});
    // Draws a frame of that size into an image of that manner, with the window and scale of `what`; an empty
    // window is the whole image.
    std::shared_ptr<host_image> draw(int width, int height, const image_manner& manner = {},
                                     strict::render_call what = {}, OfxStatus expected = kOfxStatOK);
};

// The effect's own file, loaded once for all tests.
const host::plugin& effect();
host::composition composition(int width, int height);
// A frame of the host library; an input without pixels is transparent black.
plain_picture reference(const host::composition& comp, const host::param_tracks& values, int frame,
                        const plain_picture* input = nullptr);
host::param_tracks defaults();
// Sets a parameter by its label, as the command line does.
void set(host::param_tracks& values, const std::string& label, const std::string& value);

// Lines over the source, in values that the two sides are given in their own ways.
void draw_over_source(session& s);
host::param_tracks drawn_over_source();

// Pixels of all kinds: smooth, noisy, transparent.
plain_picture sample_picture(int width, int height);
// The first differing pixel in words; empty where they are equal.
std::string difference(const plain_picture& expected, const plain_picture& got);
} // namespace ofx
