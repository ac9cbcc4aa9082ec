#include "platform/linux/help_viewer.h"

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>

namespace platform {
namespace {

constexpr int kAnswerTimeoutMs = 1000;

}  // namespace

QString DefaultHelpViewer() {
    const QString asker = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    if (asker.isEmpty()) return {};
    QProcess process;
    process.start(asker, {QStringLiteral("query"), QStringLiteral("default"),
                          QStringLiteral("application/vnd.ms-htmlhelp")});
    if (!process.waitForFinished(kAnswerTimeoutMs)) {
        process.kill();
        process.waitForFinished(kAnswerTimeoutMs);
        return {};
    }
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

std::optional<ViewerCommand> ViewerAtPage(const QString& desktop_entry, const QString& file,
                                          const QString& page) {
    if (desktop_entry != u"kchmviewer.desktop") return std::nullopt;
    return ViewerCommand{QStringLiteral("kchmviewer"),
                         {QStringLiteral("-showPage"), u'/' + page, file}};
}

}  // namespace platform
