# Makes the API reference and fails on any Doxygen warning: every exported name documented, no
# broken reference in the comments. Arguments: DOXYGEN DOXYFILE LOG.
get_filename_component(dir "${LOG}" DIRECTORY)
file(MAKE_DIRECTORY "${dir}")
file(REMOVE "${LOG}")
execute_process(COMMAND "${DOXYGEN}" "${DOXYFILE}" RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "doxygen failed (${rc})")
endif()
file(READ "${LOG}" warnings)
if(NOT warnings STREQUAL "")
  message(FATAL_ERROR "the API reference has warnings:\n${warnings}")
endif()
