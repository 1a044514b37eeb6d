#include "bench/measure.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <map>
#include <utility>

namespace bench
{
namespace
{
// A repetition shorter than this is made of several iterations: the clock is a system call.
constexpr double kShortest = 0.004;
constexpr double kFewest = 3;
constexpr double kMost = 41;
constexpr double kTooLong = 5; // times what each case may take

class collector : public benchmark::BenchmarkReporter
{
public:
    explicit collector(bool timed_by_body, std::map<std::string, timings*> targets)
        : timed_by_body_(timed_by_body), targets_(std::move(targets))
    {
    }

    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration)
                targets_.at(run.run_name.function_name)
                    ->add(timed_by_body_ ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime());
    }

private:
    bool timed_by_body_;
    std::map<std::string, timings*> targets_;
};

void initialize_once()
{
    static const bool done = []
    {
        char program[] = "filigrane_bench";
        char shuffled[] = "--benchmark_enable_random_interleaving=true";
        char* arguments[] = {program, shuffled, nullptr};
        int count = 2;
        benchmark::Initialize(&count, arguments);
        return true;
    }();
    static_cast<void>(done);
}
} // namespace

double thread_seconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double timings::median() const
{
    if (seconds_.empty())
        return 0.0;
    std::vector<double> sorted = seconds_;
    std::sort(sorted.begin(), sorted.end());
    const std::size_t half = sorted.size() / 2;
    return sorted.size() % 2 != 0 ? sorted[half] : 0.5 * (sorted[half - 1] + sorted[half]);
}

double timings::minimum() const
{
    return seconds_.empty() ? 0.0 : *std::min_element(seconds_.begin(), seconds_.end());
}

std::size_t series::add(std::string name, std::function<void()> body)
{
    const auto run = [body = std::move(body)]
    {
        body();
        return 0.0;
    };
    cases_.push_back({std::move(name), run, false, {}});
    return cases_.size() - 1;
}

std::size_t series::add_timed(std::string name, std::function<double()> body)
{
    cases_.push_back({std::move(name), std::move(body), true, {}});
    return cases_.size() - 1;
}

void series::run(double seconds_each)
{
    initialize_once();
    benchmark::ClearRegisteredBenchmarks();
    std::map<std::string, timings*> targets;
    for (entry& c : cases_)
    {
        const double before = thread_seconds();
        const double told = c.body();
        const double spent = thread_seconds() - before;
        const double once = c.timed_by_body ? std::max(spent, told) : spent; // other threads may have worked
        if (once > kTooLong * seconds_each)
        {
            c.taken.add(c.timed_by_body ? told : once);
            continue;
        }
        const double iterations = std::max(1.0, std::ceil(kShortest / std::max(once, 1e-9)));
        const double wanted = std::clamp(std::floor(seconds_each / (once * iterations)), kFewest, kMost);
        auto* const registered = benchmark::RegisterBenchmark(c.name.c_str(),
                                                              [&c](benchmark::State& state)
                                                              {
                                                                  for (auto _ : state)
                                                                  {
                                                                      const double seconds = c.body();
                                                                      if (c.timed_by_body)
                                                                          state.SetIterationTime(seconds);
                                                                  }
                                                              });
        registered->Iterations(static_cast<benchmark::IterationCount>(iterations))
            ->Repetitions(once > seconds_each ? 1 : static_cast<int>(wanted))
            ->Unit(benchmark::kSecond);
        if (c.timed_by_body)
            registered->UseManualTime();
        targets[c.name] = &c.taken;
    }
    collector results(cases_.empty() || cases_.front().timed_by_body, targets);
    if (!targets.empty())
        benchmark::RunSpecifiedBenchmarks(&results);
    benchmark::ClearRegisteredBenchmarks();
}
} // namespace bench
