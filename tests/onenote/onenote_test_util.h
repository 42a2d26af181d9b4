// Helpers of the OneNote tests: the real OneNote samples shipped beside the repository, schema
// validation with xmllint, a canonical comparison of documents, and scratch folders.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace qm::onenote::testing {

// ../shared/onenote beside the repository; empty when it is not there.
std::filesystem::path ReferenceDir();
// The text of a reference sample, decoded, with the 2013 namespace rewritten to 2010.
std::u16string ReadSample(const std::filesystem::path& file);
std::filesystem::path SampleNotebookDir();  // examples/notebook in the repository

// A fresh, empty folder for one test.
std::filesystem::path ScratchDir(const std::string& name);

// Validation of a file against the OneNote 2010 schema with the xmllint tool; `available` is
// false when the tool (or the schema) is missing. On failure `output` holds xmllint's complaint.
struct Validation {
    bool available = false;
    bool valid = false;
    std::string output;
};
Validation ValidateFile(const std::filesystem::path& file);
Validation ValidateText(std::u16string_view document);

// A document reduced to what it means: elements (namespace and local name), attributes (namespace
// declarations left out), and text (CDATA and text alike; blank text between elements dropped).
struct CanonicalNode {
    std::string name;  // "{namespace}local", or "#text"
    std::map<std::string, std::string> attributes;
    std::string text;
    std::vector<CanonicalNode> children;
};
CanonicalNode Canonical(std::u16string_view document);

// Differences between a document and what was written back from it: the same elements in the
// same order with the same text and attributes, except that an attribute may be left out when it
// held its schema default. Empty when the two agree.
std::vector<std::string> Differences(const CanonicalNode& original, const CanonicalNode& written);

}  // namespace qm::onenote::testing
