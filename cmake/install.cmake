# Installs the libraries, the public headers (under include/brixobjects4/ with the source spelling),
# a CMake package configuration, a pkg-config file, the brixq command and, in
# share/brixobjects4/, the sample definitions, the sample database and the consumer example.
include(CMakePackageConfigHelpers)

# installed_headers.txt lists the installed headers as hosts include them, one a line; the install
# test compiles them all in one file.
set(installed_headers "")
foreach(header ${BRIX_PUBLIC_HEADERS})
  if(IS_ABSOLUTE "${header}")
    file(RELATIVE_PATH rel "${CMAKE_CURRENT_BINARY_DIR}/generated" "${header}")
  else()
    set(rel "${header}")
  endif()
  get_filename_component(dir "${rel}" DIRECTORY)
  install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/brixobjects4/${dir}")
  string(APPEND installed_headers "${rel}\n")
endforeach()
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/installed_headers.txt "${installed_headers}")

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

# The pkg-config file finds the prefix from its own folder, so an installed tree still works when
# it was installed elsewhere (cmake --install --prefix) or moved.
file(RELATIVE_PATH BRIX_PKGCONFIG_TO_PREFIX
     "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(cmake/brixobjects4.pc.in ${CMAKE_CURRENT_BINARY_DIR}/brixobjects4.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/brixobjects4.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(BRIX_SHARE_DIR ${CMAKE_INSTALL_DATADIR}/brixobjects4)
install(DIRECTORY examples/consumer DESTINATION ${BRIX_SHARE_DIR})
if(TARGET brixq)
  install(TARGETS brixq RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES examples/orders.xml examples/legal_documents.xml examples/parameter_query.xml
                examples/sample_database.sql ${PROJECT_BINARY_DIR}/examples/sample.db
          DESTINATION ${BRIX_SHARE_DIR})
endif()
