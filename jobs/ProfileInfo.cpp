#include "ProfileInfo.h"

#include "PropertyList.h"

#include <QVariant>

#include <algorithm>
#include <cmath>
#include <utility>

namespace velmora {
namespace {

template <typename Value> bool holds(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<Value>();
}

/// Whole numbers keep their lower 32 bits, others lose their fraction.
std::optional<std::int32_t> asNumber(const QVariant& value) {
    if (holds<qlonglong>(value)) {
        return static_cast<std::int32_t>(value.toLongLong());
    }
    constexpr double kLimit = 2147483648.0;
    if (holds<double>(value) && std::abs(value.toDouble()) < kLimit) {
        return static_cast<std::int32_t>(value.toDouble());
    }
    return std::nullopt;
}

std::optional<QString> asText(const QVariant& value) {
    return holds<QString>(value) ? std::optional(value.toString()) : std::nullopt;
}

/// What is no text is an empty one: the choices after it keep their positions.
QStringList asTexts(const QVariant& value) {
    QStringList texts;
    for (const QVariant& item : value.toList()) {
        texts.append(asText(item).value_or(QString()));
    }
    return texts;
}

ProfileParameter parameterFrom(const QVariantMap& entry) {
    return {.name = asText(entry.value("name")).value_or(QString()),
            .arrayValue = asTexts(entry.value("arrayValue")),
            .index = asNumber(entry.value("index")).value_or(0)};
}

Profile profileFrom(const QVariantMap& dictionary) {
    Profile profile{.index = asNumber(dictionary.value("index")),
                    .name = asText(dictionary.value("name")),
                    .setInfo = {}};
    for (const QVariant& entry : dictionary.value("setInfo").toList()) {
        if (holds<QVariantMap>(entry)) {
            profile.setInfo.push_back(parameterFrom(entry.toMap()));
        }
    }
    return profile;
}

} // namespace

std::int32_t ProfileParameter::position() const {
    return index >= 0 && std::cmp_less(index, arrayValue.size()) ? index : 0;
}

const ProfileParameter* Profile::parameter(const QString& wanted) const {
    const auto found = std::ranges::find(setInfo, wanted, &ProfileParameter::name);
    return found != setInfo.end() ? &*found : nullptr;
}

ProfileInfo& ProfileInfo::initWithPath(const QString& path) {
    profiles_.clear();
    for (const QVariant& item : readPropertyList(path).toList()) {
        if (holds<QVariantMap>(item)) {
            profiles_.push_back(profileFrom(item.toMap()));
        }
    }
    return *this;
}

const Profile* ProfileInfo::getProfileByID(std::int32_t id) const {
    const auto found = std::ranges::find(profiles_, std::optional(id), &Profile::index);
    return found != profiles_.end() ? &*found : nullptr;
}

const Profile* ProfileInfo::getProfileByName(const QString& name) const {
    const auto found = std::ranges::find(profiles_, std::optional(name), &Profile::name);
    return found != profiles_.end() ? &*found : nullptr;
}

QStringList ProfileInfo::getAllProfileName() const {
    QStringList names;
    for (const Profile& profile : profiles_) {
        if (profile.name) {
            names.append(*profile.name);
        }
    }
    return names;
}

} // namespace velmora
