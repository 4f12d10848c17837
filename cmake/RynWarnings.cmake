# ryn_set_warnings(<target>)
#   Switches the project's warnings on for the target's own sources; they are errors with RYNCOMMON_WERROR.
function(ryn_set_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor
        -Woverloaded-virtual -Wcast-qual -Wformat=2 -Wundef -Wunused -Wdouble-promotion -Wextra-semi
        -Wimplicit-fallthrough
        $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wlogical-op -Wsuggest-override>
        $<$<CXX_COMPILER_ID:Clang>:-Wsuggest-override -Wshorten-64-to-32 -Wno-gnu-zero-variadic-macro-arguments>
        $<$<BOOL:${RYNCOMMON_WERROR}>:-Werror>)
endfunction()
