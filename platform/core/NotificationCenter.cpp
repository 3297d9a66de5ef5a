#include "NotificationCenter.h"

#include <utility>

namespace velmora {

NotificationCenter& NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return center;
}

void NotificationCenter::addObserver(const QString& name, Observer observer) {
    subscriptions_.push_back({name, std::move(observer)});
}

void NotificationCenter::post(const QString& name, const QObject* object,
                              const QVariantMap& userInfo) const {
    const Notification notification{name, object, userInfo};
    // An observer may subscribe others while it is being called; those wait for the next post.
    const std::vector<Subscription> subscriptions = subscriptions_;
    for (const Subscription& subscription : subscriptions) {
        if (subscription.name == name) {
            subscription.observer(notification);
        }
    }
}

} // namespace velmora
