# The flags of every target of this project, as a target that each one links. clang, which builds the
# fuzzing programs alone, means other things by some of these warnings.
add_library(quenthisar_flags INTERFACE)
target_compile_options(quenthisar_flags INTERFACE
    -Wall -Wextra -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
    $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>
    $<$<BOOL:${QUENTHISAR_STRICT}>:-Werror>)
target_compile_definitions(quenthisar_flags INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII)
