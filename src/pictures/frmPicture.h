// frmPicture: the capture window. It shows the picture that was on the clipboard, at its own size
// or reduced, and saves it as JPEG, on request as the screenshot of the table it was opened for.
#pragma once

#include "catalogue/process_values.h"
#include "pictures/capture_session.h"

#include <QtWidgets/QDialog>

#include <functional>

class QMenuBar;
class QScrollArea;
class QStatusBar;
class QToolBar;

namespace pictures {

// The surface that a picture is drawn on, at its own size.
class PictureView final : public QWidget {
    Q_OBJECT

public:
    // `session` is borrowed and outlives the view.
    explicit PictureView(const CaptureSession& session, QWidget* parent = nullptr);
    // Call after the session's picture has changed.
    void ShowPicture();

Q_SIGNALS:
    void SaveAndSetRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    const CaptureSession& session_;
};

class frmPicture final : public QDialog {
    Q_OBJECT

public:
    // Stores a path as the selected table's screenshot and saves the record, as the main window's
    // Save does.
    using AssignScreenshot = std::function<void(const QString& path)>;

    // `values` and `prompts` are borrowed and outlive the window.
    frmPicture(catalogue::ProcessValues& values, platform::UserPrompts& prompts,
               AssignScreenshot assign, QWidget* parent = nullptr);

    // Pastes what is on the clipboard. The caller then shows the window modally.
    void OpenFor(const QString& table_name);
    const QString& table_name() const { return table_name_; }

    void Paste();
    void SetScale(int scale);
    void SaveAndSet();
    void SaveOnly();

private:
    void BuildMenus(QMenuBar& bar);
    void BuildToolBar(QToolBar& bar);
    void BuildLayout();
    void ShowSession();

    CaptureSession session_;
    AssignScreenshot assign_;
    QString table_name_;
    PictureView* view_ = nullptr;
    QScrollArea* scroll_ = nullptr;
    QStatusBar* status_ = nullptr;
};

// The command "Load Picture From Clipboard" for the table node with this text: opens the capture
// window, or says that there is no picture.
void LoadPictureFromClipboard(catalogue::ProcessValues& values, platform::UserPrompts& prompts,
                              const QString& node_text, frmPicture::AssignScreenshot assign,
                              QWidget* owner);

// The clipboard's picture; a null image when it holds none.
QImage ClipboardPicture();

}  // namespace pictures
