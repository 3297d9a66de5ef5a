#include "OpenWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace velmora::test {

// Closing is watched as well: without it, one opening after another would be told as one.
OpenWatch::OpenWatch(const std::string& path) : events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (inotify_add_watch(events_.get(), path.c_str(), IN_OPEN | IN_CLOSE) < 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
}

int OpenWatch::openings() const {
    int count = 0;
    inotify_event event{}; // of a file that is watched itself, so that no name follows
    while (::read(events_.get(), &event, sizeof event) == sizeof event) {
        count += (event.mask & IN_OPEN) != 0 ? 1 : 0;
    }
    return count;
}

} // namespace velmora::test
