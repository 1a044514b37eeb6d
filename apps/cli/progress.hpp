#pragma once
// How far a render is, on standard error: a bar where a person looks on, otherwise a line now and then.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace cli
{
class progress
{
public:
    // `total`: frames to come, where known. Shows nothing when `quiet`.
    progress(std::optional<std::int32_t> total, bool quiet);
    ~progress();
    progress(const progress&) = delete;
    progress& operator=(const progress&) = delete;

    void frame_done();
    // One of the frames to come is there already. May be told by another thread.
    void frame_found() { ++found_; }
    // Takes the bar away, so that other lines can follow.
    void clear();
    double seconds() const;

private:
    std::string text() const;
    std::int32_t to_draw() const { return *total_ - found_; }

    std::optional<std::int32_t> total_;
    bool quiet_;
    bool terminal_;
    bool drawn_ = false;
    std::int32_t done_ = 0;
    std::atomic<std::int32_t> found_ = 0;
    std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point shown_ = begun_;
};
} // namespace cli
