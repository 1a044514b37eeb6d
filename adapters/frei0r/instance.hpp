#pragma once
// One filter in a host's project: its size and its parameters. Renders depend on nothing else, so that hosts may
// hold several, and draw frames in any order.

#include "adapters/frei0r/host_time.hpp"
#include "adapters/frei0r/param_table.hpp"
#include "adapters/frei0r/session.hpp"

#include "host/parameters.hpp"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace frei0r
{
class instance
{
public:
    // `effect` may be null: then pictures pass as they are. `of_host` is what this host's time counts.
    instance(std::shared_ptr<const adapter::loaded_effect> effect, const std::vector<param_row>& rows, int width,
             int height, time_unit of_host);

    // Values as frei0r passes them, see frei0r.h: doubles, three floats, or a pointer to a text, which is copied.
    // What is no number changes nothing; what lies outside 0..1 is cut. A text that means nothing is named on
    // standard error, and the parameter's default taken. Indices that no parameter has are passed over.
    void set(int index, const void* value);
    void get(int index, void* value) const;

    // Draws a picture of bytes red, green, blue, alpha without gaps; `input` may be null, for a transparent one,
    // or the output's memory. Whatever goes wrong, the input is handed on, and said once. May run on several
    // threads, but not beside set(): a host that does so is told once that slices of a frame are no frames.
    void update(double time, const std::uint8_t* input, std::uint8_t* output) noexcept;

private:
    struct value
    {
        double number = 0.0; // as the host gave it, a share of 1
        float rgb[3] = {};
        std::string text;
        bool own = false; // other than the default: stronger than the look
    };

    const value& value_of(row_kind kind, int index) const;
    void set_text(std::size_t index, const char* text);
    void read_rate();
    void read_unit();
    void read_look();
    void apply(const param_row& row);
    host::param_value point_value(const host::param_info& info) const;
    void draw(double time, const std::uint8_t* input, std::uint8_t* output);
    void pass_on(const std::uint8_t* input, std::uint8_t* output) const noexcept;

    std::shared_ptr<const adapter::loaded_effect> effect_;
    const std::vector<param_row>& rows_;
    std::vector<value> values_; // one for each row
    int width_;
    int height_;
    time_unit of_host_;
    time_unit unit_;
    adapter::frame_rate rate_;
    host::param_tracks look_;   // the look's values, or the defaults
    host::param_tracks tracks_; // those, and over them what the host set
    std::atomic<std::int32_t> untimed_{0};
    std::atomic<int> drawing_{0}; // threads in update()
    std::atomic<bool> failed_{false};
    std::atomic<bool> sliced_{false};
};
} // namespace frei0r
