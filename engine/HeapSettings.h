#pragma once

namespace velmora {

/// Has the allocator keep a few MiB of freed memory instead of returning them to the system. For
/// the whole process; to be called before it has other threads.
void keepFreedMemory();

} // namespace velmora
