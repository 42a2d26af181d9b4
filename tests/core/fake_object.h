// A macro object for the core tests: a bag of properties, the same object as another when their
// ids match (the type numbers are compared before). Reading an unknown property fails as the
// object model's do, unless quiet.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "core/error.h"
#include "core/text.h"
#include "core/value.h"

namespace qm::test {

class FakeObject : public MacroObject {
public:
    FakeObject(std::int32_t type, int id) : type_(type), id_(id) {}
    std::int32_t TypeNumber() const override { return type_; }
    std::u16string TypeName() const override { return u"Fake"; }
    MacroValue GetProperty(std::u16string_view name, bool quiet) override {
        auto it = properties.find(std::u16string(name));
        if (it != properties.end()) return it->second;
        if (quiet) return MacroValue();
        throw MacroError(u"Unknown property '" + std::u16string(name) + u"'");
    }
    void SetProperty(std::u16string_view name, const MacroValue& value) override {
        ++writes;
        properties[std::u16string(name)] = value;
    }
    bool SameAs(const MacroObject& other) const override { return static_cast<const FakeObject&>(other).id_ == id_; }
    std::u16string Describe() const override { return u"Fake #" + IntegerText(id_) + u" (object)"; }

    std::map<std::u16string, MacroValue> properties;
    int writes = 0;

private:
    std::int32_t type_;
    int id_;
};

}  // namespace qm::test
