# The application icon: data/tessaphon.svg is the source; the 256 px PNG that the desktop and the
# window use is rendered from it at build time into TESSAPHON_ICON_PNG. Included by the folder
# of the program that builds the PNG into itself.
find_program(TESSAPHON_RSVG rsvg-convert REQUIRED)
add_custom_command(
    OUTPUT ${TESSAPHON_ICON_PNG}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/data
    COMMAND ${TESSAPHON_RSVG} -w 256 -h 256 ${PROJECT_SOURCE_DIR}/data/tessaphon.svg -o ${TESSAPHON_ICON_PNG}
    DEPENDS ${PROJECT_SOURCE_DIR}/data/tessaphon.svg
    COMMENT "Rendering the application icon")
