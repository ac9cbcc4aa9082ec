// PseudoTranslator: a language for tests. Every text of the program and of Qt becomes accented and
// at least 40 percent longer; places (%1, %n), marks of keys (&), line breaks, and what stands in
// angle brackets stay. What is shown without it was not handed to a translator.
#pragma once

#include <QtCore/QMutex>
#include <QtCore/QPair>
#include <QtCore/QSet>
#include <QtCore/QTranslator>

namespace test_support {

QString Pseudo(const QString& english);

class PseudoTranslator : public QTranslator {
public:
    QString translate(const char* context, const char* source, const char* disambiguation,
                      int plural) const override;
    bool isEmpty() const override { return false; }

    // What the program (not Qt) has asked for: context and text.
    QSet<QPair<QString, QString>> asked() const;

private:
    mutable QMutex mutex_;
    mutable QSet<QPair<QString, QString>> asked_;
};

}  // namespace test_support
