# zr_folder(NAME target FOLDER path SOURCES ... EDGES target ... LINK library ...)
#
# Makes one object target of a source folder. EDGES are the folders it may include from; they are also what the
# `layering` check holds the #include lines against, so an edge is declared here and nowhere else.
function(zr_folder)
    cmake_parse_arguments(ARG "" "NAME;FOLDER" "SOURCES;EDGES;LINK" ${ARGN})
    add_library(${ARG_NAME} OBJECT ${ARG_SOURCES})
    set_target_properties(${ARG_NAME} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(${ARG_NAME} PUBLIC zr_flags ${ARG_EDGES} ${ARG_LINK})
    list(JOIN ARG_EDGES " " edges)
    set_property(GLOBAL APPEND PROPERTY ZR_LAYERS "${ARG_FOLDER} ${ARG_NAME} ${edges}")
endfunction()

# zr_bundle(NAME target OF folder-target ... LINK ...): a static library of the objects of several folders.
function(zr_bundle)
    cmake_parse_arguments(ARG "" "NAME" "OF;LINK" ${ARGN})
    set(objects)
    foreach(folder IN LISTS ARG_OF)
        list(APPEND objects $<TARGET_OBJECTS:${folder}>)
    endforeach()
    add_library(${ARG_NAME} STATIC ${objects})
    set_target_properties(${ARG_NAME} PROPERTIES LINKER_LANGUAGE CXX)
    target_link_libraries(${ARG_NAME} PUBLIC zr_flags ${ARG_LINK})
endfunction()

# Writes "folder target edge ..." lines for the `layering` check.
function(zr_write_layers)
    get_property(layers GLOBAL PROPERTY ZR_LAYERS)
    set(text "")
    foreach(line IN LISTS layers)
        string(APPEND text "${line}\n")
    endforeach()
    file(WRITE ${CMAKE_BINARY_DIR}/layers.txt "${text}")
endfunction()

# zr_beside_runtime(target): a link beside the program to the library that `scripts/bootstrap --with-ai` fetches. It may stand
# before the library is there; a program that finds none goes on without learned models.
function(zr_beside_runtime TARGET)
    get_target_property(folder ${TARGET} BINARY_DIR)
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/build/ai/libonnxruntime.so ${folder}/libonnxruntime.so SYMBOLIC)
endfunction()
