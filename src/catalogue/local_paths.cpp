#include "catalogue/local_paths.h"

#include "catalogue/program_settings.h"
#include "catalogue/texts.h"
#include "platform/files.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <mutex>
#include <utility>

namespace catalogue {
namespace {

constexpr QStringView kPathSection = u"PATHS";
// A JSON array with an object for each pair.
constexpr QStringView kMapKey = u"MAP";
constexpr QLatin1String kStored("stored");
constexpr QLatin1String kHere("here");

// Escaped letters included.
constexpr qsizetype kMaxMapText = kMaxPathPairs * 2 * kMaxFolderLength * 6;

QString TextOf(const std::vector<PathPair>& pairs) {
    QJsonArray all;
    for (const PathPair& pair : pairs)
        all.append(QJsonObject{{kStored, pair.stored}, {kHere, pair.here}});
    return QString::fromUtf8(QJsonDocument(all).toJson(QJsonDocument::Compact));
}

base::Result<std::vector<PathPair>> PairsOf(const QString& text) {
    const base::Status wrong(
        base::StatusCode::kCorruption,
        CatalogueTexts::tr("The path map in the settings cannot be read.").toStdString());
    if (text.size() > kMaxMapText) return wrong;
    const QJsonDocument all = QJsonDocument::fromJson(text.toUtf8());
    if (!all.isArray()) return wrong;
    std::vector<PathPair> pairs;
    for (const QJsonValue each : all.array())
        pairs.push_back({each[kStored].toString(), each[kHere].toString()});
    if (!CheckPairs(pairs).ok()) return wrong;
    return pairs;
}

}  // namespace

struct LocalPaths::State {
    std::mutex mutex;
    std::shared_ptr<const PathMap> map = std::make_shared<PathMap>();
};

LocalPaths::LocalPaths() : state_(std::make_shared<State>()) {}

void LocalPaths::Use(PathMap map) {
    auto used = std::make_shared<const PathMap>(std::move(map));
    const std::lock_guard lock(state_->mutex);
    state_->map = std::move(used);
}

std::shared_ptr<const PathMap> LocalPaths::map() const {
    const std::lock_guard lock(state_->mutex);
    return state_->map;
}

QString LocalPaths::Of(const QString& stored) const {
    QString local = map()->Local(stored);
    const bool is_mapped = local != stored;
    return is_mapped && !platform::FileExists(local) && platform::FileExists(stored) ? stored
                                                                                     : local;
}

QString LocalPaths::Stored(const QString& local) const {
    return map()->Stored(local);
}

base::Result<std::vector<PathPair>> ReadPathPairs(platform::SettingsStore& settings) {
    const QString text = ReadOwnSetting(settings, kPathSection, kMapKey);
    if (text.isEmpty()) return std::vector<PathPair>();
    return PairsOf(text);
}

base::Status WritePathPairs(platform::SettingsStore& settings, const std::vector<PathPair>& pairs) {
    RETURN_IF_ERROR(CheckPairs(pairs));
    return WriteOwnSetting(settings, kPathSection, kMapKey, TextOf(pairs));
}

}  // namespace catalogue
