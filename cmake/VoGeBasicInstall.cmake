# Install rules: library, public headers under <prefix>/include/VoGeBasic (consumers include
# <VoGeBasic/VoGeBasic.h> with <prefix>/include on their path), a CMake package
# (find_package(VoGeBasic CONFIG), target VoGeBasic::VoGeBasic) and a pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS VoGeBasic EXPORT VoGeBasicTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/VoGeBasic/include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/VoGeBasic
  FILES_MATCHING PATTERN "*.h")
install(FILES ${VOGEBASIC_GENERATED_INCLUDE}/VoGeBasicVersion.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/VoGeBasic)

set(VOGEBASIC_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/VoGeBasic)
install(EXPORT VoGeBasicTargets
  NAMESPACE VoGeBasic::
  FILE VoGeBasicTargets.cmake
  DESTINATION ${VOGEBASIC_CMAKE_DIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/VoGeBasicConfig.cmake.in
  ${PROJECT_BINARY_DIR}/VoGeBasicConfig.cmake
  INSTALL_DESTINATION ${VOGEBASIC_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VoGeBasicConfigVersion.cmake
  VERSION ${PROJECT_VERSION}
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/VoGeBasicConfig.cmake
  ${PROJECT_BINARY_DIR}/VoGeBasicConfigVersion.cmake
  DESTINATION ${VOGEBASIC_CMAKE_DIR})

set(VOGEBASIC_PC_CFLAGS "")
if(NOT BUILD_SHARED_LIBS)
  set(VOGEBASIC_PC_CFLAGS "-DVOGEBASIC_STATIC")
endif()
# The prefix is found from the .pc file's own place, so an installed tree can be moved.
file(RELATIVE_PATH VOGEBASIC_PC_UP "/p/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/p")
configure_file(${PROJECT_SOURCE_DIR}/cmake/vogebasic.pc.in ${PROJECT_BINARY_DIR}/vogebasic.pc
  @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vogebasic.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
