#pragma once

namespace velmora {
class MediaOperations;
}

/// The one name that the module of the media operations exports. They live as long as the process.
extern "C" __attribute__((visibility("default"))) velmora::MediaOperations*
velmoraMediaOperations();
