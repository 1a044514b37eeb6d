#include "tests/adapters/openfx/strict_host/watch.hpp"

#include <cstring>

namespace strict
{
namespace
{
// Spoilt and freed at the thread's next call.
class lent_texts
{
public:
    ~lent_texts() { spoil(); }
    char* add(const std::string& text)
    {
        char* copy = new char[text.size() + 1];
        std::memcpy(copy, text.c_str(), text.size() + 1);
        lent_.push_back({copy, text.size()});
        return copy;
    }
    void spoil()
    {
        for (const auto& [copy, size] : lent_)
        {
            std::memset(copy, '?', size);
            delete[] copy;
        }
        lent_.clear();
    }

private:
    std::vector<std::pair<char*, std::size_t>> lent_;
};

thread_local lent_texts lent;
} // namespace

watch& the_watch()
{
    static watch one;
    return one;
}

std::string& current_action()
{
    thread_local std::string action;
    return action;
}

void watch::complain(const std::string& what)
{
    const std::lock_guard hold(guard);
    const std::string& action = current_action();
    complaints.push_back((action.empty() ? "outside any action" : action) + ": " + what);
}

call::call(const char* function) : function_(function), hold_(the_watch().guard), failed_(kOfxStatOK)
{
    lent.spoil();
    watch& now = the_watch();
    ++now.calls;
    if (now.fail)
        failed_ = now.fail(function, now.calls);
}

bool call::alive(const void* object, const char* what)
{
    if (object && the_watch().alive.contains(object))
        return true;
    the_watch().complain(std::string(function_) + ": " + what + " is no handle that is alive");
    return false;
}

char* lend(const std::string& text)
{
    return lent.add(text);
}
} // namespace strict
