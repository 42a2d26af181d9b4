// Benchmarks of the OneNote page binding: a page of fifty formatted paragraphs read into its bound
// form and written back, the work a run does for every page it loads and saves.
//
// Run: build/bench/bench/page_bench
#include <benchmark/benchmark.h>

#include <string>

#include "core/text.h"
#include "onenote/on_document.h"

namespace qm::ON {
namespace {

std::u16string FiftyParagraphPage() {
    std::u16string xml = u"<?xml version=\"1.0\"?>\n<one:Page xmlns:one=\"" + std::u16string(kNamespace) +
                         u"\" ID=\"{11111111-2222-4333-8444-555555555555}{1}{E1}\"><one:Outline><one:OEChildren>";
    for (int i = 0; i < 50; ++i) {
        xml += u"<one:OE author=\"Anna Berg\" authorInitials=\"AB\" creationTime=\"2023-04-01T09:30:00.000Z\" "
               u"lastModifiedTime=\"2023-04-01T09:30:00.000Z\" objectID=\"{11111111-2222-4333-8444-555555555555}{" +
               Ascii(std::to_string(i + 20)) +
               u"}{B0}\" alignment=\"left\" quickStyleIndex=\"1\"><one:T><![CDATA[Paragraph with <span "
               u"style='font-weight:bold'>bold</span> text.]]></one:T></one:OE>";
    }
    return xml + u"</one:OEChildren></one:Outline></one:Page>";
}

void BM_PageReadAndWrite(benchmark::State& state) {
    const std::u16string xml = FiftyParagraphPage();
    for (auto _ : state) {
        const auto page = ReadPage(xml, u"p");
        benchmark::DoNotOptimize(WriteDocument(*page));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(xml.size() * sizeof(char16_t)));
}
BENCHMARK(BM_PageReadAndWrite);

}  // namespace
}  // namespace qm::ON

BENCHMARK_MAIN();
