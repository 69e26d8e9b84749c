#include "app/form_registry.h"

#include "common/forms.h"
#include "link/frmChangePort.h"
#include "link/frmTestPort.h"

void register_all_forms() {
    using namespace kyt::forms;
    register_form<frmChangePort>();
    register_form<frmTestPort>();
}
