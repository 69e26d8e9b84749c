#pragma once
// A small notice that a download is running, with a line of text and a
// Cancel button that hides it. The capture screen shows the transfer itself,
// so no step of a download puts this notice up; it stays loadable for one
// that wants it.

#include <QDialog>

namespace Ui {
class frmInProgress;
}

class frmInProgress : public QDialog {
    Q_OBJECT
public:
    explicit frmInProgress(QWidget* parent = nullptr);
    ~frmInProgress() override;

    // Keeps the text as it stands.
    void scroll_text() {}

private:
    Ui::frmInProgress* ui;
};
