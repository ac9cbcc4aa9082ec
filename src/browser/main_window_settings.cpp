#include "browser/main_window_settings.h"

#include "base/status.h"
#include "catalogue/program_settings.h"

#include <algorithm>
#include <cmath>

namespace browser {
namespace {

// Keys in the settings store.
namespace keys {
constexpr QStringView kWindowState = u"WINDOWSTATE";
constexpr QStringView kWidth = u"WIDTH";
constexpr QStringView kHeight = u"HEIGHT";
constexpr QStringView kScaleHeight = u"SCALEHEIGHT";
constexpr QStringView kDirection = u"DIRECTION";
constexpr QStringView kOrderBy = u"ORDERBY";
constexpr QStringView kLastPlay = u"LASTPLAY";
constexpr QStringView kFilter = u"FILTER";
constexpr QStringView kSub = u"SUB";
constexpr QStringView kOperator = u"OPERATOR";
constexpr QStringView kSound = u"SOUND";
constexpr QStringView kMin = u"MIN";
constexpr QStringView kLastTab = u"LASTTAB";
constexpr QStringView kLastPicDir = u"LASTPICDIR";
}  // namespace keys

// The largest size of a window in X11 and Windows.
constexpr int kMaxTwips = ToTwips(32767);

class Section {
public:
    explicit Section(platform::SettingsStore& store) : store_(store) {}

    QString Text(QStringView key, const QString& fallback) {
        return catalogue::ReadSetting(store_, key, fallback);
    }
    // `fallback` if the text is not a number.
    double Number(QStringView key, double fallback) {
        bool is_number = false;
        const double number = Text(key, {}).trimmed().toDouble(&is_number);
        return is_number && std::isfinite(number) ? number : fallback;
    }
    int Size(QStringView key, int fallback) {
        const double size = Number(key, fallback);
        return size >= 1 ? static_cast<int>(std::min<double>(size, kMaxTwips)) : fallback;
    }
    bool Flag(QStringView key) {
        const QString text = Text(key, {}).trimmed();
        return text.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0 ||
               text.toDouble() != 0.0;
    }

    void Write(QStringView key, const QString& value) {
        const base::Status stored = catalogue::WriteSetting(store_, key, value);
        if (failure_.ok()) failure_ = stored;
    }
    void Write(QStringView key, std::int64_t value) { Write(key, QString::number(value)); }
    void WriteFlag(QStringView key, bool value) {
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
    settings.window_state = StateOf(section.Number(keys::kWindowState, 0));
    if (settings.window_state != WindowState::kMaximised) {
        settings.width_twips = section.Size(keys::kWidth, kDefaultWidthTwips);
        settings.height_twips = section.Size(keys::kHeight, kDefaultHeightTwips);
    }
    settings.direction = section.Text(keys::kDirection, settings.direction);
    settings.order_by = section.Text(keys::kOrderBy, settings.order_by);
    settings.last_play = static_cast<std::int64_t>(
        std::clamp(section.Number(keys::kLastPlay, 0), -kMaxNode, kMaxNode));
    settings.filter = section.Text(keys::kFilter, settings.filter);
    settings.sub = section.Text(keys::kSub, {});
    settings.comparison = section.Text(keys::kOperator, settings.comparison);
    if (settings.comparison.isEmpty()) settings.comparison = QStringLiteral("=");
    settings.sound = section.Flag(keys::kSound);
    settings.minimise = section.Flag(keys::kMin);
    settings.last_tab = static_cast<int>(std::clamp(section.Number(keys::kLastTab, 0), 0.0, 100.0));
    settings.last_picture_folder = section.Text(keys::kLastPicDir, {});
    return settings;
}

base::Status WriteSettings(platform::SettingsStore& store, const MainWindowSettings& settings) {
    Section section(store);
    section.Write(keys::kDirection, settings.direction);
    section.Write(keys::kOrderBy, settings.order_by);
    section.Write(keys::kOperator, settings.comparison);
    section.Write(keys::kLastPlay, settings.last_play);
    section.Write(keys::kSub, settings.sub);
    section.Write(keys::kFilter, settings.filter);
    section.Write(keys::kWidth, std::int64_t{settings.width_twips});
    section.Write(keys::kHeight, std::int64_t{settings.height_twips});
    section.Write(keys::kScaleHeight, std::int64_t{settings.scale_height_twips});
    section.Write(keys::kWindowState, std::int64_t{static_cast<int>(settings.window_state)});
    section.Write(keys::kLastTab, std::int64_t{settings.last_tab});
    section.WriteFlag(keys::kSound, settings.sound);
    section.WriteFlag(keys::kMin, settings.minimise);
    if (!settings.last_picture_folder.isEmpty())
        section.Write(keys::kLastPicDir, settings.last_picture_folder);
    return section.failure();
}

}  // namespace browser
