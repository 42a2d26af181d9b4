// The system's own lower-casing (the invariant locale's, so that it is the same for every user),
// asked once for every code unit and kept as a table: folding stays one lookup per unit.
#include <windows.h>

#include <array>
#include <memory>

#include "core/case_map.h"

namespace qm::platform {
namespace {

using Table = std::array<char16_t, 0x10000>;

// Maps the units [first, last) in one call; a range whose length the mapping would change is
// left as it is.
void MapRange(Table& table, unsigned first, unsigned last) {
    const int count = static_cast<int>(last - first);
    const auto* in = reinterpret_cast<const wchar_t*>(table.data() + first);
    std::unique_ptr<wchar_t[]> out(new wchar_t[count]);
    if (::LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, in, count, out.get(), count, nullptr, nullptr, 0) ==
        count) {
        for (int i = 0; i < count; ++i) table[first + i] = static_cast<char16_t>(out[i]);
    }
}

const Table& LowerTable() {
    static const std::unique_ptr<Table> table = [] {
        auto t = std::make_unique<Table>();
        for (unsigned c = 0; c < t->size(); ++c) (*t)[c] = static_cast<char16_t>(c);
        // Surrogates are halves of characters and keep their value.
        MapRange(*t, 0x80, 0xD800);
        MapRange(*t, 0xE000, 0x10000);
        return t;
    }();
    return *table;
}

}  // namespace

char16_t LowerCaseBeyondAscii(char16_t c) { return LowerTable()[c]; }

}  // namespace qm::platform
