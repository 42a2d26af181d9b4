# cmake -DPREFIX=... -DWINEBOOT=... -P wine-prefix.cmake: makes the Wine prefix once.
if(NOT EXISTS ${PREFIX}/system.reg)
  execute_process(COMMAND ${WINEBOOT} -i RESULT_VARIABLE rc OUTPUT_QUIET ERROR_QUIET)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "wineboot failed (${rc})")
  endif()
endif()
