#pragma once

#include "FileDescriptor.h"

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace velmora::test {

/// A program that runs beside the test, which reads what it writes to standard error meanwhile.
class StartedProgram {
public:
    /// Standard output goes to `outputFile`.
    StartedProgram(const std::vector<std::string>& arguments,
                   const std::filesystem::path& outputFile);
    /// Waits for the program.
    ~StartedProgram();
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    /// The next line of standard error, without its end; nothing when there is none.
    std::optional<std::string> readErrorLine();
    void send(int signal);
    /// The exit status; -1: the program ended otherwise.
    int wait();

private:
    pid_t process_ = -1; ///< -1: has been waited for
    FileDescriptor errors_;
};

} // namespace velmora::test
