// RealPlayFixture: a launcher with the system's own windows, processes and display, a real main
// window, and a stand-in simulator.
#pragma once

#include "catalogue/quoting.h"
#include "launcher/play_table.h"
#include "support/catalogue_fixture.h"
#include "support/simulator_run.h"

#include <QtCore/QDir>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <filesystem>

namespace test_support {

// Lets the simulator show its window before the watch begins: the launcher does not wait for it,
// and a test must not depend on which of the two is faster.
class PatientStatus final : public platform::StatusDisplay {
public:
    explicit PatientStatus(platform::WindowControl& windows) : windows_(windows) {}
    QString awaited_title;  // empty: waits for none

    void Show(const QString&) override {}
    void Unload() override {
        if (awaited_title.isEmpty()) return;
        EXPECT_TRUE(WaitFor(
            [&] { return windows_.Find(QStringLiteral("VPinball"), awaited_title).has_value(); },
            std::chrono::seconds(60)));
    }

private:
    platform::WindowControl& windows_;
};

class QtEvents final : public platform::UserEvents {
public:
    int rounds = 0;
    std::function<void()> on_round;
    void ProcessEvents() override {
        QApplication::processEvents();
        ++rounds;
        if (on_round) on_round();
    }
};

class RealPlayFixture : public CatalogueFixture {
protected:
    ~RealPlayFixture() override { std::filesystem::current_path(before_); }

    void SetUp() override {
        CatalogueFixture::SetUp();
        tables_ = folder.filePath(QStringLiteral("my tables ä"));
        ASSERT_TRUE(QDir().mkpath(tables_));
        main_window_.resize(400, 300);
        main_window_.show();
        ASSERT_TRUE(ProcessUntil([this] { return main_window_.isVisible() && IsListed(); }));
    }

    static QString Playing(const QString& name) {
        return QStringLiteral("Visual Pinball - [%1*]").arg(name);
    }
    static QString Ended(const QString& name) {
        return QStringLiteral("Visual Pinball - [%1]").arg(name);
    }
    QString TablePath(const QString& name) const {
        return tables_ + u'/' + name + QStringLiteral(".vpt");
    }
    // Adds the table to the catalogue and plays it.
    void Play(const QString& name) {
        QFile file(TablePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("twelve bytes");
        file.close();
        Execute(QStringLiteral("insert into Tables (DisplayName, FileName) values ('%1', '%2')")
                    .arg(catalogue::QuoteSql(name), catalogue::QuoteSql(TablePath(name))));
        status_.awaited_title = waits_ ? Playing(name) : QString();
        launcher_.PlayTable(TablePath(name), name, Id(name));
    }
    qint64 Id(const QString& name) {
        return Scalar(QStringLiteral("select ID from Tables where DisplayName = '%1'")
                          .arg(catalogue::QuoteSql(name)))
            .toLongLong();
    }
    QString TimesPlayed(const QString& name) {
        return Scalar(QStringLiteral("select TimesPlayed from Tables where DisplayName = '%1'")
                          .arg(catalogue::QuoteSql(name)));
    }
    bool HasWindow(const QString& title) {
        return windows_->Find(QStringLiteral("VPinball"), title).has_value();
    }
    template <typename Condition>
    static bool ProcessUntil(Condition condition) {
        return WaitFor([&] {
            QApplication::processEvents();
            return condition();
        });
    }

    QString tables_;
    bool waits_ = true;
    SimulatorRun run_;
    QWidget main_window_;
    int settings_shown_ = 0;
    std::unique_ptr<platform::WindowControl> windows_ = platform::MakeWindowControl();
    std::unique_ptr<platform::ProcessStarter> programs_ = platform::MakeProcessStarter();
    FakeSound sounds_;
    QtEvents events_;
    PatientStatus status_{*windows_};
    launcher::Launcher launcher_{
        {catalogue, *windows_, *programs_, sounds_, events_, status_, prompts},
        {[this] { return main_window_.windowState(); }, [this] { main_window_.showMinimized(); },
         [this](Qt::WindowStates state) { main_window_.setWindowState(state); },
         [this] { ++settings_shown_; }}};

private:
    // The window manager knows the main window: only then does it follow what is asked of the
    // window.
    bool IsListed() const { return main_window_.windowHandle()->isExposed(); }

    std::filesystem::path before_ = std::filesystem::current_path();
};

}  // namespace test_support
