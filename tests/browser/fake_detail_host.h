// FakeDetailHost: the window around the detail panel; remembers what the panel asked of it.
#pragma once

#include "browser/detail_panel.h"
#include "catalogue/error_report.h"

#include <QtCore/QMap>

namespace browser {

class FakeDetailHost final : public DetailHost {
public:
    QString selected_tag;
    QString selected_text;
    QMap<int, QString> status;
    QMap<QString, QString> stored_names;  // by id
    QString comments;
    bool locked = false;
    int remembered = 0;
    int refreshes = 0;

    QString SelectedTag() const override { return selected_tag; }
    QString SelectedText() const override { return selected_text; }
    void RememberSelectedNode() override { ++remembered; }
    void RecordStored(const TableRecord& record) override {
        stored_names[record.fields[kId]] = record.fields[kFileName];
    }
    void RefreshTree() override { ++refreshes; }
    void SetStatusText(int panel, const QString& text) override { status[panel] = text; }
    void ShowFailure(const base::Status& failure) override {
        status[kNamePanel] = catalogue::FailureText(failure);
    }
    void SetComments(const QString& text) override { comments = text; }
    void LockForEdit(bool changed) override { locked = changed; }
};

}  // namespace browser
