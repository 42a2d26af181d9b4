#include "addin/callback_table.h"

#include <string>
#include <unordered_map>

namespace qm::addin {

std::optional<std::int32_t> CallbackId(std::u16string_view name) {
    // Built on first use; the initialisation of a local static is thread-safe.
    static const std::unordered_map<std::u16string_view, std::int32_t> ids = [] {
        std::unordered_map<std::u16string_view, std::int32_t> map;
        for (std::size_t i = 0; i < kCallbackNames.size(); ++i) map.emplace(kCallbackNames[i], static_cast<std::int32_t>(i));
        return map;
    }();
    const auto found = ids.find(name);
    if (found == ids.end()) return std::nullopt;
    return found->second;
}

std::optional<Callback> CallbackFromId(std::int32_t id) {
    if (id < 0 || static_cast<std::size_t>(id) >= kCallbackNames.size()) return std::nullopt;
    return static_cast<Callback>(id);
}

}  // namespace qm::addin
