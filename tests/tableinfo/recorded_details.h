// RecordedDetails: the main window's details as the information dialog sees them; writes down what
// is done to them.
#pragma once

#include "tableinfo/table_info_dialog_logic.h"

#include <QtCore/QStringList>

namespace tableinfo {

class RecordedDetails final : public DetailTarget {
public:
    bool saves = true;
    bool saves_rules = true;
    QStringList steps;  // "2=Attack", "Save", "SaveRules"

    void SetDetailText(catalogue::DetailField index, const QString& text) override {
        steps << QString::number(index) + QLatin1Char('=') + text;
    }
    bool Save() override {
        steps << QStringLiteral("Save");
        return saves;
    }
    bool SaveRules() override {
        steps << QStringLiteral("SaveRules");
        return saves_rules;
    }
};

}  // namespace tableinfo
