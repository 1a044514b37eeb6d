#pragma once
// What the strict host keeps an eye on: which handles are alive, which action a thread is in, what was done wrong.

#include "adapters/openfx/api/types.hpp"

#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace strict
{
// One host at a time is watched; its suites are plain functions, which find it here.
struct watch
{
    std::recursive_mutex guard;
    std::vector<std::string> complaints;
    std::set<const void*> alive; // objects that handles may point to
    // Asked before each suite function with its name and 1-based count; another answer than OK is the function's.
    std::function<OfxStatus(const char* function, int nth)> fail;
    int calls = 0;
    // Handles that functions give are null, though they answer OK.
    bool null_handles = false;
    std::set<std::string> missing; // properties that no object has
    std::vector<std::string> messages;
    int aborts_asked = 0;
    int abort_from = 0; // the render is not wanted from the so-manieth question on; 0: it is
    // Texts as they were given, and what they said then: hosts have been seen to keep the pointers.
    std::vector<std::pair<const char*, std::string>> texts_given;
    bool wants_time = true; // whether values differ over time
    std::vector<double> times_asked;

    void complain(const std::string& what);
};

watch& the_watch();

// The action that this thread is in; empty outside any.
std::string& current_action();

// Entered by every suite function: locks, spoils what was lent to the thread before, lets the test fail the call.
class call
{
public:
    explicit call(const char* function);
    OfxStatus failed() const { return failed_; } // OK where the call is to be served
    // Whether `object` is alive; complains where it is not.
    bool alive(const void* object, const char* what);

private:
    const char* function_;
    std::lock_guard<std::recursive_mutex> hold_;
    OfxStatus failed_;
};

// A copy of the text that is good until the thread's next call into the host.
char* lend(const std::string& text);
} // namespace strict
