# Installs the library, its headers, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

set(ryn_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/RynCommon)
install(TARGETS RynCommon EXPORT RynCommonTargets FILE_SET HEADERS)
install(EXPORT RynCommonTargets NAMESPACE RynCommon:: DESTINATION ${ryn_package_dir})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/RynCommonConfig.cmake.in
    ${PROJECT_BINARY_DIR}/RynCommonConfig.cmake INSTALL_DESTINATION ${ryn_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/RynCommonConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/RynCommonConfig.cmake
    ${PROJECT_BINARY_DIR}/RynCommonConfigVersion.cmake
    ${CMAKE_CURRENT_LIST_DIR}/RynDependencies.cmake
    DESTINATION ${ryn_package_dir})

# A static library needs its dependencies on every link, a shared one only where they show in the headers.
set(ryn_pc_needs "icu-i18n, zlib, libcurl, uuid, libhwy")
if(BUILD_SHARED_LIBS)
    set(ryn_pc_requires "icu-uc")
    set(ryn_pc_requires_private "${ryn_pc_needs}")
    set(ryn_pc_libs "")
    set(ryn_pc_cflags "")
else()
    set(ryn_pc_requires "icu-uc, ${ryn_pc_needs}")
    set(ryn_pc_requires_private "")
    set(ryn_pc_libs " -ldl -pthread")
    set(ryn_pc_cflags " -DRYNCOMMON_STATIC")
endif()
# The prefix is written relative to the file, so that a moved installation still answers rightly.
file(RELATIVE_PATH ryn_pc_up
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${CMAKE_CURRENT_LIST_DIR}/ryncommon.pc.in ${PROJECT_BINARY_DIR}/ryncommon.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/ryncommon.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
