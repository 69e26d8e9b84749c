// Kyt Console: the program starts with its main window, whose load handler
// reads the settings and opens the serial port.
#include <QApplication>

#include "app/form_registry.h"
#include "app/frmMain.h"
#include "common/forms.h"
#include "common/services.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("kyt-console");
    QApplication::setOrganizationName("kyt-console");
    kyt::install_real_services();
    register_all_forms();
    frmMain* main_window = kyt::forms::get<frmMain>();
    main_window->show();
    // For timing the start-up (scripts/startup-time): end as soon as the main
    // window has been painted once.
    if (qEnvironmentVariableIsSet("KYT_EXIT_WHEN_SHOWN")) main_window->quit_after_first_paint();
    return app.exec();
}
