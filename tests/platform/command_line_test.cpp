#include "platform/command_line.h"

#include <gtest/gtest.h>

#include <ostream>

namespace {

struct SplitCase {
    const char* name;
    const char* line;
    std::vector<const char*> arguments;
};

void PrintTo(const SplitCase& c, std::ostream* out) {
    *out << c.line;
}

class SplitCommandLine : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitCommandLine, FollowsTheRuntime) {
    QStringList expected;
    for (const char* argument : GetParam().arguments)
        expected << QString::fromUtf8(argument);
    EXPECT_EQ(platform::SplitCommandLine(QString::fromUtf8(GetParam().line)), expected);
}

// The ones named "documented" are the examples of the language reference.
const SplitCase kCases[] = {
    {"EmptyLine", "", {}},
    {"ProgramOnly", "vp", {"vp"}},
    {"LaunchContract",
     R"("C:\VP\VPinball.exe" /Play -"C:\My Tables\Foo.vpt")",
     {R"(C:\VP\VPinball.exe)", "/Play", R"(-C:\My Tables\Foo.vpt)"}},
    {"ProgramPathWithBlanks", R"("/opt/my vp/run" a)", {"/opt/my vp/run", "a"}},
    {"NoEscapesInTheProgramName", R"("C:\vp\" a)", {R"(C:\vp\)", "a"}},
    {"Documented1", R"(p "a b c" d e)", {"p", "a b c", "d", "e"}},
    {"Documented2", R"(p "ab\"c" "\\" d)", {"p", R"(ab"c)", R"(\)", "d"}},
    {"Documented3", R"(p a\\\b d"e f"g h)", {"p", R"(a\\\b)", "de fg", "h"}},
    {"Documented4", R"(p a\\\"b c d)", {"p", R"(a\"b)", "c", "d"}},
    {"Documented5", R"(p a\\\\"b c" d e)", {"p", R"(a\\b c)", "d", "e"}},
    {"Documented6", R"(p a"b"" c d)", {"p", R"(ab" c d)"}},
    {"QuoteInTheProgramName", R"("/my ""vp""/run" a)", {R"(/my "vp"/run)", "a"}},
    {"QuotesAtTheEndsOfTheProgramName", R"("""vp""" a)", {R"("vp")", "a"}},
    {"EmptyProgramName", R"("" a)", {"", "a"}},
    {"EmptyArgument", R"(p "" x)", {"p", "", "x"}},
    {"TabsAndTrailingBlanks", "p\t a \t", {"p", "a"}},
    {"ApostrophesAreNothingSpecial", "p 'a b'", {"p", "'a", "b'"}},
    {"Umlauts", R"(p -"/t/Grüße 漢.vpt")", {"p", "-/t/Grüße 漢.vpt"}},
    {"UnclosedQuote", R"(p "a b)", {"p", "a b"}},
};

INSTANTIATE_TEST_SUITE_P(CommandLineTest, SplitCommandLine, testing::ValuesIn(kCases),
                         [](const auto& of) { return of.param.name; });

class QuotedText : public testing::TestWithParam<const char*> {};

TEST_P(QuotedText, ComesBackAsOneArgument) {
    const QString text = QString::fromUtf8(GetParam());
    const QStringList expected = {QStringLiteral("p"), QStringLiteral("-") + text,
                                  QStringLiteral("z")};
    EXPECT_EQ(platform::SplitCommandLine(QStringLiteral("p -") +
                                         platform::QuoteForCommandLine(text) +
                                         QStringLiteral(" z")),
              expected);
}

INSTANTIATE_TEST_SUITE_P(CommandLineTest, QuotedText,
                         testing::Values("", "/a b/c.vpt", R"(a"b)", R"(a\"b)", R"(a\\"b\)",
                                         R"(\\)", R"("")", "tab\tnew\nline",
                                         R"(C:\Tables\Foo.vpt)"));

class QuotedProgramName : public testing::TestWithParam<const char*> {};

TEST_P(QuotedProgramName, ComesBackAsTheFirstArgument) {
    const QString name = QString::fromUtf8(GetParam());
    const QStringList expected = {name, QStringLiteral("/Play"), QStringLiteral("-a b")};
    EXPECT_EQ(platform::SplitCommandLine(platform::QuoteProgramName(name) +
                                         QStringLiteral(" /Play -\"a b\"")),
              expected);
}

INSTANTIATE_TEST_SUITE_P(CommandLineTest, QuotedProgramName,
                         testing::Values("", "/opt/my vp/run", R"(/my "vp"/run)", R"("vp")", R"(")",
                                         R"("")", R"(\home\u\"vp"\run)", R"(C:\VP\VPinball.exe)",
                                         R"(C:\VP\)"));

TEST(CommandLineTest, AWindowsProgramIsQuotedAsItStands) {
    EXPECT_EQ(platform::QuoteProgramName(QStringLiteral(R"(C:\My VP\VPinball.exe)")),
              QStringLiteral(R"("C:\My VP\VPinball.exe")"));
}

TEST(CommandLineTest, AWindowsPathIsQuotedAsItStands) {
    EXPECT_EQ(platform::QuoteForCommandLine(QStringLiteral(R"(C:\My Tables\Foo.vpt)")),
              QStringLiteral(R"("C:\My Tables\Foo.vpt")"));
}

}  // namespace
