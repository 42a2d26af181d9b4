// The floor of the notebook benchmark: the work a macro run over a notebook folder cannot avoid,
// done with libxml2 alone. Every page file in DIR/pages is parsed into libxml2's tree, the text of
// every paragraph (each one:T) gets "Edited " in front of it, as the benchmark macro does, and
// the page is saved over its file. Nothing else: no binding, no interpreter, no hierarchy.
//
//   page_floor DIR
//
// Prints the number of pages and paragraphs it changed. Wall time and peak memory are measured
// from outside, by the script that runs it beside the macro (scripts/bench-notebook).
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr const char* kOneNote = "http://schemas.microsoft.com/office/onenote/2010/onenote";

bool IsOneNote(const xmlNode* node, const char* name) {
    return node->type == XML_ELEMENT_NODE && node->ns != nullptr &&
           std::strcmp(reinterpret_cast<const char*>(node->ns->href), kOneNote) == 0 &&
           std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0;
}

// Replaces the content of every one:T below the node; returns how many it changed.
long EditParagraphs(xmlNode* node) {
    long edited = 0;
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
        if (child->type != XML_ELEMENT_NODE) continue;
        if (!IsOneNote(child, "T")) {
            edited += EditParagraphs(child);
            continue;
        }
        xmlChar* old = xmlNodeGetContent(child);
        std::string text = "Edited ";
        if (old != nullptr) text += reinterpret_cast<const char*>(old);
        xmlFree(old);
        while (child->children != nullptr) {
            xmlNode* gone = child->children;
            xmlUnlinkNode(gone);
            xmlFreeNode(gone);
        }
        xmlAddChild(child, xmlNewCDataBlock(child->doc, reinterpret_cast<const xmlChar*>(text.data()),
                                            static_cast<int>(text.size())));
        ++edited;
    }
    return edited;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: page_floor DIR\n");
        return 2;
    }
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(fs::path(argv[1]) / "pages")) {
        if (entry.path().extension() == ".xml") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    xmlInitParser();
    long paragraphs = 0;
    for (const fs::path& file : files) {
        xmlDoc* doc = xmlReadFile(file.c_str(), nullptr, XML_PARSE_NONET);
        if (doc == nullptr) {
            std::fprintf(stderr, "%s: not well-formed\n", file.c_str());
            return 1;
        }
        paragraphs += EditParagraphs(xmlDocGetRootElement(doc));
        if (xmlSaveFormatFileEnc(file.c_str(), doc, "UTF-8", 1) < 0) {
            std::fprintf(stderr, "%s: cannot write\n", file.c_str());
            return 1;
        }
        xmlFreeDoc(doc);
    }
    xmlCleanupParser();
    std::printf("%zu pages, %ld paragraphs\n", files.size(), paragraphs);
    return 0;
}
