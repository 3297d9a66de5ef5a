#include "FileDescriptor.h"

#include <unistd.h>

namespace velmora {

int FileDescriptor::close() {
    const int descriptor = std::exchange(descriptor_, -1);
    return descriptor >= 0 ? ::close(descriptor) : 0;
}

} // namespace velmora
