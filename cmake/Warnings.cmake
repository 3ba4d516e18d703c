# The flags of every target of this project, as a target that each one links.
add_library(quenthisar_flags INTERFACE)
target_compile_options(quenthisar_flags INTERFACE
    -Wall -Wextra -Wconversion -Wshadow=local -Wnon-virtual-dtor -Woverloaded-virtual
    $<$<BOOL:${QUENTHISAR_STRICT}>:-Werror>)
target_compile_definitions(quenthisar_flags INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII)
