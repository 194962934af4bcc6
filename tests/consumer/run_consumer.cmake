# Installs the built library into a scratch prefix, then configures, builds and runs the
# consumer project against it. Arguments: BUILD_DIR SOURCE_DIR WORK_DIR GENERATOR CXX FLAGS.
set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    string(REPLACE ";" " " cmd "${ARGV}")
    message(FATAL_ERROR "failed (${rc}): ${cmd}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
if(NOT EXISTS ${prefix}/include/VoGeBasic/VoGeBasic.h OR
   NOT EXISTS ${prefix}/include/VoGeBasic/VoGeBasicVersion.h)
  message(FATAL_ERROR "VoGeBasic.h or VoGeBasicVersion.h not installed under include/VoGeBasic")
endif()
# Nothing but the VoGeBasic folder in include/: no header of generic name on a user's path.
file(GLOB loose ${prefix}/include/*.h)
if(loose)
  message(FATAL_ERROR "headers installed straight into include/: ${loose}")
endif()
# The exported package names one include directory, <prefix>/include, and no empty link entry.
file(GLOB_RECURSE targets ${prefix}/*/VoGeBasicTargets.cmake)
file(READ "${targets}" exported)
string(REGEX MATCH "INTERFACE_INCLUDE_DIRECTORIES \"([^\"]*)\"" found "${exported}")
if(NOT CMAKE_MATCH_1 STREQUAL "\${_IMPORT_PREFIX}/include")
  message(FATAL_ERROR "exported include directories: '${CMAKE_MATCH_1}'")
endif()
if(exported MATCHES "LINK_ONLY:>")
  message(FATAL_ERROR "the exported package carries an empty link entry")
endif()
run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -G ${GENERATOR}
    -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release
    "-DCMAKE_CXX_FLAGS=${FLAGS}")
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${WORK_DIR}/build/consumer)

# The pkg-config file must lead a plain compiler call to the same header and library.
find_program(PKG_CONFIG NAMES pkg-config pkgconf)
if(PKG_CONFIG)
  file(GLOB_RECURSE pcfile ${prefix}/*/vogebasic.pc)
  get_filename_component(pcdir "${pcfile}" DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} ${pcdir})
  execute_process(COMMAND ${PKG_CONFIG} --cflags --libs vogebasic
    OUTPUT_VARIABLE pcflags OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "pkg-config does not know vogebasic")
  endif()
  separate_arguments(pcflags UNIX_COMMAND "${pcflags}")
  separate_arguments(extra UNIX_COMMAND "${FLAGS}")
  list(FILTER pcflags EXCLUDE REGEX "^$")
  run(${CXX} -std=c++17 ${extra} ${SOURCE_DIR}/main.cpp ${pcflags} -Wl,-rpath,${pcdir}/..
      -o ${WORK_DIR}/consumer_pc)
  run(${WORK_DIR}/consumer_pc)
endif()
