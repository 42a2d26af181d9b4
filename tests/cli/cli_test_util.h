// Runs the command-line tool in-process and captures what it prints.
#pragma once

#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

#include "cli/app.h"

namespace qm::cli::testing {

struct Result {
    int code;
    std::string out;
    std::string err;
};

inline Result RunTool(std::initializer_list<std::string> args) {
    std::vector<std::string> storage{"quillmark"};
    storage.insert(storage.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (auto& s : storage) argv.push_back(s.data());
    std::ostringstream out, err;
    int code = Run(static_cast<int>(argv.size()), argv.data(), out, err);
    return {code, out.str(), err.str()};
}

}  // namespace qm::cli::testing
