#include "core/format.h"

#include <vector>

namespace qm {

std::u16string FormatMessage(std::u16string_view templ, std::initializer_list<std::u16string_view> args) {
    std::vector<std::u16string_view> values(args);
    std::u16string out;
    out.reserve(templ.size() + 16);
    for (size_t i = 0; i < templ.size(); ++i) {
        // Only "[d]" with a single digit naming a supplied argument is a placeholder.
        if (templ[i] == u'[' && i + 2 < templ.size() && templ[i + 2] == u']' && templ[i + 1] >= u'1' &&
            templ[i + 1] <= u'9') {
            size_t n = static_cast<size_t>(templ[i + 1] - u'1');
            if (n < values.size()) {
                out += values[n];
                i += 2;
                continue;
            }
        }
        out.push_back(templ[i]);
    }
    return out;
}

}  // namespace qm
