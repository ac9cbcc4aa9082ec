#include "app/pseudo_translator.h"

#include <QtCore/QRegularExpression>

namespace test_support {
namespace {

constexpr QStringView kPlain = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr QStringView kAccented = u"ÀßÇÐÉƑĜĤÎĴĶĹṀÑÖÞǬŔŠŢÛṼŴẊÝŽåƀçðéƒğĥîĵķļɱñöþǫŕšţûṽŵẋýž";
static_assert(kPlain.size() == kAccented.size());

// Of ten letters four come twice.
constexpr double kMore = 0.4;

}  // namespace

QString Pseudo(const QString& english) {
    static const QRegularExpression kept(QStringLiteral("%L?[0-9n]+|<[^>]*>|&(?=.)|\\s"));
    QString pseudo;
    double owed = 0;
    qsizetype last = -1;  // of the letters, but those in angle brackets
    for (qsizetype at = 0; at < english.size();) {
        const auto match = kept.match(english, at, QRegularExpression::NormalMatch,
                                      QRegularExpression::AnchorAtOffsetMatchOption);
        if (match.hasMatch()) {
            pseudo += match.captured();
            at = match.capturedEnd();
            continue;
        }
        const qsizetype letter = kPlain.indexOf(english[at]);
        const QChar shown = letter < 0 ? english[at] : kAccented[letter];
        pseudo += shown;
        if (letter >= 0) last = pseudo.size() - 1;
        owed += kMore;
        if (letter >= 0 && owed >= 1) {
            pseudo += shown;
            owed -= 1;
        }
        ++at;
    }
    // The rest, so that short texts grow as much.
    if (owed > 0 && last >= 0) pseudo.insert(last, pseudo[last]);
    return pseudo;
}

QString PseudoTranslator::translate(const char* context, const char* source, const char*,
                                    int) const {
    const QString english = QString::fromUtf8(source);
    const QString place = QString::fromUtf8(context);
    if (place.endsWith(u"Texts")) {
        const QMutexLocker lock(&mutex_);
        asked_.insert({place, english});
    }
    return Pseudo(english);
}

QSet<QPair<QString, QString>> PseudoTranslator::asked() const {
    const QMutexLocker lock(&mutex_);
    return asked_;
}

}  // namespace test_support
