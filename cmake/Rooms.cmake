# A room is a folder of sources with its own target, so that an arrow the wrong way does not link.
#
#   trelmix_room(name SOURCES a.cpp b.cpp DEPENDS other_room ... LIBS external ...)
#
# makes the static library `name`; the objects of all rooms together become the library `trelmix`.
set_property(GLOBAL PROPERTY TRELMIX_ROOMS "")
set_property(GLOBAL PROPERTY TRELMIX_ROOM_LIBS "")

function(trelmix_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;DEPENDS;LIBS" ${ARGN})
    add_library(${name}_objects OBJECT ${ROOM_SOURCES})
    target_include_directories(${name}_objects PUBLIC
        ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
    target_compile_definitions(${name}_objects PRIVATE TRELMIX_BUILDING)
    target_link_libraries(${name}_objects PUBLIC trelmix_flags PRIVATE ${ROOM_LIBS})
    add_library(${name} STATIC $<TARGET_OBJECTS:${name}_objects>)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC trelmix_flags ${ROOM_DEPENDS} PRIVATE ${ROOM_LIBS})
    set_property(GLOBAL APPEND PROPERTY TRELMIX_ROOMS ${name})
    set_property(GLOBAL APPEND PROPERTY TRELMIX_ROOM_LIBS ${ROOM_LIBS})
endfunction()
