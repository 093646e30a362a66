# kestrove_folder(FOLDER [QT] [DEPENDS FOLDER...] [LIBRARIES TARGET...])
#
# Makes one static library of a source folder, named after it with "/" as "-". The library hands its
# users an include directory in which only this folder can be found (a link in the build tree), so
# an #include of a folder that is not among the dependencies does not compile.
function(kestrove_folder folder)
    cmake_parse_arguments(arg "QT" "" "DEPENDS;LIBRARIES" ${ARGN})
    string(REPLACE "/" "-" target ${folder})

    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.h)
    list(FILTER sources EXCLUDE REGEX "/Main/")

    set(view ${PROJECT_BINARY_DIR}/include/${target})
    get_filename_component(parent ${view}/${folder} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${folder} ${view}/${folder} SYMBOLIC)

    if(sources)
        set(scope PUBLIC)
        add_library(${target} STATIC ${sources} ${headers})
        if(arg_QT)
            set_target_properties(${target} PROPERTIES AUTOMOC ON)
            # Words like `emit` are names of ours.
            target_compile_definitions(${target} PUBLIC QT_NO_KEYWORDS)
        endif()
    else()
        set(scope INTERFACE)
        add_library(${target} INTERFACE)
    endif()
    target_include_directories(${target} ${scope} ${view})
    foreach(dependency ${arg_DEPENDS})
        string(REPLACE "/" "-" dependency ${dependency})
        target_link_libraries(${target} ${scope} ${dependency})
    endforeach()
    target_link_libraries(${target} ${scope} ${arg_LIBRARIES} Threads::Threads)
endfunction()
