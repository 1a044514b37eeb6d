#pragma once
// A loaded code file. The one place that knows the platform's loader.

#include "effect/pf/effect_api.hpp"

#include <filesystem>

namespace host
{
class shared_object
{
public:
    // Throws host::error naming the file and what is wrong with it.
    explicit shared_object(const std::filesystem::path& file);
    ~shared_object();
    shared_object(const shared_object&) = delete;
    shared_object& operator=(const shared_object&) = delete;

    // The address of a symbol; null where the file has none of that name.
    void* symbol(const char* name) const;

private:
    void* library_ = nullptr;
};
} // namespace host
