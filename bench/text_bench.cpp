// Benchmarks of a paragraph's formatted text: its text read, and read then set to new text, as a
// macro's `$paragraph.text = "Edited " & $paragraph.text` does for every paragraph it visits.
// The paragraphs differ from one another, so that no reading is served by the one before it.
//
// Run: build/bench/bench/text_bench
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "core/text.h"
#include "onenote/fmt_paragraph.h"
#include "onenote/on_schema.h"

namespace qm::onenote {
namespace {

constexpr int kParagraphs = 64;

// The markup the notebook generator writes: two styled words and a link.
std::u16string Markup(int index) {
    const std::u16string n = Ascii(std::to_string(index + 1));
    return u"Paragraph " + n + u" with <span style='font-weight:bold'>bold</span> and <span\n"
           u"style='color:#2E75B5'>blue</span> words, and a <a href=\"https://example.org/" + n +
           u"\">link</a> to read later.";
}

struct Paragraphs {
    std::vector<std::shared_ptr<ON::OE>> paragraphs;
    std::vector<std::u16string> markup;

    Paragraphs() {
        for (int i = 0; i < kParagraphs; ++i) {
            auto oe = ON::New<ON::OE>();
            auto choice = std::make_shared<ON::OEChoice>();
            choice->t = ON::New<ON::T>();
            choice->t->text = Markup(i);
            choice->t->owner = choice.get();
            oe->content.Add(std::move(choice));
            paragraphs.push_back(std::move(oe));
            markup.push_back(Markup(i));
        }
    }
};

void BM_ParagraphTextRead(benchmark::State& state) {
    Paragraphs p;
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(TextOfParagraph(*p.paragraphs[i]));
        i = (i + 1) % kParagraphs;
    }
}
BENCHMARK(BM_ParagraphTextRead);

void BM_ParagraphTextReadAndSet(benchmark::State& state) {
    Paragraphs p;
    std::size_t i = 0;
    for (auto _ : state) {
        ON::OE& oe = *p.paragraphs[i];
        benchmark::DoNotOptimize(SetTextOfParagraph(oe, u"Edited " + TextOfParagraph(oe)));
        oe.content[0]->t->text = p.markup[i];  // a string copy: small beside the rest
        i = (i + 1) % kParagraphs;
    }
}
BENCHMARK(BM_ParagraphTextReadAndSet);

}  // namespace
}  // namespace qm::onenote

BENCHMARK_MAIN();
