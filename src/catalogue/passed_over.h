// PassedOver: what a long run has left out because it could not be read. Such a run goes on; that
// something is missing is said once at its end.
#pragma once

#include "base/status.h"
#include "catalogue/texts.h"

#include <QtCore/QSet>
#include <QtCore/QString>

#include <cstdint>

namespace catalogue {

class PassedOver {
public:
    // `failure` is not ok; `path` is put in front of its message unless that names it. What is
    // noted twice counts once.
    void Note(const QString& path, const base::Status& failure) {
        paths_.insert(path);
        if (!first_.ok()) return;
        const std::string name = path.toStdString();
        const bool is_named = failure.message().find(name) != std::string::npos;
        first_ = is_named ? failure
                          : base::Status(failure.code(), name + ": " + failure.message(),
                                         failure.number());
    }
    void Note(const PassedOver& others) {
        paths_.unite(others.paths_);
        if (first_.ok()) first_ = others.first_;
    }
    std::int64_t count() const { return paths_.size(); }

    // ok: nothing was left out. Otherwise how much, and the first of it with its reason.
    base::Status Summary() const {
        if (count() <= 1) return first_;
        return {first_.code(),
                CatalogueTexts::tr("%1 could not be read. The first: %2")
                    .arg(QString::number(count()), QString::fromStdString(first_.message()))
                    .toStdString(),
                first_.number()};
    }

private:
    QSet<QString> paths_;
    base::Status first_;
};

}  // namespace catalogue
