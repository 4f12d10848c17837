include(RynHeaders)

# The library target, made of the floors' objects, and ryn_objects, the same objects for the tests.
set(ryn_floor_objects "")
foreach(floor IN LISTS RYN_FLOORS)
    list(APPEND ryn_floor_objects $<TARGET_OBJECTS:ryn_${floor}>)
endforeach()

add_library(RynCommon ${ryn_floor_objects})
add_library(RynCommon::RynCommon ALIAS RynCommon)
set_target_properties(RynCommon PROPERTIES
    LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
target_compile_features(RynCommon PUBLIC cxx_std_20)
if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(RynCommon PUBLIC RYNCOMMON_STATIC)
endif()
# Public headers show ICU's types; everything else stays behind the library.
target_link_libraries(RynCommon
    PUBLIC ICU::uc
    PRIVATE ICU::i18n ICU::data ZLIB::ZLIB CURL::libcurl PkgConfig::RynCommonUuid hwy::hwy Threads::Threads
            ${CMAKE_DL_LIBS})
set(ryn_public_headers "")
foreach(floor IN LISTS RYN_FLOORS)
    foreach(header IN LISTS RYN_HEADERS_${floor})
        list(APPEND ryn_public_headers ${PROJECT_SOURCE_DIR}/include/RynCommon/${header})
    endforeach()
endforeach()
target_sources(RynCommon PUBLIC
    FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/include FILES ${ryn_public_headers})

# Tests link the objects themselves: internal symbols are then reachable when the library is shared, too.
add_library(ryn_objects INTERFACE)
foreach(floor IN LISTS RYN_FLOORS)
    target_sources(ryn_objects INTERFACE $<TARGET_OBJECTS:ryn_${floor}>)
    target_link_libraries(ryn_objects INTERFACE ryn_${floor})
endforeach()
target_link_libraries(ryn_objects INTERFACE
    ICU::i18n ICU::uc ICU::data ZLIB::ZLIB CURL::libcurl PkgConfig::RynCommonUuid hwy::hwy Threads::Threads
    ${CMAKE_DL_LIBS})
