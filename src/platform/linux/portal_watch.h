// PortalWatch: asks the desktop's portal for its colour scheme. Source: the freedesktop.org
// portals, interface org.freedesktop.portal.Settings, namespace org.freedesktop.appearance.
#pragma once

#include "platform/colour_scheme.h"

#include <QtCore/QObject>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>

namespace platform {

class PortalWatch final : public QObject, public ColourSchemeWatch {
    Q_OBJECT

public:
    explicit PortalWatch(std::function<void(bool is_dark)> changed);

private Q_SLOTS:
    void TakeAnswer(const QDBusMessage& answer);
    void TakeSetting(const QString& space, const QString& key, const QDBusVariant& value);

private:
    void Ask();
    void Take(QVariant value);

    std::function<void(bool is_dark)> changed_;
};

}  // namespace platform
