# kyt_add_qtest(NAME SOURCES file... [LIBS lib...] [ENV VAR=value...])
# One Qt Test executable, registered with CTest under its own name. Every test
# runs with the offscreen platform and a home of its own, so that no test can
# touch the settings of the person running it.
function(kyt_add_qtest name)
  cmake_parse_arguments(T "" "TIMEOUT" "SOURCES;LIBS;ENV" ${ARGN})
  add_executable(${name} ${T_SOURCES})
  target_link_libraries(${name} PRIVATE Qt6::Test ${T_LIBS})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${PROJECT_SOURCE_DIR}/src)
  add_test(NAME ${name} COMMAND ${name})
  set(home "${CMAKE_CURRENT_BINARY_DIR}/home-${name}")
  set(timeout 120)
  if(T_TIMEOUT)
    set(timeout ${T_TIMEOUT})
  endif()
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${timeout}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;HOME=${home};XDG_CONFIG_HOME=${home}/.config;KYT_SOURCE_DIR=${PROJECT_SOURCE_DIR};KYT_BINARY_DIR=${PROJECT_BINARY_DIR};${T_ENV}")
endfunction()
