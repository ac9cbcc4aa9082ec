#include "browser/table_info_command.h"

#include "browser/texts.h"
#include "catalogue/error_report.h"
#include "tableinfo/frmReadVPT.h"
#include "tableinfo/storage_tools.h"

namespace browser {
namespace {

class PanelAsTarget final : public tableinfo::DetailTarget {
public:
    explicit PanelAsTarget(DetailPanel& panel) : panel_(panel) {}
    void SetDetailText(DetailField field, const QString& text) override {
        panel_.SetDetailText(field, text);
    }
    bool Save() override {
        panel_.Save();
        return !panel_.record_changed();
    }
    bool SaveRules() override {
        panel_.SaveRules();
        return !panel_.record_changed();
    }

private:
    DetailPanel& panel_;
};

platform::Message NoInformation() {
    platform::Message message;
    message.text = BrowserTexts::tr("There is no table Information for this table");
    message.title = BrowserTexts::tr("Table Info");
    message.icon = platform::MessageIcon::kInformation;
    return message;
}

constexpr int kShowProgress = 1;

}  // namespace

void ViewTableInfo(const QString& table_file, DetailPanel& details, platform::UserPrompts& prompts,
                   platform::Shell& shell, QWidget* parent) {
    if (!tableinfo::HasTableInfo(table_file)) {
        prompts.Ask(NoInformation());
        return;
    }
    PanelAsTarget target(details);
    tableinfo::frmReadVPT dialog(table_file, prompts, shell, target, parent);
    dialog.exec();
}

base::Status ImportDataFromVpts(catalogue::Catalogue& catalogue, platform::StatusDisplay& status,
                                platform::UserPrompts& prompts,
                                const std::function<void()>& refresh_tree,
                                const catalogue::Progress& progress) {
    catalogue::PassedOver passed_over;
    catalogue::ShowError(prompts, tableinfo::UpdateFromTableFiles(catalogue, kShowProgress, &status,
                                                                  progress, &passed_over));
    refresh_tree();
    return passed_over.Summary();
}

}  // namespace browser
