#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace velmora {

/// A thread that carries out tasks one after another in the order in which they were posted. Tasks
/// that are still waiting when it is destroyed are carried out first. Tasks must not throw.
class SerialWorker {
public:
    SerialWorker();
    ~SerialWorker();
    SerialWorker(const SerialWorker&) = delete;
    SerialWorker& operator=(const SerialWorker&) = delete;

    void post(std::function<void()> task);

private:
    void work();

    std::mutex mutex_;
    std::condition_variable posted_;
    std::deque<std::function<void()>> tasks_;
    bool ending_ = false;
    std::thread thread_; ///< last, so that all it uses is there before it starts
};

} // namespace velmora
