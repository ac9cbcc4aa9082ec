// FindBar: the field above the tree in which one types what to find, with its count and its chips:
// buttons that put a part into the text and take it out again. It knows nothing of tables.
#pragma once

#include <QtWidgets/QWidget>

#include <vector>

class QLabel;
class QLineEdit;
class QToolButton;

namespace browser {

class FindBar : public QWidget {
    Q_OBJECT

public:
    explicit FindBar(QWidget* parent = nullptr);

    QString Text() const;
    void SetText(const QString& text);
    // Moves the focus to the field and selects its text.
    void FocusField();

    // "3 of 17" and the like; a screen reader says it, too.
    void SetCount(const QString& text, const QString& tool_tip = {});

Q_SIGNALS:
    void TextChanged(const QString& text);
    void NextWanted();
    void PreviousWanted();
    void PlayWanted();
    void EscapePressed();
    void LeaveWanted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Chip {
        QToolButton* button;
        QString part;
    };

    void BuildField();
    void BuildChips();
    QToolButton* AddChip(const char* name, const QString& caption, const QString& tool_tip);
    void AddSwitch(const char* name, const QString& caption, const QString& part,
                   const QString& tool_tip);
    void AddBeginning(const char* name, const QString& caption, const QString& part,
                      const QString& tool_tip);
    QToolButton* AddButton(const char* name, const QString& caption, const QString& tool_tip);
    bool TakesKey(int key);
    void ShowChips();

    QLineEdit* txtFind_ = nullptr;
    QLabel* lblFindCount_ = nullptr;
    QWidget* chips_ = nullptr;
    std::vector<Chip> switches_;
};

}  // namespace browser
