# Each subsystem folder lists its files by layer with these three calls, so
# that the layering is decided by the build: kytcore links no Qt at all, and a
# Qt include in a core file fails to compile.
function(kyt_core)
  target_sources(kytcore PRIVATE ${ARGN})
endfunction()

function(kyt_platform)
  if(NOT KYT_FUZZ)
    target_sources(kytplatform PRIVATE ${ARGN})
  endif()
endfunction()

function(kyt_forms)
  if(NOT KYT_FUZZ)
    target_sources(kytforms PRIVATE ${ARGN})
    # A source that includes a form's generated ui_X.h is made to depend on
    # X.ui itself. Without it, Ninja regenerates the header after an edit of
    # the .ui but compiles its users only in the next build, so a test run
    # straight after such an edit would run the old form.
    foreach(src IN LISTS ARGN)
      if(NOT src MATCHES "\\.cpp$")
        continue()
      endif()
      file(STRINGS ${CMAKE_CURRENT_SOURCE_DIR}/${src} includes REGEX "^#include \"ui_[A-Za-z0-9_]+\\.h\"")
      foreach(line IN LISTS includes)
        string(REGEX REPLACE "^#include \"ui_([A-Za-z0-9_]+)\\.h\".*" "\\1.ui" form "${line}")
        if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${form})
          set_property(SOURCE ${CMAKE_CURRENT_SOURCE_DIR}/${src} TARGET_DIRECTORY kytforms APPEND
                       PROPERTY OBJECT_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${form})
        endif()
      endforeach()
    endforeach()
  endif()
endfunction()
