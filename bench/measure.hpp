#pragma once
// Cases that are compared with each other, timed in turn in one run: repetitions of all of them are shuffled, so
// that noise hits all alike. Google Benchmark keeps the clocks.

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace bench
{
// Seconds of the repetitions of one case, each the mean of its iterations.
class timings
{
public:
    void add(double seconds) { seconds_.push_back(seconds); }
    double median() const; // 0 without repetitions
    double minimum() const;
    std::size_t count() const { return seconds_.size(); }

private:
    std::vector<double> seconds_;
};

class series
{
public:
    // `body` does the work once; what counts is the processor time of this thread. Answers the case's place.
    std::size_t add(std::string name, std::function<void()> body);
    // `body` does the work once and answers the seconds that count.
    std::size_t add_timed(std::string name, std::function<double()> body);

    // Warms every case up once, then repeats it for about `seconds_each`: 3 to 41 times, or once where already the
    // warm-up takes longer than that; where it takes five times as long, it is the repetition.
    void run(double seconds_each);

    const timings& of(std::size_t place) const { return cases_[place].taken; }
    double median(std::size_t place) const { return cases_[place].taken.median(); }

private:
    struct entry
    {
        std::string name;
        std::function<double()> body;
        bool timed_by_body;
        timings taken;
    };
    std::vector<entry> cases_;
};

// Processor seconds of this thread so far.
double thread_seconds();
} // namespace bench
