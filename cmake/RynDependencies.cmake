# Finds what the library is linked with. The build and the installed package configuration both include this
# file, so the two cannot drift apart. A target that the parent project already provides is taken as it is.
include(CMakeFindDependencyMacro)

# ryn_find(<package> [<find_package arguments>...])
#   In the build a missing package is an error; in the installed configuration the caller of
#   find_package(RynCommon) says whether it is.
macro(ryn_find)
    if(CMAKE_FIND_PACKAGE_NAME STREQUAL "RynCommon")
        find_dependency(${ARGV})
    else()
        find_package(${ARGV} REQUIRED)
    endif()
endmacro()

if(NOT TARGET ICU::uc OR NOT TARGET ICU::i18n OR NOT TARGET ICU::data)
    ryn_find(ICU 70 COMPONENTS uc i18n data)
endif()
if(NOT TARGET ZLIB::ZLIB)
    ryn_find(ZLIB)
endif()
if(NOT TARGET CURL::libcurl)
    ryn_find(CURL)
endif()
if(NOT TARGET Threads::Threads)
    ryn_find(Threads)
endif()
if(NOT TARGET hwy::hwy)
    ryn_find(hwy CONFIG)
endif()
if(NOT TARGET PkgConfig::RynCommonUuid)
    ryn_find(PkgConfig)
    # libuuid ships neither a CMake package nor a find module. Its header is included as <uuid/uuid.h>.
    pkg_check_modules(RynCommonUuid REQUIRED IMPORTED_TARGET GLOBAL uuid)
endif()
