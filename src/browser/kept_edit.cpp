#include "browser/kept_edit.h"

#include "browser/detail_tabs.h"
#include "platform/files.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>

namespace browser {
namespace {

// Far more than any notes and rules that are typed.
constexpr qint64 kMaxBytes = 64 << 20;

QString Name(std::size_t field) {
    return QString::number(field);
}

base::Status NoEdit(const QString& file) {
    return {base::StatusCode::kCorruption,
            file.toStdString() + " does not hold the edit that was kept there"};
}

}  // namespace

QString KeptEditFile(const QString& catalogue) {
    return catalogue + QStringLiteral("-edit");
}

base::Status KeepEdit(const QString& file, const KeptEdit& edit) {
    QJsonObject fields;
    for (std::size_t i = 0; i < edit.record.fields.size(); ++i)
        fields.insert(Name(i), edit.record.fields[i]);
    const QJsonObject all{{QStringLiteral("fields"), fields},
                          {QStringLiteral("pinmame"), edit.record.pin_mame},
                          {QStringLiteral("favorite"), edit.record.favorite},
                          {QStringLiteral("tab"), edit.tab}};
    return platform::SaveFile(file, QJsonDocument(all).toJson());
}

base::Result<std::optional<KeptEdit>> TakeKeptEdit(const QString& file) {
    if (!platform::FileExists(file)) return std::optional<KeptEdit>();
    ASSIGN_OR_RETURN(const QByteArray bytes, platform::ReadFile(file, kMaxBytes));
    platform::RemoveFile(file);
    const QJsonObject all = QJsonDocument::fromJson(bytes).object();
    const QJsonObject fields = all.value(QStringLiteral("fields")).toObject();
    KeptEdit edit;
    for (std::size_t i = 0; i < edit.record.fields.size(); ++i) {
        if (!fields.value(Name(i)).isString()) return NoEdit(file);
        edit.record.fields[i] = fields.value(Name(i)).toString();
    }
    edit.record.pin_mame = all.value(QStringLiteral("pinmame")).toBool();
    edit.record.favorite = all.value(QStringLiteral("favorite")).toBool();
    edit.tab = std::clamp(all.value(QStringLiteral("tab")).toInt(), 0, kDetailTabCount - 1);
    return std::optional(edit);
}

}  // namespace browser
