#pragma once
// What a render records about the effect's calls: a line of text each, their count by name, the time they take.

#include "host/render.hpp"

#include <chrono>
#include <cstdint>
#include <exception>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace host
{
class call_trace
{
public:
    explicit call_trace(const render_options& options)
        : log_(options.log), fail_(options.fail ? &options.fail : nullptr), timed_(options.timed)
    {
    }

    bool logging() const { return log_ != nullptr; }
    // Whether calls leave no trace at all.
    bool idle() const { return log_ == nullptr && fail_ == nullptr && !timed_; }
    // Adds a line and answers its place; a result that is known later is added to the line there.
    std::size_t note(std::string line);
    void add_to(std::size_t line, const std::string& text);

    // Counts a call; not 0 where it is to fail. An exception from the asked function is kept for the render's end.
    PF_Err injected(const char* name);
    void keep_exception() noexcept;
    std::exception_ptr kept_exception() const { return exception_; }

    // The clock of one render: runs while the host works, stands while the effect does.
    void enter_host();
    void leave_host();
    bool timed() const { return timed_; }
    double host_seconds() const { return std::chrono::duration<double>(host_time_).count(); }

private:
    using clock = std::chrono::steady_clock;

    std::vector<std::string>* log_;
    const std::function<PF_Err(const char*, int)>* fail_;
    bool timed_;
    std::map<std::string, int, std::less<>> counts_;
    std::exception_ptr exception_;
    clock::time_point entered_{};
    clock::duration host_time_{};
};

// The host's time from here to the end of the block; an effect's function called back inside gives it up
// meanwhile.
class host_time
{
public:
    explicit host_time(call_trace& trace) : trace_(trace) { trace_.enter_host(); }
    ~host_time() { trace_.leave_host(); }
    host_time(const host_time&) = delete;
    host_time& operator=(const host_time&) = delete;

private:
    call_trace& trace_;
};

class effect_time
{
public:
    explicit effect_time(call_trace& trace) : trace_(trace)
    {
        if (trace_.timed())
            trace_.leave_host();
    }
    ~effect_time()
    {
        if (trace_.timed())
            trace_.enter_host();
    }
    effect_time(const effect_time&) = delete;
    effect_time& operator=(const effect_time&) = delete;

private:
    call_trace& trace_;
};
} // namespace host
