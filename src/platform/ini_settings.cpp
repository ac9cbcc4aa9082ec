#include "platform/ini_settings.h"

#include "platform/application_folder.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>

#include <map>

namespace platform {
namespace {

QString UsersFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
}

class IniSettingsStore final : public SettingsStore {
public:
    explicit IniSettingsStore(const QString& folder) : folder_(folder) {}

    QString GetSetting(const QString& application, const QString& section, const QString& key,
                       const QString& fallback) override {
        const QVariant value = FileOf(application).value(Name(section, key));
        if (!value.isValid()) return fallback;
        // QSettings reads an unquoted comma, as a person may type it, as a list.
        if (value.typeId() == QMetaType::QStringList)
            return value.toStringList().join(QStringLiteral(", "));
        return value.toString();
    }

    base::Status SaveSetting(const QString& application, const QString& section, const QString& key,
                             const QString& value) override {
        StartAfreshAfterFailure(application);
        QSettings& file = FileOf(application);
        file.setValue(Name(section, key), value);
        file.sync();
        if (!HasFailed(file)) return {};
        return {base::StatusCode::kIoError,
                "The settings cannot be stored in " + file.fileName().toStdString()};
    }

private:
    // QSettings reserves the section "General", in any letter case, for keys without a group: a
    // group of that name would not be found again.
    static QString Name(const QString& section, const QString& key) {
        const bool is_general = section.compare(QLatin1String("general"), Qt::CaseInsensitive) == 0;
        return is_general ? key : section + u'/' + key;
    }

    // A damaged file is not a failure: it is written anew.
    static bool HasFailed(const QSettings& file) { return file.status() == QSettings::AccessError; }

    // QSettings never resets an error status, so its values move to a new object.
    void StartAfreshAfterFailure(const QString& application) {
        const auto found = files_.find(application);
        if (found == files_.end() || !HasFailed(*found->second)) return;
        const std::unique_ptr<QSettings> failed = std::move(found->second);
        QSettings& file = FileOf(application);
        for (const QString& key : failed->allKeys())
            file.setValue(key, failed->value(key));
    }

    QSettings& FileOf(const QString& application) {
        auto& file = files_[application];
        if (!file) {
            const QString folder = folder_.isEmpty() ? UsersFolder() : folder_;
            file = std::make_unique<QSettings>(FileIn(folder, application + QStringLiteral(".ini")),
                                               QSettings::IniFormat);
        }
        return *file;
    }

    QString folder_;  // empty: the user's configuration folder
    std::map<QString, std::unique_ptr<QSettings>> files_;
};

}  // namespace

std::unique_ptr<SettingsStore> MakeIniSettings(const QString& folder) {
    return std::make_unique<IniSettingsStore>(folder);
}

}  // namespace platform
