# orv_install_library(orv-NAME NAME DESCRIPTION) installs a library of this project in the component
# NAME, and in NAME-dev what finds it: a pkg-config file, and a package that gives CMake the target
# orv::NAME. Headers are installed where the library is made.
include(CMakePackageConfigHelpers)

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pkgconfig_to_prefix /${pkgconfig_dir} /)
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix ${pkgconfig_to_prefix})

function(orv_install_library library component description)
  set_target_properties(${library} PROPERTIES EXPORT_NAME ${component})
  target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  install(TARGETS ${library} EXPORT ${library} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
          COMPONENT ${component} NAMELINK_COMPONENT ${component}-dev)

  set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${library})
  write_basic_package_version_file(${library}-config-version.cmake COMPATIBILITY SameMinorVersion)
  configure_file(${CMAKE_SOURCE_DIR}/packaging/library-config.cmake.in ${library}-config.cmake @ONLY)
  install(EXPORT ${library} NAMESPACE orv:: FILE ${library}-targets.cmake
          DESTINATION ${package_dir} COMPONENT ${component}-dev)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}-config.cmake
                ${CMAKE_CURRENT_BINARY_DIR}/${library}-config-version.cmake
          DESTINATION ${package_dir} COMPONENT ${component}-dev)

  configure_file(${CMAKE_SOURCE_DIR}/packaging/library.pc.in ${library}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${library}.pc DESTINATION ${pkgconfig_dir}
          COMPONENT ${component}-dev)
endfunction()
