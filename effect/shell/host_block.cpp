#include "effect/shell/host_block.hpp"

#include <cstddef>
#include <limits>
#include <new>

namespace
{
constexpr std::align_val_t kAlignment{16};

// A block of ours: its master pointer in front, so that the handle is the block's own address.
struct alignas(16) own_block
{
    char* master;
};

PF_Handle new_own_handle(std::uint64_t bytes) noexcept
{
    if (bytes > std::numeric_limits<std::size_t>::max() - sizeof(own_block))
        return nullptr;
    void* const room =
        ::operator new(sizeof(own_block) + static_cast<std::size_t>(bytes), kAlignment, std::nothrow);
    if (room == nullptr)
        return nullptr;
    auto* const block = new (room) own_block;
    block->master = static_cast<char*>(room) + sizeof(own_block);
    return &block->master;
}

void dispose_own_handle(PF_Handle handle) noexcept
{
    ::operator delete(static_cast<void*>(handle), kAlignment);
}
} // namespace

host_block::host_block(const PF_UtilCallbacks& utils, std::uint64_t bytes)
    : utils_(utils),
      handle_(utils.host_new_handle != nullptr ? utils.host_new_handle(bytes) : new_own_handle(bytes)),
      ours_(utils.host_new_handle == nullptr)
{
    if (handle_ == nullptr)
        return;
    data_ = utils.host_lock_handle != nullptr ? utils.host_lock_handle(handle_) : *handle_;
    if (data_ == nullptr)
        dispose();
}

void host_block::release()
{
    if (data_ == nullptr)
        return;
    if (utils_.host_unlock_handle != nullptr)
        utils_.host_unlock_handle(handle_);
    dispose();
    data_ = nullptr;
}

void host_block::dispose()
{
    if (ours_)
        dispose_own_handle(handle_);
    else if (utils_.host_dispose_handle != nullptr)
        utils_.host_dispose_handle(handle_);
}
