#include "host/frame_pool.hpp"

#include "host/error.hpp"
#include "lent_render.hpp"
#include "pixel_block.hpp"
#include "plugin_access.hpp"
#include "text.hpp"

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

namespace host
{
namespace
{
// The pictures of one frame on its way, from the source's call to the end of the sink's.
struct slot
{
    slot(const composition& comp, memory_reserve& reserve)
        : input(comp.picture_width(), comp.picture_height(), 0, true, &reserve),
          output(comp.picture_width(), comp.picture_height(), 0, true, &reserve)
    {
        if (!input.data() || !output.data())
            throw std::bad_alloc();
    }

    static image_view view_of(const pixel_block& picture)
    {
        return {reinterpret_cast<std::uint8_t*>(picture.data()), picture.width(), picture.height(),
                picture.rowbytes()};
    }
    const_image_view finished() const
    {
        const image_view view = view_of(output);
        return {view.argb, view.width, view.height, view.rowbytes};
    }

    pixel_block input;
    pixel_block output;
    bool used = false; // the input is not as made
    std::vector<std::string> log;
    std::exception_ptr failure; // of the source, the render or its finish
};

// Every worker does all three steps of a frame: it fetches the next input, renders, and then hands over whatever
// frames are due. A frame that failed waits for its turn like any other, so that what is delivered before the
// exception, and which exception it is, do not depend on the number of jobs.
class pool
{
public:
    using source_function = std::function<bool(std::int32_t, image_view)>;
    using sink_function = std::function<void(std::int32_t, const_image_view)>;
    using finish_function = std::function<void(std::int32_t, image_view)>;
    using wanted_function = std::function<bool(std::int32_t)>;

    pool(const plugin& effect, const composition& comp, const param_tracks& values, frame_range range, int jobs,
         const source_function& source, const sink_function& sink, const std::atomic<bool>* stop,
         const render_options& options, const finish_function& finish, const wanted_function& wanted)
        : effect_(effect), comp_(comp), values_(values), range_(range), slots_(jobs + 2), source_(source),
          sink_(sink), finish_(finish), wanted_(wanted), stop_(stop), options_(options), next_in_(range.first)
    {
    }

    // One worker's whole life.
    void work()
    {
        std::unique_lock hold(mutex_);
        for (;;)
        {
            changed_.wait(hold, [this] { return ended_ || (!fetching_ && slots_ > 0); });
            if (ended_ || next_in_ > range_.last || (stop_ && *stop_))
                break;
            const std::int64_t from = next_in_;
            fetching_ = true;
            --slots_;
            hold.unlock();
            const std::int64_t next = next_wanted(from);
            const auto frame = static_cast<std::int32_t>(next);
            std::unique_ptr<slot> pictures = next > range_.last ? nullptr : fetched(frame);
            hold.lock();
            fetching_ = false;
            if (!pictures)
                break;
            next_in_ = next + 1;
            order_.push_back(frame);
            ended_ = ended_ || pictures->failure;
            changed_.notify_all();

            hold.unlock();
            render(frame, *pictures);
            hold.lock();
            ended_ = ended_ || pictures->failure;
            done_[frame] = std::move(pictures);
            deliver(hold);
        }
        ended_ = true;
        changed_.notify_all();
    }

    std::int32_t result() const
    {
        if (failure_)
            std::rethrow_exception(failure_);
        return delivered_;
    }

private:
    // The first frame from this one on that is wanted; past the range where none is, or where asking fails.
    std::int64_t next_wanted(std::int64_t frame)
    {
        try
        {
            while (wanted_ && frame <= range_.last && !wanted_(static_cast<std::int32_t>(frame)))
                frame = stop_ && *stop_ ? std::int64_t{range_.last} + 1 : frame + 1;
            return frame;
        }
        catch (...)
        {
            fail(std::current_exception());
            return std::int64_t{range_.last} + 1;
        }
    }

    // The frame's input in a slot of its own; null where the source has no more.
    std::unique_ptr<slot> fetched(std::int32_t frame)
    {
        std::unique_ptr<slot> pictures;
        try
        {
            pictures = spare();
            pictures->failure = nullptr;
            pictures->log.clear();
            if (!source_)
                return pictures;
            const image_view input = slot::view_of(pictures->input);
            if (pictures->used)
                std::memset(input.argb, 0,
                            static_cast<std::size_t>(input.rowbytes) * static_cast<std::size_t>(input.height));
            pictures->used = true;
            if (!source_(frame, input))
                return nullptr;
        }
        catch (...)
        {
            if (!pictures)
                return fail(std::current_exception()), nullptr;
            pictures->failure = std::current_exception();
        }
        return pictures;
    }

