#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace velmora::test {

struct ProgramResult {
    int status = -1; ///< the exit status; -1: the program ended otherwise
    std::string output;
    std::string errors;
};

/// Runs the program `arguments`[0], looked for in PATH, without input, and waits for it. Its output
/// goes to `outputFile` instead of the result when that is not empty. Throws when it cannot be run.
ProgramResult runProgram(std::vector<std::string> arguments,
                         const std::filesystem::path& outputFile = {});

} // namespace velmora::test
