# What `cmake --install` puts where, and how other projects find it: by find_package and by pkg-config. Everything is
# found from the place of its own file, so that an installed tree can be moved.
include(CMakePackageConfigHelpers)

set(VELPKI_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake)
set(VELPKI_PC_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH VELPKI_PC_TO_PREFIX /${VELPKI_PC_DIR} /)
string(REGEX REPLACE "/$" "" VELPKI_PC_TO_PREFIX ${VELPKI_PC_TO_PREFIX})

foreach(library velCrypto velPKI)
  string(TOLOWER ${library} pc)
  install(TARGETS ${library} EXPORT ${library}Targets
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${library} NAMELINK_COMPONENT dev)
  install(EXPORT ${library}Targets NAMESPACE ${library}:: DESTINATION ${VELPKI_CMAKE_DIR}/${library} COMPONENT dev)
  configure_package_config_file(cmake/install/${library}Config.cmake.in ${PROJECT_BINARY_DIR}/${library}Config.cmake
                                INSTALL_DESTINATION ${VELPKI_CMAKE_DIR}/${library})
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/${library}ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/${library}Config.cmake ${PROJECT_BINARY_DIR}/${library}ConfigVersion.cmake
          DESTINATION ${VELPKI_CMAKE_DIR}/${library} COMPONENT dev)
  configure_file(cmake/install/${pc}.pc.in ${PROJECT_BINARY_DIR}/${pc}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${pc}.pc DESTINATION ${VELPKI_PC_DIR} COMPONENT dev)
endforeach()
install(DIRECTORY include/velpki DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)
