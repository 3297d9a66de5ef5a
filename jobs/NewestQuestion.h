#pragma once

#include "StopFlag.h"

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <utility>

namespace velmora {

/// Finds something out on a thread of its own. A new question takes the place of the one before,
/// which is given up and not answered any more. Main thread.
class NewestQuestion {
public:
    NewestQuestion() { worker_.setMaxThreadCount(1); }
    /// Gives up what is asked and waits until the thread has let go of it.
    ~NewestQuestion();
    NewestQuestion(const NewestQuestion&) = delete;
    NewestQuestion& operator=(const NewestQuestion&) = delete;

    /// Calls `find` on the thread, which ends early once the flag is raised, and `take` with its
    /// answer on this one, unless something else has been asked meanwhile.
    template <class Find, class Take> void ask(Find find, Take take) {
        start([find = std::move(find), take = std::move(take)](const StopFlag& stop) {
            return std::function<void()>([take, answer = find(stop)] { take(answer); });
        });
    }
    /// Nothing is asked any more.
    void forget();

private:
    void start(std::function<std::function<void()>(const StopFlag&)> work);

    std::shared_ptr<StopFlag> stop_; ///< of the newest question
    QObject here_;                   ///< answers come to its thread
    QThreadPool worker_;             ///< of one thread; last, so that all it uses outlives it
};

} // namespace velmora
