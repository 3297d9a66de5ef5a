#pragma once

#include "FileDescriptor.h"

#include <string>

namespace velmora::test {

/// Watches how often anyone opens a file, for reading or writing. Throws when it cannot.
class OpenWatch {
public:
    explicit OpenWatch(const std::string& path);
    /// Since the last question, or the beginning.
    int openings() const;

private:
    FileDescriptor events_;
};

} // namespace velmora::test
