#include "browser/main_window_settings.h"

#include "base/status.h"
#include "catalogue/setting_names.h"

#include <algorithm>
#include <cmath>

namespace browser {
namespace {

// The largest size of a window in X11 and Windows.
constexpr int kMaxTwips = ToTwips(32767);

class Section {
public:
    explicit Section(platform::SettingsStore& store) : store_(store) {}

    QString Text(const QString& key, const QString& fallback) {
        return store_.GetSetting(catalogue::kSettingsApplication.toString(),
                                 catalogue::kSettingsSection.toString(), key, fallback);
    }
    // `fallback` if the text is not a number.
    double Number(const QString& key, double fallback) {
        bool is_number = false;
        const double number = Text(key, {}).trimmed().toDouble(&is_number);
        return is_number && std::isfinite(number) ? number : fallback;
    }
    int Size(const QString& key, int fallback) {
        const double size = Number(key, fallback);
        return size >= 1 ? static_cast<int>(std::min<double>(size, kMaxTwips)) : fallback;
    }
    bool Flag(const QString& key) {
        const QString text = Text(key, {}).trimmed();
        return text.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0 ||
               text.toDouble() != 0.0;
    }

    void Write(const QString& key, const QString& value) {
        const base::Status stored =
            store_.SaveSetting(catalogue::kSettingsApplication.toString(),
                               catalogue::kSettingsSection.toString(), key, value);
        if (failure_.ok()) failure_ = stored;
    }
    void Write(const QString& key, std::int64_t value) { Write(key, QString::number(value)); }
    void WriteFlag(const QString& key, bool value) {
        Write(key, value ? QStringLiteral("True") : QStringLiteral("False"));
    }

    // The first failure of the writes; ok if all succeeded.
    const base::Status& failure() const { return failure_; }

private:
    platform::SettingsStore& store_;
    base::Status failure_;
};

WindowState StateOf(double number) {
    if (number == 2) return WindowState::kMaximised;
    return number == 1 ? WindowState::kMinimised : WindowState::kNormal;
}

}  // namespace

MainWindowSettings ReadSettings(platform::SettingsStore& store) {
    constexpr double kMaxNode = 9e15;  // exact in a double
    Section section(store);
    MainWindowSettings settings;
    settings.window_state = StateOf(section.Number(QStringLiteral("WINDOWSTATE"), 0));
    if (settings.window_state != WindowState::kMaximised) {
        settings.width_twips = section.Size(QStringLiteral("WIDTH"), kDefaultWidthTwips);
        settings.height_twips = section.Size(QStringLiteral("HEIGHT"), kDefaultHeightTwips);
    }
    settings.direction = section.Text(QStringLiteral("DIRECTION"), settings.direction);
    settings.order_by = section.Text(QStringLiteral("ORDERBY"), settings.order_by);
    settings.last_play = static_cast<std::int64_t>(
        std::clamp(section.Number(QStringLiteral("LASTPLAY"), 0), -kMaxNode, kMaxNode));
    settings.filter = section.Text(QStringLiteral("FILTER"), settings.filter);
    settings.sub = section.Text(QStringLiteral("SUB"), {});
    settings.comparison = section.Text(QStringLiteral("OPERATOR"), settings.comparison);
    if (settings.comparison.isEmpty()) settings.comparison = QStringLiteral("=");
    settings.sound = section.Flag(QStringLiteral("SOUND"));
    settings.minimise = section.Flag(QStringLiteral("MIN"));
    settings.last_tab =
        static_cast<int>(std::clamp(section.Number(QStringLiteral("LASTTAB"), 0), 0.0, 100.0));
    settings.last_picture_folder = section.Text(QStringLiteral("LASTPICDIR"), {});
    return settings;
}

base::Status WriteSettings(platform::SettingsStore& store, const MainWindowSettings& settings) {
    Section section(store);
    section.Write(QStringLiteral("DIRECTION"), settings.direction);
    section.Write(QStringLiteral("ORDERBY"), settings.order_by);
    section.Write(QStringLiteral("OPERATOR"), settings.comparison);
    section.Write(QStringLiteral("LASTPLAY"), settings.last_play);
    section.Write(QStringLiteral("SUB"), settings.sub);
    section.Write(QStringLiteral("FILTER"), settings.filter);
    section.Write(QStringLiteral("WIDTH"), std::int64_t{settings.width_twips});
    section.Write(QStringLiteral("HEIGHT"), std::int64_t{settings.height_twips});
    section.Write(QStringLiteral("SCALEHEIGHT"), std::int64_t{settings.scale_height_twips});
    section.Write(QStringLiteral("WINDOWSTATE"),
                  std::int64_t{static_cast<int>(settings.window_state)});
    section.Write(QStringLiteral("LASTTAB"), std::int64_t{settings.last_tab});
    section.WriteFlag(QStringLiteral("SOUND"), settings.sound);
    section.WriteFlag(QStringLiteral("MIN"), settings.minimise);
    if (!settings.last_picture_folder.isEmpty())
        section.Write(QStringLiteral("LASTPICDIR"), settings.last_picture_folder);
    return section.failure();
}

}  // namespace browser
