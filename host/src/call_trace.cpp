#include "call_trace.hpp"

namespace host
{
std::size_t call_trace::note(std::string line)
{
    log_->push_back(std::move(line));
    return log_->size() - 1;
}

void call_trace::add_to(std::size_t line, const std::string& text)
{
    (*log_)[line] += text;
}

PF_Err call_trace::injected(const char* name)
{
    if (!fail_)
        return PF_Err_NONE;
    auto count = counts_.find(std::string_view(name));
    if (count == counts_.end())
        count = counts_.emplace(name, 0).first;
    return (*fail_)(name, ++count->second);
}

void call_trace::keep_exception() noexcept
{
    if (!exception_)
        exception_ = std::current_exception();
}

void call_trace::enter_host()
{
    if (timed_)
        entered_ = clock::now();
}

void call_trace::leave_host()
{
    if (timed_)
        host_time_ += clock::now() - entered_;
}
} // namespace host
