#include "SerialWorker.h"

#include <utility>

namespace velmora {

SerialWorker::SerialWorker() : thread_([this] { work(); }) {}

SerialWorker::~SerialWorker() {
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
    }
    posted_.notify_one();
    thread_.join();
}

void SerialWorker::post(std::function<void()> task) {
    {
        const std::scoped_lock lock(mutex_);
        tasks_.push_back(std::move(task));
    }
    posted_.notify_one();
}

void SerialWorker::work() {
    std::unique_lock lock(mutex_);
    for (;;) {
        posted_.wait(lock, [this] { return !tasks_.empty() || ending_; });
        if (tasks_.empty()) {
            return;
        }
        const auto task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

} // namespace velmora
