#include "FirstFailure.h"

namespace velmora {
namespace {

FirstFailure*& firstFailureOfThread() {
    thread_local FirstFailure* current = nullptr;
    return current;
}

/// Without these a run goes on.
bool isFatal(Operation operation) {
    return operation != Operation::Seek && operation != Operation::OpenSoundDecoder &&
           operation != Operation::OpenNestedFile;
}

} // namespace

FirstFailure::FirstFailure() {
    firstFailureOfThread() = this;
}

FirstFailure::~FirstFailure() {
    firstFailureOfThread() = nullptr;
}

void FirstFailure::note(const Failure& failure) {
    FirstFailure* const current = firstFailureOfThread();
    if (current != nullptr && !current->failure_ && isFatal(failure.operation)) {
        current->failure_ = failure;
    }
}

} // namespace velmora
