# Relocatable installation: header, library, CMake package and pkg-config file.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/quoFPAlg)
install(TARGETS quoFPAlg EXPORT quoFPAlgTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT quoFPAlgTargets NAMESPACE quoFPAlg:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/quoFPAlgConfig.cmake.in ${PROJECT_BINARY_DIR}/quoFPAlgConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/quoFPAlgConfigVersion.cmake COMPATIBILITY ExactVersion)
install(FILES ${PROJECT_BINARY_DIR}/quoFPAlgConfig.cmake ${PROJECT_BINARY_DIR}/quoFPAlgConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

# The prefix in the .pc file is found from where the file itself lies, so that an installed tree can be moved.
file(RELATIVE_PATH QUO_PC_PREFIX
  /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" QUO_PC_PREFIX "${QUO_PC_PREFIX}")
configure_file(cmake/quoFPAlg.pc.in ${PROJECT_BINARY_DIR}/quoFPAlg.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quoFPAlg.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
