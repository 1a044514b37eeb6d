#include "world_store.hpp"

#include "text.hpp"

#include <cstdint>

namespace host
{
PF_EffectWorld world_store::adopt(std::string name, pixel_block block)
{
    records_.push_back({});
    record& entry = records_.back();
    entry.name = std::move(name);
    entry.block = std::move(block);
    entry.data = entry.block.data();
    entry.own = true;
    return entry.block.world();
}

PF_Err world_store::make(int width, int height, PF_NewWorldFlags flags, int row_padding, PF_EffectWorld* world)
{
    // 16-bit pixels are not served.
    if (!world || width <= 0 || height <= 0 || (flags & PF_NewWorldFlag_DEEP_PIXELS) != 0)
        return PF_Err_BAD_CALLBACK_PARAM;
    if (!world_size_fits(width, height, row_padding))
        return PF_Err_OUT_OF_MEMORY;
    pixel_block block(width, height, row_padding, (flags & PF_NewWorldFlag_CLEAR_PIXELS) != 0, reserve_);
    if (!block.data())
        return PF_Err_OUT_OF_MEMORY;

    *world = adopt(text_line("#", made_ + 1), std::move(block));
    ++made_;
    records_.back().own = false;
    // The record's place in the store, from 1: it still names the world when its pixels are gone.
    world->platform_ref = reinterpret_cast<void*>(static_cast<std::uintptr_t>(records_.size()));
    return PF_Err_NONE;
}

PF_Err world_store::dispose(PF_EffectWorld* world)
{
    record* entry = find(world);
    if (!entry || entry->own)
    {
        found_.add(
            text_line("dispose_world: ", entry ? "the " + entry->name : "a world that this host did not make",
                      entry ? " is the host's" : ""));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (entry->disposed)
    {
        found_.add(text_line("dispose_world: world ", entry->name, " was already disposed of"));
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    check(*entry);
    entry->disposed = true;
    // Checked mode keeps the memory, so that the address is not handed out again and later use is recognised.
    if (found_.checked())
        entry->block.poison_pixels();
    else
    {
        entry->block = pixel_block();
        entry->data = nullptr;
    }
    world->data = nullptr;
    return PF_Err_NONE;
}

void world_store::forgive(const PF_EffectWorld* world)
{
    if (record* entry = find(world))
        entry->forgiven = true;
}

const world_store::record* world_store::find(const PF_EffectWorld* world) const
{
    if (!world)
        return nullptr;
    if (world->data)
    {
        if (found_last_ && found_last_->data == world->data)
            return found_last_;
        for (auto entry = records_.rbegin(); entry != records_.rend(); ++entry)
            if (entry->data == world->data)
                return found_last_ = &*entry;
        return nullptr;
    }
    const auto place = reinterpret_cast<std::uintptr_t>(world->platform_ref);
    return place >= 1 && place <= records_.size() ? &records_[place - 1] : nullptr;
}

world_store::record* world_store::find(const PF_EffectWorld* world)
{
    return const_cast<record*>(static_cast<const world_store&>(*this).find(world));
}

std::string world_store::name_of(const PF_EffectWorld* world) const
{
    const record* entry = find(world);
    return entry ? entry->name : world ? "?" : "none";
}

bool world_store::usable(const char* call, const PF_EffectWorld* world)
{
    if (!world)
        return false;
    const record* entry = find(world);
    if (entry && entry->disposed)
    {
        found_.add(text_line(call, ": world ", entry->name, " was already disposed of"));
        return false;
    }
    if (!world->data || world->width <= 0 || world->height <= 0 ||
        world->rowbytes < std::int64_t{4} * world->width || (world->world_flags & PF_WorldFlag_DEEP) != 0)
        return false;
    if (entry)
    {
        const std::int64_t last =
            std::int64_t{world->rowbytes} * (world->height - 1) + std::int64_t{4} * world->width;
        if (last > std::int64_t{entry->block.rowbytes()} * entry->block.height())
        {
            found_.add(text_line(call, ": world ", entry->name, " is said to be larger than it was made"));
            return false;
        }
    }
    return true;
}

void world_store::check(const record& entry)
{
    if (!found_.checked() || !entry.block.data())
        return;
    if (const char* damage = entry.block.damage())
        found_.add(text_line(entry.own ? "the " : "world ", entry.name, " ", damage));
}

void world_store::check_all()
{
    for (const record& entry : records_)
    {
        if (!entry.disposed)
            check(entry);
        else if (entry.block.data() && !entry.block.pixels_poisoned())
            found_.add(text_line("world ", entry.name, " was written to after it was disposed of"));
        if (!entry.own && !entry.disposed && !entry.forgiven)
            found_.add(text_line("new_world: world ", entry.name, " was never disposed of"));
    }
}
} // namespace host
