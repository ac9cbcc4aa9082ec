// The watch on a bus of its own, with a portal of the test's.
#include "platform/colour_scheme.h"

#include <gtest/gtest.h>

#include <QtCore/QProcess>
#include <QtCore/QThread>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVariant>
#include <QtTest/QTest>

#include <memory>

class FakePortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    std::atomic<uint> scheme = 0;

public Q_SLOTS:
    QDBusVariant Read(const QString& space, const QString& key) {
        const bool is_known = space == u"org.freedesktop.appearance" && key == u"color-scheme";
        const QDBusVariant value(is_known ? scheme.load() : 99U);
        return QDBusVariant(QVariant::fromValue(value));
    }
};

namespace {

const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

class ColourSchemeTest : public testing::Test {
protected:
    // The library keeps the connection of a process, so all tests share one bus.
    static void SetUpTestSuite() {
        bus = new QProcess;
        bus->start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--session"), QStringLiteral("--nofork"),
                    QStringLiteral("--print-address")});
        ASSERT_TRUE(bus->waitForReadyRead());
        address = QString::fromLatin1(bus->readLine()).trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address.toLatin1());
    }
    static void TearDownTestSuite() {
        bus->kill();
        bus->waitForFinished();
        delete bus;
    }
    void TearDown() override {
        if (thread.isRunning()) {
            PortalBus().unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
            thread.quit();
            thread.wait();
        }
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
    }
    static QDBusConnection PortalBus() {
        return QDBusConnection::connectToBus(address, QStringLiteral("portal"));
    }
    // It answers in a thread of its own, as a process of its own does.
    void StartPortal(uint scheme) {
        portal.scheme = scheme;
        portal.moveToThread(&thread);
        thread.start();
        QDBusConnection connection = PortalBus();
        ASSERT_TRUE(connection.registerObject(kPath, &portal, QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(connection.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    }
    static void Tell(const QString& space, const QString& key, uint value) {
        QDBusMessage signal =
            QDBusMessage::createSignal(kPath, QStringLiteral("org.freedesktop.portal.Settings"),
                                       QStringLiteral("SettingChanged"));
        signal << space << key << QVariant::fromValue(QDBusVariant(value));
        ASSERT_TRUE(PortalBus().send(signal));
    }
    std::unique_ptr<platform::ColourSchemeWatch> Watch() {
        return platform::WatchColourScheme([this](bool is_dark) { told.push_back(is_dark); });
    }

    static QProcess* bus;
    static QString address;
    FakePortal portal;
    QThread thread;
    std::vector<bool> told;
};

QProcess* ColourSchemeTest::bus = nullptr;
QString ColourSchemeTest::address;

TEST_F(ColourSchemeTest, ADesktopThatIsDarkSaysSoBeforeTheFirstWindow) {
    StartPortal(1);
    const auto watch = Watch();
    ASSERT_TRUE(watch);
    EXPECT_EQ(told, std::vector<bool>{true});
}

TEST_F(ColourSchemeTest, WithoutAPreferenceAndWithOneForLightWindowsAreLight) {
    StartPortal(0);
    const auto watch = Watch();
    EXPECT_EQ(told, std::vector<bool>{false});
    portal.scheme = 2;
    const auto second = Watch();
    EXPECT_EQ(told, (std::vector<bool>{false, false}));
}

TEST_F(ColourSchemeTest, AChangeIsTold) {
    StartPortal(0);
    const auto watch = Watch();
    Tell(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("accent-color"), 1);
    Tell(QStringLiteral("org.gnome.desktop"), QStringLiteral("color-scheme"), 1);
    Tell(QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), 1);
    ASSERT_TRUE(QTest::qWaitFor([this] { return told.size() > 1; }));
    EXPECT_EQ(told, (std::vector<bool>{false, true}));
}

TEST_F(ColourSchemeTest, ADesktopWithoutAPortalTellsNothing) {
    const auto watch = Watch();
    EXPECT_TRUE(watch);  // one may come
    EXPECT_TRUE(told.empty());
}

TEST_F(ColourSchemeTest, WithoutABusThereIsNothingToWatch) {
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", "/nowhere");
    EXPECT_EQ(Watch(), nullptr);
    qputenv("XDG_RUNTIME_DIR", folder);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toLatin1());
}

}  // namespace

#include "colour_scheme_test.moc"
