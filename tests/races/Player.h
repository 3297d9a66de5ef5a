#pragma once

#include "Action.h"
#include "Watchdog.h"

#include <QObject>

namespace velmora::test {

/// Uses the windows at random from the event loop, also from those of modal windows, and answers
/// whatever comes up. Main thread.
class Player : public QObject {
    Q_OBJECT

public:
    /// All of these outlive the player.
    Player(Round& round, Watchdog& watchdog) : round_(round), watchdog_(watchdog) {}

    /// Runs the application for so many events, then quits it, whatever is on screen by then.
    void play(int events);
    /// The most event loops within each other so far.
    int depth() const { return depth_; }
    /// Whether the application has quit when asked to.
    bool hasQuit() const { return quits_ > 0 && quits_ < kMostQuits; }

private:
    static constexpr int kMostQuits = 100;

    void step();
    void act();
    void quit();
    void quitFromTwoFiles();
    void perform(const Action& action);

    Round& round_;
    Watchdog& watchdog_;
    int left_ = 0;
    int quits_ = 0;
    int depth_ = 0;
    int busyLevel_ = 0; ///< the event loop that the event under way has come from
};

} // namespace velmora::test
