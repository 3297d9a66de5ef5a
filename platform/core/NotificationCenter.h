#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <vector>

class QObject;

namespace velmora {

/// What an observer is told.
struct Notification {
    QString name;
    const QObject* object = nullptr; ///< the sender; not owned
    QVariantMap userInfo;
};

/// Passes named notifications from controls to whoever has subscribed. Main thread only.
class NotificationCenter {
public:
    using Observer = std::function<void(const Notification&)>;

    /// The one that the program's windows and controls share; lives as long as the process.
    static NotificationCenter& defaultCenter();

    /// Subscribes for good: there is no way back, and an observer added twice is called twice.
    /// What the observer refers to must outlive the centre.
    void addObserver(const QString& name, Observer observer);
    /// Calls the observers of `name` in the order of their subscription, before it returns.
    void post(const QString& name, const QObject* object, const QVariantMap& userInfo = {}) const;

private:
    struct Subscription {
        QString name;
        Observer observer;
    };
    std::vector<Subscription> subscriptions_;
};

} // namespace velmora
