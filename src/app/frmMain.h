#pragma once
// The main window: menu bar, status line, backdrop. It starts the program,
// hands work over to the test and capture screens when it is activated, and
// ends the program.

#include <QMainWindow>

namespace Ui {
class frmMain;
}

class frmMain : public QMainWindow {
    Q_OBJECT
public:
    explicit frmMain(QWidget* parent = nullptr);
    ~frmMain() override;

    // The activate handler; also run by forms that hide themselves to hand
    // work back, so that it does not depend on a window manager.
    void Form_Activate();
    // Asks whether to quit; on Yes removes the unsaved capture file.
    bool exit_kyt();
    void read_ini();

    void disable_port_menus();
    bool test_port_enabled() const;
    void show_comm_port(int port);
    void quit_after_first_paint() { quit_after_paint_ = true; }

protected:
    bool event(QEvent* e) override;
    void closeEvent(QCloseEvent* e) override;
    void paintEvent(QPaintEvent* e) override;

private:
    void Form_Load();
    void mnuEdit_Click();
    void mnuSysAdmin_Click();
    void mnuExit_Click();
    void show_form(const char* name);
    void hand_over_to_test(const char* test_form, const char* other_test_form);
    void unload_closing_list();

    Ui::frmMain* ui;
    bool quit_after_paint_ = false;
};
