#include "command_line.hpp"

#include "usage_error.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>

namespace cli
{
namespace
{
constexpr const char* examples = R"(Examples:
  filigrane render -o lines.png
      one frame of 1920x1080 pixels with everything at its default
  filigrane render photo.jpg -o drawn.png --set "Composite On Original=on"
  filigrane render clip.mp4 -o drawn.mov --preset reeded-glass
      all frames, ProRes 4444 with transparency, sound included
  filigrane render -o loop.gif --size 480x270 --fps 25 --frames 0-49 --background checker
  filigrane render -o out_%04d.png --frames 100-199
      a file a frame: out_0100.png to out_0199.png
  filigrane params            what can be set, with ranges and defaults
  filigrane render --help     all options of a render)";

constexpr const char* render_notes = R"(INPUT and OUTPUT
  INPUT is a picture, numbered pictures (frame_%04d.png or frame_####.png) or a clip. Without one
  the layer is transparent. A picture repeats for every frame.
  OUTPUT's name decides what is written: .png .tif .webp (with transparency), .jpg .bmp (without),
  a pattern like out_%04d.png for a file a frame, .mp4 (H.264), .mov (ProRes 4444 with transparency,
  or see --codec), .gif. Sound is carried over where the container can hold it.
PARAMETERS
  NAME is the parameter's name (any case), its key or its number as "filigrane params" lists them:
  --set "Rows=12"  --set normal-color=#ff8800  --set 5=50%
  Numbers are plain (12, 0.75), percent (50%), degrees (45deg); points are pixels of the
  full-size layer (960,540) or percent (50%,50%); switches are on or off.
EXAMPLES
  filigrane render photo.jpg -o drawn.png --set "Composite On Original=on"
  filigrane render clip.mp4 -o drawn.mp4 --preset reeded-glass
  filigrane render -o preview.gif --downsample 4 --quality low --frames 0-24)";

constexpr char commands[] = "render, params, presets, about and inspect";

void add_plugin_option(CLI::App& app, command_line& line)
{
    app.add_option("--plugin", line.plugin,
                   "Effect file to use; its code is run (default: the Filigrane.so that came with this program)")
        ->type_name("FILE");
}

void add_render(CLI::App& app, command_line& line)
{
    CLI::App* render = app.add_subcommand("render", "Draw frames into a picture, pictures or a clip");
    render_request& request = line.render;
    render->add_option("INPUT", request.input, "Picture, pattern or clip under the effect (default: none)")
        ->type_name("");
    render->add_option("-o,--output", request.output, "File to write, or a pattern like out_%04d.png")
        ->required()
        ->type_name("FILE");
    render->add_option("--size", request.size, "Width x height in pixels, without INPUT (default: 1920x1080)")
        ->type_name("WxH");
    render
        ->add_option("--fps", request.rate,
                     "Frames per second: 25, 29.97, 30000/1001 (default: the clip's own, otherwise 25)")
        ->type_name("RATE");
    render
        ->add_option("--frames", request.frames,
                     "One frame or a range, counted from 0 (default: all of a clip; otherwise 0 for a picture, "
                     "0-99 for a clip)")
        ->type_name("A-B");
    render->add_option("--set", request.sets, "Set a parameter; may be repeated, the last one wins")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    render->add_option("--preset", request.preset, "Look to begin with: a name of \"filigrane presets\" or a file")
        ->type_name("NAME");
    render->add_option("--quality", request.quality, "high or low (default: high)")
        ->type_name("WHICH")
        ->check(CLI::IsMember({"high", "low"}));
    render->add_option("--downsample", request.downsample, "Draw at 1/N of the size, N from 1 to 4 (default: 1)")
        ->type_name("N")
        ->check(CLI::Range(1, 4));
    render->add_option("--jobs", request.jobs, "Frames drawn at once (default: one for each hardware thread)")
        ->type_name("N")
        ->check(CLI::Range(1, 256));
    render
        ->add_option("--background", request.background,
                     "transparent, checker or #rrggbb (default: transparent where the output can hold it, "
                     "otherwise #000000)")
        ->type_name("WHAT");
    render->add_option("--codec", request.codec, "For .mov: prores4444, animation or h264 (default: prores4444)")
        ->type_name("NAME");
    add_plugin_option(*render, line);
    render->add_flag("--force", request.force, "Overwrite what is there");
    render->add_flag("--resume", request.resume,
                     "Of numbered pictures, draw those that are not there; several runs may share the work");
    render->add_flag("--quiet", request.quiet, "Say nothing but errors");
    render->add_flag("--timing", request.timing, "Print milliseconds per frame, effect and host apart (one job)");
    render->footer(render_notes);
    render->callback([&line] { line.chosen = command::render; });
}

void add_questions(CLI::App& app, command_line& line)
{
    CLI::App* params = app.add_subcommand("params", "List the parameters: ranges, defaults, what can be animated");
    params->add_flag("--json", line.json, "As JSON");
    add_plugin_option(*params, line);
    params->callback([&line] { line.chosen = command::params; });

    CLI::App* presets = app.add_subcommand("presets", "List the looks, or show one");
    presets->callback([&line] { line.chosen = command::list_presets; });
    CLI::App* show = presets->add_subcommand("show", "Show what a look sets");
    show->add_option("NAME", line.preset, "A look's name, or a file")->required()->type_name("");
    presets->require_subcommand(0, 1);

    CLI::App* about = app.add_subcommand("about", "Print the effect's own about text, version and flags");
    add_plugin_option(*about, line);
    about->callback([&line] { line.chosen = command::about; });

    CLI::App* inspect =
        app.add_subcommand("inspect", "Print what any effect file says of itself, and its parameters");
    inspect->add_option("PLUGIN", line.plugin, "Effect file; its code is run")->required()->type_name("");
    inspect->callback([&line] { line.chosen = command::inspect; });
}

bool is_command(const CLI::App& app, const std::string& word)
{
    const auto all = app.get_subcommands([](const CLI::App*) { return true; });
    return std::any_of(all.begin(), all.end(), [&](const CLI::App* known) { return known->check_name(word); });
}
} // namespace

command_line read_command_line(int argc, char** argv)
{
    command_line line;
    CLI::App app{"Draws a field of hand-drawn lines over pictures and clips.", "filigrane"};
    app.set_version_flag("--version", "filigrane " FILIGRANE_VERSION, "Print the version and exit");
    app.require_subcommand(1);
    app.get_formatter()->column_width(30);
    add_render(app, line);
    add_questions(app, line);
    app.footer(examples); // last: commands take over the footer that they find
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError& complaint)
    {
        line.chosen = command::none;
        if (complaint.get_exit_code() == 0)
        {
            app.exit(complaint, std::cout, std::cerr);
            return line;
        }
        line.status = exit_usage;
        std::string what = complaint.what();
        if (argc < 2)
            what = std::string("give a command: ") + commands;
        else if (argv[1][0] != '-' && !is_command(app, argv[1]))
            what = std::string("unknown command \"") + argv[1] + "\": there are " + commands;
        std::cerr << "filigrane: " << what << "; see filigrane --help\n";
        return line;
    }
    // The outer command's callback runs last.
    if (line.chosen == command::list_presets && !line.preset.empty())
        line.chosen = command::show_preset;
    return line;
}
} // namespace cli
