#include "dialogs/frmAbout.h"

#include "dialogs/about_text.h"
#include "dialogs/program_version.h"
#include "dialogs/system_information.h"
#include "dialogs/texts.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QFrame>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace dialogs {
namespace {

QLabel* MakeLabel(const QString& name, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(name);
    return label;
}

}  // namespace

frmAbout::frmAbout(platform::UserPrompts& prompts, platform::Shell& shell,
                   platform::ProcessStarter& starter, QString web_site, QWidget* parent)
    : QDialog(parent), prompts_(prompts), shell_(shell), starter_(starter),
      web_site_(std::move(web_site)) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(DialogsTexts::tr("About %1").arg(ApplicationTitle()));
    auto* column = new QVBoxLayout(this);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addWidget(BuildHeading());
    column->addWidget(BuildCredits());
    column->addWidget(BuildButtons());
}

QWidget* frmAbout::BuildHeading() {
    auto* heading = new QWidget(this);
    auto* icon = new QLabel(heading);
    icon->setPixmap(QApplication::windowIcon().pixmap(64, 64));
    auto* title = MakeLabel(QStringLiteral("lblTitle"), ApplicationTitle(), heading);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 2);
    large.setBold(true);
    title->setFont(large);
    auto* version =
        MakeLabel(QStringLiteral("lblVersion"),
                  DialogsTexts::tr("Version %1").arg(VersionText(ProgramVersion())), heading);

    auto* texts = new QVBoxLayout;
    texts->addWidget(title);
    texts->addWidget(version);
    auto* line = new QHBoxLayout(heading);
    line->addWidget(icon);
    line->addLayout(texts, 1);
    return heading;
}

QWidget* frmAbout::BuildCredits() {
    auto* panel = new QFrame(this);
    panel->setObjectName(QStringLiteral("SSPanel1"));
    panel->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    auto* credits = MakeLabel(QStringLiteral("lblCredits"), CreditsText(), panel);
    credits->setTextFormat(Qt::PlainText);
    credits->setWordWrap(true);
    credits->setFixedWidth(fontMetrics().averageCharWidth() * 60);
    auto* column = new QVBoxLayout(panel);
    column->addWidget(credits);
    return panel;
}

QWidget* frmAbout::BuildLink() {
    auto* link = MakeLabel(QStringLiteral("label1"), {}, this);
    if (web_site_.isEmpty()) return link;
    link->setText(QStringLiteral("<a href=\"%1\">%1</a>").arg(web_site_.toHtmlEscaped()));
    link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(link, &QLabel::linkActivated, this, &frmAbout::OpenWebSite);
    return link;
}

void frmAbout::OpenWebSite() {
    if (shell_.Open(web_site_).ok()) return;
    platform::Message message;
    message.text = DialogsTexts::tr("Cannot open site: %1").arg(web_site_);
    message.icon = platform::MessageIcon::kInformation;
    prompts_.Ask(message);
}

QWidget* frmAbout::BuildButtons() {
    auto* row = new QWidget(this);

    auto* system = new QPushButton(DialogsTexts::tr("&System Info"), row);
    system->setObjectName(QStringLiteral("CmdSystem"));
    system->setAutoDefault(false);
    connect(system, &QPushButton::clicked, this,
            [this] { StartSysInfo(shell_, starter_, prompts_); });
    auto* ok = new QPushButton(DialogsTexts::tr("OK"), row);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    ok->setFocus();
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);

    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(BuildLink(), 1);
    line->addWidget(system);
    line->addWidget(ok);
    return row;
}

}  // namespace dialogs
