# Tests of the header dialog and its rules.
kyt_add_qtest(tst_header SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tst_header.cpp LIBS kytforms)
