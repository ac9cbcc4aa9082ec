// Fakes of the platform's interfaces: they record what they were asked and answer what the test has
// laid out.
#pragma once

#include "platform/clock.h"
#include "platform/process_starter.h"
#include "platform/settings_store.h"
#include "platform/shell.h"
#include "platform/sound_player.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"
#include "platform/window_control.h"

#include <QtCore/QMap>

#include <functional>
#include <vector>

namespace test_support {

class FakePrompts final : public platform::UserPrompts {
public:
    std::vector<platform::Message> messages;
    std::vector<platform::FileDialog> dialogs;
    std::vector<QString> folder_titles;
    std::vector<QString> folder_starts;
    // Answers, first one next; when none is left: Ok or Yes, and "cancelled" for files and folders.
    std::vector<platform::MessageAnswer> answers;
    std::vector<QString> files;
    std::vector<QString> folders;

    platform::MessageAnswer Ask(const platform::Message& message) override {
        messages.push_back(message);
        if (!answers.empty()) return Take(answers);
        return message.buttons == platform::MessageButtons::kYesNo ? platform::MessageAnswer::kYes
                                                                   : platform::MessageAnswer::kOk;
    }
    QString ChooseFileToOpen(const platform::FileDialog& dialog) override {
        dialogs.push_back(dialog);
        return files.empty() ? QString() : Take(files);
    }
    QString ChooseFileToSave(const platform::FileDialog& dialog) override {
        return ChooseFileToOpen(dialog);
    }
    QString ChooseFolder(const QString& title, const QString& start = {}) override {
        folder_titles.push_back(title);
        folder_starts.push_back(start);
        return folders.empty() ? QString() : Take(folders);
    }

private:
    template <typename T>
    static T Take(std::vector<T>& queue) {
        T first = queue.front();
        queue.erase(queue.begin());
        return first;
    }
};

class FakeSettings final : public platform::SettingsStore {
public:
    QMap<QString, QString> values;  // "application/section/key"
    std::vector<QString> written;   // keys of the section GENERAL in the order of writing
    std::function<void()> on_save;
    base::Status failure;  // ok: writing succeeds

    QString GetSetting(const QString& application, const QString& section, const QString& key,
                       const QString& fallback) override {
        return values.value(Name(application, section, key), fallback);
    }
    base::Status SaveSetting(const QString& application, const QString& section, const QString& key,
                             const QString& value) override {
        if (on_save) on_save();
        if (section == QLatin1String("GENERAL")) written.push_back(key);
        if (!failure.ok()) return failure;
        values[Name(application, section, key)] = value;
        return {};
    }
    static QString Name(const QString& application, const QString& section, const QString& key) {
        return application + u'/' + section + u'/' + key;
    }
};

class FakeClock final : public platform::Clock {
public:
    QDateTime now = QDateTime(QDate(2026, 11, 20), QTime(15, 4, 5));
    QDateTime Now() override { return now; }
};

class FakeShell final : public platform::Shell {
public:
    std::vector<QString> opened;
    std::vector<QString> help_pages;
    base::Status answer;
    QString tool;
    bool has_help_viewer = true;
    bool HasHelpViewer() override { return has_help_viewer; }
    base::Status Open(const QString& target) override {
        opened.push_back(target);
        return answer;
    }
    base::Status OpenHelp(const QString& file, const QString& page) override {
        opened.push_back(file);
        help_pages.push_back(page);
        return answer;
    }
    QString SystemInformationTool() override { return tool; }
};

class FakeSound final : public platform::SoundPlayer {
public:
    std::vector<QString> played;
    std::function<void()> on_play;  // while the sound is heard
    void PlaySynchronously(const QString& wave_file) override {
        played.push_back(wave_file);
        if (on_play) on_play();
    }
};

class FakeProcessStarter final : public platform::ProcessStarter {
public:
    std::vector<QString> started;
    std::vector<QString> tools;
    base::Status failure;  // ok: starting succeeds
    base::Result<std::int64_t> Start(const QString& command_line) override {
        started.push_back(command_line);
        if (!failure.ok()) return failure;
        return std::int64_t{4711};
    }
    base::Result<std::int64_t> StartTool(const QString& program) override {
        tools.push_back(program);
        if (!failure.ok()) return failure;
        return std::int64_t{4712};
    }
};

// `titles` holds the windows there are, as class and title.
class FakeWindows final : public platform::WindowControl {
public:
    std::vector<std::pair<QString, QString>> windows;
    std::vector<std::pair<QString, QString>> searched;
    std::vector<QString> closed;  // titles
    std::function<void()> on_find;

    std::optional<platform::WindowHandle> Find(const QString& window_class,
                                               const QString& title) override {
        searched.emplace_back(window_class, title);
        if (on_find) on_find();
        for (std::size_t i = 0; i < windows.size(); ++i)
            if (windows[i].first == window_class && windows[i].second == title)
                return platform::WindowHandle{i + 1};
        return std::nullopt;
    }
    void RequestClose(platform::WindowHandle window) override {
        closed.push_back(windows.at(static_cast<std::size_t>(window) - 1).second);
    }
};

class FakeEvents final : public platform::UserEvents {
public:
    int rounds = 0;
    int waited_ms = 0;
    std::function<void()> on_round;
    void ProcessEvents() override {
        ++rounds;
        if (on_round) on_round();
    }
    void ProcessEventsFor(int milliseconds) override {
        waited_ms += milliseconds;
        ProcessEvents();
    }
};

class FakeStatusDisplay final : public platform::StatusDisplay {
public:
    std::vector<QString> shown;
    int unloads = 0;
    void Show(const QString& text) override { shown.push_back(text); }
    void Unload() override { ++unloads; }
};

}  // namespace test_support
