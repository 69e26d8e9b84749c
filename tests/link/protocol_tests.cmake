# Tests of the wire protocol of the analyser.
kyt_add_qtest(tst_protocol SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/tst_protocol.cpp LIBS kytcore)
