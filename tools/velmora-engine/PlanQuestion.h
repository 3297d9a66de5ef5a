#pragma once

#include "Job.h"

#include <optional>
#include <span>
#include <string>

/// What an exact copy would do, as it is asked on the command line.
class PlanQuestion {
public:
    /// FILE START END [OUT]; without OUT, into a file of the same kind. Nothing for other
    /// arguments.
    static std::optional<PlanQuestion> of(std::span<char*> arguments);
    /// Prints the answer as a JSON object; the program's exit status.
    int answer() const;

private:
    std::string path_;
    velmora::Window window_;
    std::string output_;
};
