#include "platform/colour_scheme.h"

#include "platform/linux/portal_watch.h"

#include <QtCore/QFileInfo>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusError>

#include <utility>

namespace platform {
namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kSpace = QStringLiteral("org.freedesktop.appearance");
const QString kKey = QStringLiteral("color-scheme");

// Of the setting: 0 no preference, 1 dark, 2 light.
constexpr uint kPrefersDark = 1;

// So long the first window waits for a portal that is just being started; one that runs answers
// within a few milliseconds.
constexpr int kFirstAnswerMs = 300;

// Asked for before, as the library would start a bus of its own.
bool HasSessionBus() {
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) return true;
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !folder.isEmpty() && QFileInfo::exists(folder + QStringLiteral("/bus"));
}

}  // namespace

PortalWatch::PortalWatch(std::function<void(bool is_dark)> changed) : changed_(std::move(changed)) {
    qRegisterMetaType<QDBusVariant>();  // a slot with one is not found before
    [[maybe_unused]] const bool is_connected = QDBusConnection::sessionBus().connect(
        kService, kPath, kInterface, QStringLiteral("SettingChanged"), this,
        SLOT(TakeSetting(QString, QString, QDBusVariant)));
    Q_ASSERT(is_connected);
    Ask();
}

void PortalWatch::Ask() {
    QDBusMessage question =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
    question << kSpace << kKey;
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QDBusMessage answer = bus.call(question, QDBus::Block, kFirstAnswerMs);
    const bool is_late = QDBusError(answer).type() == QDBusError::NoReply;
    if (is_late)
        bus.callWithCallback(question, this, SLOT(TakeAnswer(QDBusMessage)));
    else
        TakeAnswer(answer);
}

// A desktop without the setting answers with an error; it has no wish.
void PortalWatch::TakeAnswer(const QDBusMessage& answer) {
    if (answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty())
        Take(answer.arguments().constFirst());
}

void PortalWatch::TakeSetting(const QString& space, const QString& key, const QDBusVariant& value) {
    if (space == kSpace && key == kKey) Take(value.variant());
}

// The number is wrapped once or twice.
void PortalWatch::Take(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    changed_(value.toUInt() == kPrefersDark);
}

std::unique_ptr<ColourSchemeWatch> WatchColourScheme(std::function<void(bool is_dark)> changed) {
    if (!HasSessionBus() || !QDBusConnection::sessionBus().isConnected()) return nullptr;
    return std::make_unique<PortalWatch>(std::move(changed));
}

}  // namespace platform
