#include "adapters/frei0r/session.hpp"

#include <cstdio>
#include <mutex>

namespace frei0r
{
namespace
{
struct shared_state
{
    std::mutex guard;
    int users = 0;
    std::shared_ptr<const adapter::loaded_effect> effect; // while somebody uses it
    std::vector<param_row> rows;                          // empty until an effect told them
    std::vector<param_row> own_rows = adapter_rows();
};

shared_state& state()
{
    static shared_state all;
    return all;
}

std::shared_ptr<const adapter::loaded_effect> loaded() noexcept
try
{
    return adapter::borrow_effect();
}
catch (const std::exception& failure)
{
    complain(failure.what());
    return nullptr;
}
} // namespace

void begin_use()
{
    shared_state& all = state();
    const std::lock_guard hold(all.guard);
    if (all.users++ == 0 || !all.effect)
        all.effect = loaded();
    if (all.effect && all.rows.empty())
        all.rows = make_table(all.effect->plugin.params());
}

void end_use() noexcept
{
    shared_state& all = state();
    std::shared_ptr<const adapter::loaded_effect> last; // let go when nothing is locked
    const std::lock_guard hold(all.guard);
    if (all.users > 0 && --all.users == 0)
        last.swap(all.effect);
}

std::shared_ptr<const adapter::loaded_effect> effect_in_use()
{
    shared_state& all = state();
    const std::lock_guard hold(all.guard);
    return all.effect;
}

const std::vector<param_row>& table()
{
    shared_state& all = state();
    const std::lock_guard hold(all.guard);
    return all.rows.empty() ? all.own_rows : all.rows;
}

void complain(std::string_view what) noexcept
{
    (void)std::fprintf(stderr, "filigrane: %.*s\n", static_cast<int>(what.size()), what.data());
}
} // namespace frei0r
