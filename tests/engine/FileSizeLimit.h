#pragma once

#include <sys/resource.h>

namespace velmora::test {

/// While one lives, no file of this process can grow beyond a size; the signal that the system
/// would send is ignored.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

} // namespace velmora::test
