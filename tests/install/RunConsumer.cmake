# cmake -D WAY=find_package|pkg_config|add_subdirectory -D ... -P RunConsumer.cmake
#   Builds the consumer below SCRATCH_DIR in the given way and runs it. What it uses of the library's own build
#   comes in through BUILD_DIR, SOURCE_DIR, LIBDIR, GENERATOR, CXX_COMPILER, LAUNCHER and BUILD_TYPE.
set(consumer_dir ${CMAKE_CURRENT_LIST_DIR}/consumer)
set(prefix ${SCRATCH_DIR}/prefix)
set(consumer ${SCRATCH_DIR}/build/consumer)
file(REMOVE_RECURSE ${SCRATCH_DIR})
file(MAKE_DIRECTORY ${SCRATCH_DIR}/build)

function(run)
    execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(build_consumer)
    run(${CMAKE_COMMAND} -S ${consumer_dir} -B ${SCRATCH_DIR}/build -G ${GENERATOR}
        -D CMAKE_CXX_COMPILER=${CXX_COMPILER} -D CMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} ${ARGN})
    run(${CMAKE_COMMAND} --build ${SCRATCH_DIR}/build)
endfunction()

if(WAY STREQUAL "find_package")
    run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
    build_consumer(-D CMAKE_BUILD_TYPE=${BUILD_TYPE} -D CMAKE_PREFIX_PATH=${prefix})
elseif(WAY STREQUAL "pkg_config")
    run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
    set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
    set(ENV{LD_LIBRARY_PATH} ${prefix}/${LIBDIR})
    execute_process(COMMAND pkg-config --cflags --libs ryncommon
        OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(flags UNIX_COMMAND "${flags}")
    run(${CXX_COMPILER} -std=c++20 ${consumer_dir}/Main.cpp -o ${consumer} ${flags})
elseif(WAY STREQUAL "add_subdirectory")
    # As a shared library, so that the exported symbols are proved to suffice. Nothing is optimised: this
    # compiles the whole library again.
    build_consumer(-D CMAKE_BUILD_TYPE=Debug -D CMAKE_CXX_FLAGS_DEBUG=-O0 -D BUILD_SHARED_LIBS=ON
        -D RYNCOMMON_SOURCE_DIR=${SOURCE_DIR})
else()
    message(FATAL_ERROR "unknown way to use the library: ${WAY}")
endif()
run(${consumer})
