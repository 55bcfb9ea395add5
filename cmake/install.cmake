# Installs the libraries, the public headers (under include/brixobjects4/ with the source spelling),
# a CMake package configuration and a pkg-config file.
include(CMakePackageConfigHelpers)

foreach(header ${BRIX_PUBLIC_HEADERS})
  if(IS_ABSOLUTE "${header}")
    file(RELATIVE_PATH rel "${CMAKE_CURRENT_BINARY_DIR}/generated" "${header}")
  else()
    set(rel "${header}")
  endif()
  get_filename_component(dir "${rel}" DIRECTORY)
  install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/brixobjects4/${dir}")
endforeach()

install(TARGETS brixobjects4 brixobjects4_static EXPORT brixobjects4Targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(EXPORT brixobjects4Targets NAMESPACE brixobjects4::
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/brixobjects4)

configure_package_config_file(cmake/brixobjects4Config.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/brixobjects4Config.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/brixobjects4)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/brixobjects4ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/brixobjects4Config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/brixobjects4ConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/brixobjects4)

configure_file(cmake/brixobjects4.pc.in ${CMAKE_CURRENT_BINARY_DIR}/brixobjects4.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/brixobjects4.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
