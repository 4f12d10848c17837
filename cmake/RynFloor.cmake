# ryn_set_build_rules(<target>)
#   Gives an object library of the project its language level, include paths, visibility and dependencies.
function(ryn_set_build_rules target)
    ryn_set_warnings(${target})
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    # Public headers are included as <RynCommon/RyName.h>, internal ones from the root as "core/NameTable.h".
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
    target_compile_definitions(${target} PRIVATE RYNCOMMON_BUILDING)
    # Tables made at compile time take more steps than Clang allows by default.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:Clang>:-fconstexpr-steps=50000000>)
    if(NOT BUILD_SHARED_LIBS)
        target_compile_definitions(${target} PUBLIC RYNCOMMON_STATIC)
    endif()
    target_link_libraries(${target} PUBLIC
        ICU::i18n ICU::uc ICU::data ZLIB::ZLIB CURL::libcurl PkgConfig::RynCommonUuid hwy::hwy Threads::Threads
        ${CMAKE_DL_LIBS})
endfunction()

# ryn_add_floor(<floor>)
#   Makes the object library ryn_<floor>; <floor>/CMakeLists.txt lists its sources with target_sources.
function(ryn_add_floor floor)
    add_library(ryn_${floor} OBJECT ${PROJECT_SOURCE_DIR}/include/RynCommon/Export.h)
    set_target_properties(ryn_${floor} PROPERTIES LINKER_LANGUAGE CXX)
    ryn_set_build_rules(ryn_${floor})
    add_subdirectory(${floor})
endfunction()
