// A Wine of the tests' own, created by the first test that needs it and kept in the build folder.
#pragma once

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>

#include <sys/personality.h>

namespace test_support {

inline constexpr unsigned long kWhatItIs = 0xFFFFFFFF;  // asks personality() and changes nothing

// Sets this process's environment. Returns why Wine cannot be used, empty when it can. To create
// the prefix takes seconds, on a busy machine up to a minute.
inline QString UseWinePrefix(const QString& folder) {
    // Where the kernel strews what it maps, one start in some 1,600 finds the addresses taken that
    // Windows programs need, as Debian's Wine has no preloader. Some sandboxes do not allow it.
    personality(personality(kWhatItIs) | ADDR_NO_RANDOMIZE);
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

// The fixture `Base` for tests that run Windows programs through Wine. Skips them when Wine or the
// compiler for Windows programs is not installed; fails when Wine cannot be used. The
// including file defines WINE_PREFIX and WINDOWS_SIMULATOR, the paths of both.
template <typename Base>
class WithWine : public Base {
protected:
    static void SetUpTestSuite() { problem_ = UseWinePrefix(QStringLiteral(WINE_PREFIX)); }
    static void TearDownTestSuite() {
        if (problem_.isEmpty()) EndWine();
    }
    void SetUp() override {
        ASSERT_TRUE(problem_.isEmpty()) << problem_.toStdString();
        ASSERT_TRUE(QFile::exists(QStringLiteral(WINDOWS_SIMULATOR)))
            << "there is no compiler for Windows programs (mingw-w64)";
        Base::SetUp();
    }

private:
    inline static QString problem_;  // why there is no Wine
};

}  // namespace test_support
