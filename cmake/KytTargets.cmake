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
  endif()
endfunction()
