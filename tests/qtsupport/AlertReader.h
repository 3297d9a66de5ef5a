#pragma once

#include <QStringList>
#include <QTimer>

#include <functional>

namespace velmora::test {

/// Answers alerts as a user does, with their default button, and keeps what they said.
class AlertReader {
public:
    AlertReader();

    /// Whether the alert may be answered already.
    std::function<bool()> mayAnswer = [] { return true; };
    QStringList messages;
    QStringList sentences; ///< under them; empty where there is none
    QStringList titles;
    QStringList buttons; ///< the labels of each, joined

private:
    void answer();

    QTimer timer_;
};

} // namespace velmora::test
