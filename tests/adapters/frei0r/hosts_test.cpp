// Real programs with the plug-in, frame by frame against what the command line tool draws. Every command stands in
// docs/hosts.md.
#include "tests/media/temporary_folder.hpp"

#include <cstdlib>

using media_test::temporary_folder;

namespace
{
class frei0r_hosts : public temporary_folder
{
protected:
    frei0r_hosts()
    {
        setenv("FREI0R_PATH", FREI0R_FOLDER, 1);
        setenv("MLT_FREI0R_PLUGIN_PATH", FREI0R_FOLDER, 1);
        setenv("GST_REGISTRY", at("registry").c_str(), 1);
    }

    // Runs a line of shell in the test's folder, where `filigrane` is the tool. On a busy machine melt (7.12) now
    // and then waits for ever for a consumer that it never started, with plug-ins and without; it is given another
    // try.
    void run(const std::string& line) const
    {
        const std::string names =
            "filigrane() { " TOOL " \"$@\"; }\n"
            "melt() { for limit in 6 6 12 24 48 96; do timeout $limit melt \"$@\" && return; done; false; }\n";
        media_test::put(at("line.sh"), "cd " + at("").string() + "\n" + names + line + "\n");
        const std::string command =
            "bash " + at("line.sh").string() + " >" + at("log").string() + " 2>&1 </dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0) << line << "\n" << media_test::contents(at("log"));
    }

    std::vector<media::picture> frames(const std::string& name) const
    {
        media::reader in(at(name));
        std::vector<media::picture> all;
        for (int i = 0; i < count; ++i)
            all.push_back(media_test::read_one(in, i));
        return all;
    }

    // Frames of bytes red, green, blue, alpha one after the other.
    std::vector<media::picture> raw_frames(const std::string& name, int width, int height) const
    {
        const std::string bytes = media_test::contents(at(name));
        const std::size_t each = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
        EXPECT_EQ(bytes.size(), each * count);
        std::vector<media::picture> all;
        for (std::size_t begin = 0; begin + each <= bytes.size(); begin += each)
        {
            all.emplace_back(width, height);
            for (std::size_t i = 0; i < each; ++i)
                all.back().view().argb[i / 4 * 4 + (i + 1) % 4] = static_cast<std::uint8_t>(bytes[begin + i]);
        }
        return all;
    }

    void expect_same(const std::vector<media::picture>& got, const std::string& reference) const
    {
        const std::vector<media::picture> wanted = frames(reference);
        ASSERT_EQ(got.size(), wanted.size());
        for (std::size_t i = 0; i < wanted.size(); ++i)
        {
            ASSERT_EQ(got[i].width(), wanted[i].width());
            EXPECT_TRUE(got[i].bytes() == wanted[i].bytes()) << "frame " << i << " differs";
        }
    }

    // The clip under the effect, a preset for it, and what the tool makes of both.
    void make_reference() const
    {
        run("ffmpeg -f lavfi -i testsrc2=size=640x360:rate=25,format=argb -frames:v 4 -c:v qtrle in.mov");
        media_test::put(at("over.json"), R"({"Rows": 12, "Normal Color": "#ff8800", "Turbulance": 5.0,
            "Composite On Original": true})");
        run("filigrane render in.mov -o reference.mov --codec animation --preset over.json");
    }

    static constexpr int count = 4;
};
} // namespace

TEST_F(frei0r_hosts, ffmpeg_draws_over_a_clip)
{
    make_reference();
    run("ffmpeg -i in.mov -vf format=rgba,frei0r=filigrane:over.json -c:v qtrle -pix_fmt argb out.mov");
    expect_same(frames("out.mov"), "reference.mov");
}

TEST_F(frei0r_hosts, ffmpeg_takes_parameters_in_their_order)
{
    run("ffmpeg -f lavfi -i color=black@0:size=640x360:rate=25,format=rgba -frames:v 4 "
        "-vf 'frei0r=filigrane:|25|auto|0.05|0.1|n|0.5|0.5|0.515|0.12' -c:v qtrle -pix_fmt argb out.mov");
    run("filigrane render -o reference.mov --codec animation --size 640x360 --frames 0-3 --set Height=100 "
        "--set 'Make Size Match Layer Size=off' --set Rotation=30 --set Rows=12");
    expect_same(frames("out.mov"), "reference.mov");
}

TEST_F(frei0r_hosts, ffmpeg_generates)
{
    run("ffmpeg -f lavfi -i frei0r_src=640x360:25:filigrane_generator:neon-ripples -frames:v 4 -c:v qtrle "
        "-pix_fmt argb out.mov");
    run("filigrane render -o reference.mov --codec animation --size 640x360 --frames 0-3 --preset neon-ripples");
    expect_same(frames("out.mov"), "reference.mov");
}

