# Installation, the CMake package configuration and the pkg-config file.
include(CMakePackageConfigHelpers)

set(QNCL_INSTALL_TARGETS qncore6)
if(TARGET qncl6)
    list(APPEND QNCL_INSTALL_TARGETS qncl6)
endif()
install(TARGETS ${QNCL_INSTALL_TARGETS} EXPORT qnclTargets
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/qncore/include/qncore DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/include/qn DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT qnclTargets NAMESPACE qncl:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qncl)

configure_package_config_file(${CMAKE_SOURCE_DIR}/cmake/qnclConfig.cmake.in
                              ${CMAKE_BINARY_DIR}/qnclConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qncl)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/qnclConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/qnclConfig.cmake ${CMAKE_BINARY_DIR}/qnclConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/qncl)

configure_file(${CMAKE_SOURCE_DIR}/cmake/qncl.pc.in ${CMAKE_BINARY_DIR}/qncl.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/qncl.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
