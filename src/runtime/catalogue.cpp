// Builds the catalogue from the family tables, once, and the name-to-entry table the dispatcher
// looks calls up in.
#include <array>
#include <cstdlib>
#include <unordered_map>

#include "core/error.h"
#include "core/format.h"
#include "runtime/builtin.h"

namespace qm {
namespace {

// Name lookup on the hot path of every call: an open-addressed table over a hash of a few code
// units, sized so that the 55 names rarely share a slot. Cheaper than a general string hash.
class NameTable {
public:
    static std::size_t Hash(std::u16string_view name) {
        std::size_t h = name.size();
        if (!name.empty()) h = h * 31 + name.front();
        if (name.size() > 1) h = h * 31 + name.back();
        if (name.size() > 2) h = h * 31 + name[name.size() / 2];
        if (name.size() > 9) h = h * 31 + name[9];
        return h;
    }

    void Add(std::u16string_view name, const BuiltinEntry* entry) {
        std::size_t i = Hash(name) & kMask;
        while (slots_[i].entry) i = (i + 1) & kMask;
        slots_[i] = Slot{name, entry};
    }

    const BuiltinEntry* Find(std::u16string_view name) const {
        for (std::size_t i = Hash(name) & kMask;; i = (i + 1) & kMask) {
            const Slot& slot = slots_[i];
            if (!slot.entry) return nullptr;
            if (slot.name == name) return slot.entry;
        }
    }

private:
    static constexpr std::size_t kSize = 256;  // a power of two, well above the number of names
    static constexpr std::size_t kMask = kSize - 1;
    struct Slot {
        std::u16string_view name;
        const BuiltinEntry* entry = nullptr;
    };
    std::array<Slot, kSize> slots_{};
};

struct Registry {
    FunctionCatalogue catalogue;
    std::vector<BuiltinEntry> entries;  // index: identifier - 1
    NameTable byName;
};

Registry BuildRegistry() {
    Registry registry;
    std::unordered_map<std::u16string, BuiltinFn> functions;
    for (auto family : {ArrayBuiltins, StringBuiltins, DateTimeBuiltins, DialogBoxBuiltins, VerbBuiltins}) {
        for (auto& definition : family()) {
            std::u16string name = definition.info.name;
            functions.emplace(name, definition.fn);
            bool added = registry.catalogue.emplace(name, std::move(definition.info)).second;
            // Two families defining one name is a build mistake, not a run-time condition.
            if (!added) std::abort();
        }
    }
    // Identifiers follow the name order, so they are the same in every build.
    registry.entries.reserve(registry.catalogue.size());
    std::int32_t id = 0;
    for (auto& [name, info] : registry.catalogue) {
        info.id = ++id;
        int arity = info.variadic() ? -1 : static_cast<int>(info.parameters.size());
        registry.entries.push_back(BuiltinEntry{&info, functions.at(name), arity});
    }
    // The views point into the catalogue's keys, which never move.
    for (const auto& entry : registry.entries) registry.byName.Add(entry.info->name, &entry);
    return registry;
}

const Registry& GetRegistry() {
    static const Registry registry = BuildRegistry();
    return registry;
}

}  // namespace

const FunctionCatalogue& getFunctionCatalogue() { return GetRegistry().catalogue; }

const FunctionInfo* FindBuiltin(std::u16string_view name) {
    const BuiltinEntry* entry = FindBuiltinEntry(name);
    return entry ? entry->info : nullptr;
}

const BuiltinEntry* FindBuiltinEntry(std::u16string_view name) {
    return GetRegistry().byName.Find(name);
}

void FailMacro(std::u16string_view templ, std::initializer_list<std::u16string_view> args) {
    throw MacroError(FormatMessage(templ, args));
}

}  // namespace qm
