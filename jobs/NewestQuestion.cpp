#include "NewestQuestion.h"

namespace velmora {

NewestQuestion::~NewestQuestion() {
    forget();
    worker_.waitForDone();
}

void NewestQuestion::forget() {
    if (stop_) {
        *stop_ = 1;
        stop_.reset();
    }
}

void NewestQuestion::start(std::function<std::function<void()>(const StopFlag&)> work) {
    forget();
    stop_ = std::make_shared<StopFlag>(StopFlag::value_type{0});
    worker_.start([this, stop = stop_, work = std::move(work)] {
        if (isRaised(stop.get())) {
            return;
        }
        QMetaObject::invokeMethod(
            &here_,
            [this, stop, answer = work(*stop)] {
                if (stop == stop_) {
                    answer();
                }
            },
            Qt::QueuedConnection);
    });
}

} // namespace velmora
