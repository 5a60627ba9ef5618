# cmake --install: the library, its headers, the tools, and what find_package and pkg-config read.
include(CMakePackageConfigHelpers)

set(TORVI_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/TorviAPI)

install(TARGETS TorviAPI EXPORT TorviAPITargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES
  ${PROJECT_SOURCE_DIR}/include/WebFileManAPI.h
  ${PROJECT_SOURCE_DIR}/include/WebFileManShareAPI.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
foreach(tool torvi torvi-nas torvi-cloud)
  if(TARGET ${tool})
    install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

install(EXPORT TorviAPITargets NAMESPACE TorviAPI:: DESTINATION ${TORVI_PACKAGE_DIR})
configure_package_config_file(cmake/TorviAPIConfig.cmake.in ${PROJECT_BINARY_DIR}/TorviAPIConfig.cmake
  INSTALL_DESTINATION ${TORVI_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TorviAPIConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TorviAPIConfig.cmake ${PROJECT_BINARY_DIR}/TorviAPIConfigVersion.cmake
  DESTINATION ${TORVI_PACKAGE_DIR})

# The paths are relative to the file's own place, so that an installed tree may be moved.
file(RELATIVE_PATH TORVI_PC_TO_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" TORVI_PC_TO_PREFIX "${TORVI_PC_TO_PREFIX}")
configure_file(cmake/TorviAPI.pc.in ${PROJECT_BINARY_DIR}/TorviAPI.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/TorviAPI.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
