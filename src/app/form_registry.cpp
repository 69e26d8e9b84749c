#include "app/form_registry.h"

#include "acquisition/frmHeader.h"
#include "admin/frmChgPassword.h"
#include "admin/frmPassWord.h"
#include "admin/frmSysAd.h"
#include "common/forms.h"
#include "link/frmChangePort.h"
#include "link/frmTestPort.h"

void register_all_forms() {
    using namespace kyt::forms;
    register_form<frmChangePort>();
    register_form<frmTestPort>();
    register_form<frmSysAd>();
    register_form<frmPassWord>();
    register_form<frmChgPassword>();
    register_form<frmHeader>();
}
