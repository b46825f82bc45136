# What `make install` lays down: libraries, headers in their tree, the host, and the files of find_package and pkg-config.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(TAVO_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Tavo)

install(TARGETS qel tavo EXPORT TavoTargets INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT TavoTargets NAMESPACE Tavo:: DESTINATION ${TAVO_CMAKE_DIR})
install(DIRECTORY qel tavo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
if(TARGET tavo_host)
    install(TARGETS tavo_host)
endif()

configure_package_config_file(cmake/TavoConfig.cmake.in ${PROJECT_BINARY_DIR}/package/TavoConfig.cmake
    INSTALL_DESTINATION ${TAVO_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/TavoConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/TavoConfig.cmake ${PROJECT_BINARY_DIR}/package/TavoConfigVersion.cmake
    cmake/WxBase.cmake DESTINATION ${TAVO_CMAKE_DIR})

# wx brings no pkg-config file of its own, so its flags stand in ours.
get_target_property(directories wx::base INTERFACE_INCLUDE_DIRECTORIES)
get_target_property(definitions wx::base INTERFACE_COMPILE_DEFINITIONS)
get_target_property(libraries wx::base INTERFACE_LINK_LIBRARIES)
list(TRANSFORM directories PREPEND "-isystem ")
list(TRANSFORM definitions PREPEND "-D")
list(JOIN directories " " directories)
list(JOIN definitions " " definitions)
list(JOIN libraries " " TAVO_PC_WX_LIBS)
set(TAVO_PC_WX_FLAGS "${directories} ${definitions}")
file(RELATIVE_PATH TAVO_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" TAVO_PC_PREFIX ${TAVO_PC_PREFIX})
configure_file(cmake/tavo.pc.in ${PROJECT_BINARY_DIR}/package/tavo.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/tavo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
