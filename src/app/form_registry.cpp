#include "app/form_registry.h"

#include "acquisition/frmDownload.h"
#include "acquisition/frmHeader.h"
#include "acquisition/frmOTGraph.h"
#include "acquisition/frmRTGraph.h"
#include "acquisition/frmSummary.h"
#include "admin/frmChgPassword.h"
#include "admin/frmPassWord.h"
#include "admin/frmSysAd.h"
#include "common/forms.h"
#include "graph/frmGraph.h"
#include "help/frmAbout.h"
#include "help/frmKYTGHelp.h"
#include "help/frmKYTHelp.h"
#include "help/frmKYTOverview.h"
#include "link/frmChangePort.h"
#include "link/frmTestPort.h"
#include "reports/frmFileExists.h"
#include "reports/frmInProgress.h"
#include "reports/frmReports.h"
#include "trumpet/frmSetRate.h"
#include "trumpet/frmTrumpSet.h"
#include "trumpet/frmTrumpetGraph.h"

void register_all_forms() {
    using namespace kyt::forms;
    // In the order in which shutdown closes them.
    register_form<frmAbout>();
    register_form<frmChangePort>();
    register_form<frmChgPassword>();
    register_form<frmDownload>();
    register_form<frmKYTGHelp>();
    register_form<frmKYTHelp>();
    register_form<frmKYTOverview>();
    register_form<frmGraph>();
    register_form<frmHeader>();
    register_form<frmInProgress>();
    register_form<frmOTGraph>();
    register_form<frmPassWord>();
    register_form<frmReports>();
    register_form<frmRTGraph>();
    register_form<frmSetRate>();
    register_form<frmSummary>();
    register_form<frmTestPort>();
    register_form<frmTrumpetGraph>();
    register_form<frmTrumpSet>();
    // The administrator's form and the overwrite question are left to close
    // with the program.
    register_form<frmSysAd>(AtExit::stay);
    register_form<frmFileExists>(AtExit::stay);
}