    std::unique_ptr<slot> spare()
    {
        {
            const std::lock_guard hold(mutex_);
            if (!spares_.empty())
            {
                auto pictures = std::move(spares_.back());
                spares_.pop_back();
                return pictures;
            }
        }
        return std::make_unique<slot>(comp_, plugin_access::memory(effect_));
    }

    void render(std::int32_t frame, slot& pictures)
    {
        if (pictures.failure)
            return;
        try
        {
            render_options options = options_;
            options.log = options_.log ? &pictures.log : nullptr;
            render_lent_frame(effect_, comp_, values_, frame, slot::view_of(pictures.input),
                              slot::view_of(pictures.output), options);
            if (finish_)
                finish_(frame, slot::view_of(pictures.output));
        }
        catch (...)
        {
            pictures.failure = std::current_exception();
        }
    }

    // Hands over the frames that are due, on one thread at a time, with the lock let go meanwhile.
    void deliver(std::unique_lock<std::mutex>& hold)
    {
        if (delivering_)
            return;
        delivering_ = true;
        while (!order_.empty() && !failure_ && done_.contains(order_.front()))
        {
            const std::int32_t frame = order_.front();
            std::unique_ptr<slot> pictures = std::move(done_.extract(frame).mapped());
            hold.unlock();
            const std::exception_ptr failure = handed_over(frame, *pictures);
            hold.lock();
            order_.pop_front();
            ++slots_;
            spares_.push_back(std::move(pictures));
            if (failure)
                failure_ = failure, ended_ = true;
            else
                ++delivered_;
            changed_.notify_all();
        }
        delivering_ = false;
    }

    std::exception_ptr handed_over(std::int32_t frame, const slot& pictures)
    {
        if (options_.log)
            options_.log->insert(options_.log->end(), pictures.log.begin(), pictures.log.end());
        if (pictures.failure)
            return pictures.failure;
        try
        {
            sink_(frame, pictures.finished());
        }
        catch (...)
        {
            return std::current_exception();
        }
        return nullptr;
    }

    void fail(std::exception_ptr failure)
    {
        const std::lock_guard hold(mutex_);
        if (!failure_)
            failure_ = std::move(failure);
    }

    const plugin& effect_;
    const composition& comp_;
    const param_tracks& values_;
    const frame_range range_;
    int slots_; // how many more frames may be on their way
    const source_function& source_;
    const sink_function& sink_;
    const finish_function& finish_;
    const wanted_function& wanted_;
    const std::atomic<bool>* stop_;
    const render_options& options_;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::int64_t next_in_; // 64 bits: one past the last frame must be tellable
    bool fetching_ = false;
    bool delivering_ = false;
    bool ended_ = false;
    std::deque<std::int32_t> order_; // frames fetched and not yet handed over
    std::map<std::int32_t, std::unique_ptr<slot>> done_;
    std::vector<std::unique_ptr<slot>> spares_;
    std::int32_t delivered_ = 0;
    std::exception_ptr failure_;
};
} // namespace

std::int32_t render_frames(const plugin& effect, const composition& comp, const param_tracks& values,
                           frame_range range, int jobs,
                           const std::function<bool(std::int32_t frame, image_view input)>& source,
                           const std::function<void(std::int32_t frame, const_image_view output)>& sink,
                           const std::atomic<bool>* stop, const render_options& options,
                           const std::function<void(std::int32_t frame, image_view output)>& finish,
                           const std::function<bool(std::int32_t frame)>& wanted)
{
    if (jobs < 1)
        throw error(text_line(jobs, " jobs cannot render anything; give 1 or more"));
    check_renderable(comp, options);
    const std::int64_t frames = std::int64_t{range.last} - range.first + 1;
    if (frames <= 0)
        return 0;
    const int workers = static_cast<int>(std::min<std::int64_t>(jobs, frames));

    pool work(effect, comp, values, range, workers, source, sink, stop, options, finish, wanted);
    std::vector<std::thread> threads;
    try
    {
        for (int i = 1; i < workers; ++i)
            threads.emplace_back([&work] { work.work(); });
    }
    catch (const std::system_error&)
    {
        // The system gives no more threads: those there are do the work, this one among them.
    }
    work.work();
    for (std::thread& thread : threads)
        thread.join();
    return work.result();
}
} // namespace host
