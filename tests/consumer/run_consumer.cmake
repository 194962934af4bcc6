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
if(NOT EXISTS ${prefix}/include/VoGeBasic/VoGeBasic.h)
  message(FATAL_ERROR "VoGeBasic.h not installed under include/VoGeBasic")
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
