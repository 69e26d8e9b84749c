# The test header dialog and its rules.
kyt_core(header_rules.cpp)
kyt_forms(frmHeader.cpp frmHeader.ui)
