#include "onenote_test_util.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "core/text.h"
#include "xml/file_io.h"
#include "xml/xml_reader.h"

namespace qm::onenote::testing {

namespace fs = std::filesystem;

namespace {

std::string ReadAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

bool IsBlank(const std::string& text) { return text.find_first_not_of(" \t\r\n") == std::string::npos; }

CanonicalNode ReadNode(xml::XmlReader& reader) {
    CanonicalNode node;
    node.name = reader.namespaceUri() == u"http://schemas.microsoft.com/office/onenote/2010/onenote"
                    ? "one:" + ToUtf8(reader.localName())
                    : "{" + ToUtf8(reader.namespaceUri()) + "}" + ToUtf8(reader.localName());
    if (reader.MoveToFirstAttribute()) {
        do {
            if (reader.namespaceUri() == xml::kXmlnsNamespace) continue;
            std::string name = ToUtf8(reader.localName());
            if (!reader.namespaceUri().empty()) name = "{" + ToUtf8(reader.namespaceUri()) + "}" + name;
            node.attributes[name] = ToUtf8(reader.value());
        } while (reader.MoveToNextAttribute());
        reader.MoveToElement();
    }
    if (reader.isEmptyElement()) return node;
    while (reader.Read()) {
        switch (reader.nodeType()) {
            case xml::NodeType::Element: node.children.push_back(ReadNode(reader)); break;
            case xml::NodeType::Text:
            case xml::NodeType::CDATA:
            case xml::NodeType::Whitespace:
                if (node.children.empty() || node.children.back().name != "#text") {
                    node.children.push_back(CanonicalNode{"#text", {}, {}, {}});
                }
                node.children.back().text += ToUtf8(reader.value());
                break;
            case xml::NodeType::EndElement: {
                const bool hasElements = std::any_of(node.children.begin(), node.children.end(),
                                                     [](const CanonicalNode& c) { return c.name != "#text"; });
                if (hasElements) {
                    std::erase_if(node.children,
                                  [](const CanonicalNode& c) { return c.name == "#text" && IsBlank(c.text); });
                }
                std::erase_if(node.children, [](const CanonicalNode& c) { return c.name == "#text" && c.text.empty(); });
                return node;
            }
            default: break;
        }
    }
    return node;
}

// The attributes the schema lets a writer leave out: those with a default, at that default, and
// booleans without one, at false.
const std::map<std::string, std::set<std::string>>& SchemaDefaults() {
    static const std::map<std::string, std::set<std::string>> defaults = [] {
        std::map<std::string, std::set<std::string>> result;
        const fs::path xsd = ReferenceDir() / "xsd" / "onenote-2010.xsd";
        if (!fs::exists(xsd)) return result;
        const std::u16string text = io::DecodeXmlBytes(ReadAll(xsd));
        auto reader = xml::CreateStringXmlReader(text);
        while (reader->Read()) {
            if (reader->nodeType() != xml::NodeType::Element || reader->localName() != u"attribute") continue;
            std::string name, def, type;
            if (reader->MoveToFirstAttribute()) {
                do {
                    if (reader->localName() == u"name") name = ToUtf8(reader->value());
                    if (reader->localName() == u"default") def = ToUtf8(reader->value());
                    if (reader->localName() == u"type") type = ToUtf8(reader->value());
                } while (reader->MoveToNextAttribute());
                reader->MoveToElement();
            }
            if (!def.empty()) result[name].insert(def);
            if (def.empty() && type == "xsd:boolean") result[name].insert("false");
        }
        return result;
    }();
    return defaults;
}

std::string NormalBool(const std::string& value) { return value == "True" || value == "1" ? "true" : value; }

void Compare(const CanonicalNode& a, const CanonicalNode& b, const std::string& path, std::vector<std::string>& out) {
    const std::string here = path + "/" + a.name;
    if (a.name != b.name) {
        out.push_back(here + ": written as " + b.name);
        return;
    }
    if (a.text != b.text) out.push_back(here + ": text \"" + a.text + "\" written as \"" + b.text + "\"");
    for (const auto& [name, value] : a.attributes) {
        const auto written = b.attributes.find(name);
        if (written == b.attributes.end()) {
            const auto defaults = SchemaDefaults().find(name);
            if (defaults == SchemaDefaults().end() || !defaults->second.contains(NormalBool(value))) {
                out.push_back(here + ": attribute " + name + "=\"" + value + "\" lost");
            }
        } else if (NormalBool(written->second) != NormalBool(value)) {
            out.push_back(here + ": attribute " + name + "=\"" + value + "\" written as \"" + written->second + "\"");
        }
    }
    for (const auto& [name, value] : b.attributes) {
        if (!a.attributes.contains(name)) out.push_back(here + ": attribute " + name + " added");
    }
    const std::size_t n = std::min(a.children.size(), b.children.size());
    for (std::size_t i = 0; i < n; ++i) Compare(a.children[i], b.children[i], here, out);
    if (a.children.size() != b.children.size()) {
        out.push_back(here + ": " + std::to_string(a.children.size()) + " children written as " +
                      std::to_string(b.children.size()));
    }
}

}  // namespace

fs::path ReferenceDir() {
    const fs::path dir = fs::path(QUILLMARK_SOURCE_DIR) / ".." / "shared" / "onenote";
    return fs::exists(dir / "samples") ? dir : fs::path();
}

std::u16string ReadSample(const fs::path& file) {
    std::u16string text = io::DecodeXmlBytes(ReadAll(file));
    const std::u16string from = u"/office/onenote/2013/onenote", to = u"/office/onenote/2010/onenote";
    for (std::size_t at = text.find(from); at != std::u16string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

fs::path SampleNotebookDir() { return fs::path(QUILLMARK_SOURCE_DIR) / "examples" / "notebook"; }

// Tests run as separate processes side by side, so each test's scratch folders sit under its own name.
static fs::path ScratchRoot() {
    fs::path root = fs::temp_directory_path() / "quillmark-onenote-tests";
    if (const auto* test = ::testing::UnitTest::GetInstance()->current_test_info())
        root /= std::string(test->test_suite_name()) + "." + test->name();
    return root;
}

fs::path ScratchDir(const std::string& name) {
    const fs::path dir = ScratchRoot() / name;
    fs::remove_all(dir);
    fs::create_directories(dir);
    return dir;
}

Validation ValidateFile(const fs::path& file) {
    Validation result;
    const fs::path xsd = ReferenceDir() / "xsd" / "onenote-2010.xsd";
    if (ReferenceDir().empty() || std::system("xmllint --version > /dev/null 2>&1") != 0) return result;
    result.available = true;
    const fs::path log = ScratchRoot() / "xmllint.log";
    fs::create_directories(log.parent_path());
    const std::string command =
        "xmllint --noout --schema '" + xsd.string() + "' '" + file.string() + "' > '" + log.string() + "' 2>&1";
    result.valid = std::system(command.c_str()) == 0;
    result.output = ReadAll(log);
    fs::remove(log);
    return result;
}

Validation ValidateText(std::u16string_view document) {
    const fs::path file = ScratchDir("validate") / "document.xml";
    std::ofstream(file, std::ios::binary) << ToUtf8(document);
    return ValidateFile(file);
}

CanonicalNode Canonical(std::u16string_view document) {
    auto reader = xml::CreateStringXmlReader(document, xml::ReaderOptions{.acceptIllegalCharacters = true});
    while (reader->Read()) {
        if (reader->nodeType() == xml::NodeType::Element) return ReadNode(*reader);
    }
    return {};
}

std::vector<std::string> Differences(const CanonicalNode& original, const CanonicalNode& written) {
    std::vector<std::string> out;
    Compare(original, written, "", out);
    return out;
}

}  // namespace qm::onenote::testing
