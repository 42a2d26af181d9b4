// A small schema exercising every kind of field: intrusive element types with the header, and
// plain types bound from outside.
#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "xml/binding.h"

namespace qm::xml::test {

struct Leaf : Child<Leaf> {
    std::u16string text;
};

struct Tail : Child<Tail> {};

struct Item : Child<Item> {
    std::u16string name;
    Defaulted<bool> flag{false};
    Defaulted<std::int32_t> count{0};
    Defaulted<std::u16string> mode{u"auto"};
    SystemTime when;
};

struct Other : Child<Other> {};

struct Box : Child<Box> {
    std::shared_ptr<Leaf> leaf;
    std::shared_ptr<Tail> tail;
};

struct Doc : Child<Doc> {
    Defaulted<bool> on{false};
    ChildList<Item> items;
    ChildList<Other> others;
    ChildList<Box> boxes;
    std::shared_ptr<Tail> tail;
};

// Plain types: a single choice, a list, text.
struct PlainA {
    std::u16string text;
    bool cdata = false;
};
struct PlainB {};
struct Plain {
    std::variant<std::monostate, PlainA, PlainB> pick;
    std::vector<std::shared_ptr<Plain>> nested;
    std::u16string text;
    bool cdata = false;
};

}  // namespace qm::xml::test

namespace qm::xml {

template <>
struct Binding<test::Leaf> {
    static constexpr std::u16string_view kName = u"Leaf";
    static constexpr auto kFields = std::tuple{Text(&test::Leaf::text)};
};
template <>
struct Binding<test::Tail> {
    static constexpr std::u16string_view kName = u"Tail";
    static constexpr auto kFields = std::tuple{};
};
template <>
struct Binding<test::Item> {
    static constexpr std::u16string_view kName = u"Item";
    static constexpr auto kFields =
        std::tuple{Attribute(u"name", &test::Item::name), Attribute(u"flag", &test::Item::flag),
                   Attribute(u"count", &test::Item::count), Attribute(u"mode", &test::Item::mode),
                   Attribute(u"when", &test::Item::when)};
};
template <>
struct Binding<test::Other> {
    static constexpr std::u16string_view kName = u"Other";
    static constexpr auto kFields = std::tuple{};
};
template <>
struct Binding<test::Box> {
    static constexpr std::u16string_view kName = u"Box";
    static constexpr auto kFields = std::tuple{Slot(&test::Box::leaf), Slot(&test::Box::tail)};
};
template <>
struct Binding<test::Doc> {
    static constexpr std::u16string_view kName = u"Doc";
    static constexpr auto kFields = std::tuple{Attribute(u"on", &test::Doc::on), List(&test::Doc::items),
                                               List(&test::Doc::others), List(&test::Doc::boxes),
                                               Slot(&test::Doc::tail)};
};
template <>
struct Binding<test::PlainA> {
    static constexpr auto kFields = std::tuple{Text(&test::PlainA::text, &test::PlainA::cdata)};
};
template <>
struct Binding<test::PlainB> {
    static constexpr auto kFields = std::tuple{};
};
template <>
struct Binding<test::Plain> {
    static constexpr auto kFields =
        std::tuple{Choice(u"Pick", &test::Plain::pick, Alternative<test::PlainA>(u"A"), Alternative<test::PlainB>(u"B")),
                   List(u"P", &test::Plain::nested), Text(&test::Plain::text, &test::Plain::cdata)};
};

}  // namespace qm::xml
