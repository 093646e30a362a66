# How our own code is compiled: C++23, warnings are errors, ccache and mold where they are present.
set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(KESTROVE_CCACHE ccache)
if(KESTROVE_CCACHE)
    # What one clone has compiled is of use in the next, wherever that is.
    set(CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}
        CCACHE_NOHASHDIR=1 ${KESTROVE_CCACHE})
endif()

find_program(KESTROVE_MOLD mold)
if(KESTROVE_MOLD)
    add_link_options(-fuse-ld=mold)
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                    -Wcast-qual -Wundef -Werror -fno-omit-frame-pointer)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 sees uses of moved-from optionals and coroutine frames that are not there.
    add_compile_options(-fcoroutines -Wno-maybe-uninitialized -Wno-mismatched-new-delete
                        -Wno-dangling-pointer -Wno-subobject-linkage)
endif()

# What users run is hardened as Debian's programs are: overflows of buffers end it, and its tables
# of functions are read-only. It names only those libraries that it calls.
add_compile_options($<$<CONFIG:Release>:-U_FORTIFY_SOURCE> $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>
                    $<$<CONFIG:Release>:-fstack-protector-strong>)
add_link_options($<$<CONFIG:Release>:-Wl,-z,relro,-z,now,--as-needed>)

# address,undefined or thread; the presets asan and tsan set it.
set(KESTROVE_SANITIZERS "" CACHE STRING "Sanitizers to build with, separated by commas")
if(KESTROVE_SANITIZERS)
    add_compile_options(-fsanitize=${KESTROVE_SANITIZERS} -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${KESTROVE_SANITIZERS})
endif()
