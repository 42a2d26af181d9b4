// Evaluates expression text the way a running macro does: the parser, the evaluator and the
// built-in call handler, with the services a test attaches.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "core/error.h"
#include "core/evaluator.h"
#include "core/parser.h"
#include "core/text.h"
#include "core/value.h"
#include "runtime/dispatch.h"

namespace qm::test {

struct Harness {
    MacroScope scope;
    RuntimeServices services;
    BuiltinCallHandler calls{services};

    MacroValue Eval(std::u16string_view text) {
        Evaluator evaluator(scope, &calls);
        return evaluator.Evaluate(*Parse(text));
    }

    // The macro error's message, or a marker when the expression did not fail.
    std::u16string Error(std::u16string_view text) {
        try {
            Eval(text);
        } catch (const MacroError& e) {
            return e.message();
        }
        return u"<no error>";
    }

    MacroValue& Var(std::u16string_view name) { return *scope.Slot(name); }
};

// The elements of an array as "key=value" joined by "|", values by their text.
inline std::u16string Elements(const MacroValue& value) {
    if (value.kind() != Kind::Array) return u"<not an array: " + value.Describe() + u">";
    std::u16string out;
    for (const auto& element : value.array()->elements()) {
        if (!out.empty()) out += u'|';
        out += element.key + u'=' + element.value->AsString();
    }
    return out;
}

}  // namespace qm::test
