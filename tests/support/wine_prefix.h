// UseWinePrefix: a Wine of the tests' own, made by the first test that needs it and kept in the
// build folder.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>

namespace test_support {

// Sets this process's environment. The answer: why there is no Wine; empty when there is one.
// Making the prefix takes some seconds; a program of Wine 8 under load has been seen to take a
// minute.
inline QString UseWinePrefix(const QString& folder) {
    qputenv("WINEPREFIX", folder.toUtf8());
    qputenv("WINEDEBUG", "-all");
    qputenv("WINEDLLOVERRIDES", "mscoree,mshtml=");  // or it offers to fetch them from the network
    if (QStandardPaths::findExecutable(QStringLiteral("wine")).isEmpty())
        return QStringLiteral("Wine is not installed");
    if (QFile::exists(folder + QStringLiteral("/made"))) return {};
    QProcess boot;
    boot.setStandardOutputFile(QProcess::nullDevice());
    boot.setStandardErrorFile(QProcess::nullDevice());
    boot.start(QStringLiteral("wineboot"), {QStringLiteral("--init")});
    if (!boot.waitForFinished(300'000) || boot.exitCode() != 0)
        return QStringLiteral("Wine cannot make its folder ") + folder;
    QFile made(folder + QStringLiteral("/made"));
    return made.open(QIODevice::WriteOnly) ? QString()
                                           : QStringLiteral("cannot write to ") + folder;
}

// Ends the programs of this Wine and its server, so that nothing of it outlives the test.
inline void EndWine() {
    QProcess::execute(QStringLiteral("wineserver"), {QStringLiteral("-k"), QStringLiteral("-w")});
}

}  // namespace test_support