// Rows of another length than the filter's are copied, and the time is lost.
TEST_F(frei0r_hosts, ffmpeg_may_forget_the_time)
{
    run("ffmpeg -f lavfi -i color=black@0:size=1280x360:rate=25,format=rgba,crop=640:360 -frames:v 4 "
        "-vf frei0r=filigrane:neon-ripples -c:v qtrle -pix_fmt argb out.mov");
    run("filigrane render -o reference.mov --codec animation --size 640x360 --frames 0-3 --preset neon-ripples");
    expect_same(frames("out.mov"), "reference.mov");
}

TEST_F(frei0r_hosts, ffmpeg_is_told_of_widths_that_it_pads)
{
    const std::string draw =
        "ffmpeg -f lavfi -i frei0r_src=size=WIDTHx64:framerate=25:filter_name=filigrane_generator "
        "-frames:v 1 -f null - 2>words; grep -c 'filigrane: FFmpeg may pad' words | grep -x ";
    const auto at_width = [&draw](const std::string& width)
    { return std::string(draw).replace(draw.find("WIDTH"), 5, width); };
    run(at_width("650") + "1");
    run(at_width("656") + "0");
}

// Two frames later: only the time can tell.
TEST_F(frei0r_hosts, ffmpeg_keeps_the_time_of_a_copy)
{
    run("ffmpeg -f lavfi -i color=black@0:size=1280x360:rate=25,format=rgba -frames:v 4 -vf trim=start_frame=2,"
        "crop=640:360,copy,frei0r=filigrane:neon-ripples,setpts=PTS-STARTPTS -c:v qtrle -pix_fmt argb out.mov");
    run("filigrane render -o reference.mov --codec animation --size 640x360 --frames 2-5 --preset neon-ripples");
    expect_same(frames("out.mov"), "reference.mov");
}

TEST_F(frei0r_hosts, melt_draws_over_a_clip)
{
    make_reference();
    const std::string draw =
        "melt in.mov -attach frei0r.filigrane Rows=0.12 'Normal Color=#ff8800' Turbulance=0.714286 "
        "'Composite On Original=1' -consumer avformat:out.mov vcodec=qtrle pix_fmt=argb "
        "mlt_image_format=rgba an=1";
    run(draw);
    expect_same(frames("out.mov"), "reference.mov");
    run(draw + " real_time=-4");
    expect_same(frames("out.mov"), "reference.mov");
}

TEST_F(frei0r_hosts, melt_moves_between_key_frames)
{
    make_reference();
    run("melt in.mov -attach frei0r.filigrane 'Rotation=0=0.5;3=0.515' 'Blend Amount=0=0;3=0.9' -consumer "
        "avformat:out.mov vcodec=qtrle pix_fmt=argb mlt_image_format=rgba an=1 real_time=-4");
    media_test::put(at("keys.json"), R"({"Rotation": {"keys": [[0, 0], [3, 30]]},
        "Blend Amount": {"keys": [[0, "0%"], [3, "90%"]]}})");
    run("filigrane render in.mov -o keys.mov --codec animation --preset keys.json");
    expect_same(frames("out.mov"), "keys.mov");
}

TEST_F(frei0r_hosts, melt_generates_and_holds_several)
{
    run("melt -profile square_ntsc frei0r.filigrane_generator Look=neon-ripples 'Frame Rate=30000/1001' out=3 "
        "-attach "
        "frei0r.filigrane Rows=0.12 'Composite On Original=1' 'Frame Rate=29.97' -consumer avformat:out.mov "
        "vcodec=qtrle pix_fmt=argb mlt_image_format=rgba an=1");
    run("filigrane render -o first.mov --codec animation --size 640x480 --fps 29.97 --frames 0-3 --preset "
        "neon-ripples");
    run("filigrane render first.mov -o reference.mov --codec animation --set Rows=12 --set 'Composite On "
        "Original=on'");
    expect_same(frames("out.mov"), "reference.mov");
}

TEST_F(frei0r_hosts, gstreamer_draws_over_pictures)
{
    make_reference();
    run("ffmpeg -i in.mov -f rawvideo -pix_fmt rgba in.rgba");
    run("gst-launch-1.0 filesrc location=in.rgba ! rawvideoparse format=rgba width=640 height=360 framerate=25/1 "
        "! "
        "frei0r-filter-filigrane look=over.json ! filesink location=out.rgba");
    expect_same(raw_frames("out.rgba", 640, 360), "reference.mov");
}

TEST_F(frei0r_hosts, gstreamer_generates_at_any_width)
{
    run("gst-launch-1.0 frei0r-src-filigrane-generator num-buffers=4 rows=0.12 ! "
        "video/x-raw,format=RGBA,width=641,height=363,framerate=25/1 ! filesink location=out.rgba");
    run("filigrane render -o reference.mov --codec animation --size 641x363 --frames 0-3 --set Rows=12");
    expect_same(raw_frames("out.rgba", 641, 363), "reference.mov");
}
