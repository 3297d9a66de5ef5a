// The entry of the module that holds the operations for programs that load them later.

#include "MediaModule.h"

#include "MediaOperations.h"

velmora::MediaOperations* velmoraMediaOperations() {
    return &velmora::mediaOperations();
}
