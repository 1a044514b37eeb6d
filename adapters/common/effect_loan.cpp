#include "adapters/common/effect_loan.hpp"

#include "adapters/common/places.hpp"

#include <mutex>

namespace adapter
{
loaded_effect::loaded_effect(const std::filesystem::path& file)
    : plugin(file), look_folders(adapter::look_folders(file))
{
}

std::shared_ptr<const loaded_effect> borrow_effect()
{
    static std::mutex guard;
    static std::weak_ptr<const loaded_effect> lent;
    const std::lock_guard hold(guard);
    std::shared_ptr<const loaded_effect> effect = lent.lock();
    if (!effect)
    {
        effect = std::make_shared<const loaded_effect>(plugin_file());
        lent = effect;
    }
    return effect;
}
} // namespace adapter
