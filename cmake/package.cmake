# Installs the CMake package: find_package(kestrel) gives kestrel::core and, when the
# widget library was built, kestrel::qt.
include(CMakePackageConfigHelpers)
set(KESTREL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kestrel)
if(TARGET kestrel_qt)
  set(KESTREL_WITH_QT ON)
else()
  set(KESTREL_WITH_QT OFF)
endif()

install(EXPORT kestrelTargets NAMESPACE kestrel:: DESTINATION ${KESTREL_CMAKE_DIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/kestrelConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/kestrelConfig.cmake
  INSTALL_DESTINATION ${KESTREL_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/kestrelConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kestrelConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/kestrelConfigVersion.cmake
  DESTINATION ${KESTREL_CMAKE_DIR})

# pkg-config, for hosts built with make or meson: the core library only, whose
# dependencies are the standard library and threads.
file(RELATIVE_PATH KESTREL_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file(${CMAKE_CURRENT_LIST_DIR}/kestrel.pc.in ${CMAKE_CURRENT_BINARY_DIR}/kestrel.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kestrel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
