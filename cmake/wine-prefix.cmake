# cmake -DPREFIX=... -DWINEBOOT=... -DWINE=... -P wine-prefix.cmake: makes the Wine prefix once.
if(NOT EXISTS ${PREFIX}/system.reg)
  execute_process(COMMAND ${WINEBOOT} -i RESULT_VARIABLE rc OUTPUT_QUIET ERROR_QUIET)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "wineboot failed (${rc})")
  endif()
endif()
# Windows draw their own frames rather than wait for a window manager: a virtual display has none,
# and Wine would wait two seconds for it at every window that hides.
set(managed "")
if(EXISTS ${PREFIX}/user.reg)
  file(STRINGS ${PREFIX}/user.reg managed REGEX "^\"Managed\"=\"N\"$")
endif()
if(NOT managed)
  execute_process(COMMAND ${WINE} reg add "HKCU\\Software\\Wine\\X11 Driver" /v Managed /d N /f
    RESULT_VARIABLE rc OUTPUT_QUIET ERROR_QUIET)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "wine reg add failed (${rc})")
  endif()
endif()
