#include "app/language.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QLibraryInfo>
#include <QtCore/QTranslator>

#include <memory>

namespace app {
namespace {

bool Install(const QString& file, const QString& folder) {
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(file, folder)) return false;
    translator->setParent(qApp);
    return QCoreApplication::installTranslator(translator.release());  // the application owns it
}

}  // namespace

QString UseLanguage(const QStringList& wanted, const QString& folder) {
    for (const QString& tag : wanted) {
        QString language = QString(tag).replace(u'-', u'_');
        if (language == u"en" || language.startsWith(u"en_") || language == u"C") return {};
        const QString file = QStringLiteral("tavolo_") + language;
        if (!QFile::exists(folder + u'/' + file + QStringLiteral(".qm"))) continue;
        if (!Install(file, folder)) continue;
        // Where Qt's own texts are not installed in that language, they stay English.
        Install(QStringLiteral("qtbase_") + language,
                QLibraryInfo::path(QLibraryInfo::TranslationsPath));
        return language;
    }
    return {};
}

}  // namespace app
