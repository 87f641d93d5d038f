# What `cmake --install build --prefix P` puts in place: the two programs, their man pages, and
# for the workbench the desktop entry, the MIME type of parameter documents and the icon.
include(GNUInstallDirs)

install(TARGETS tessaphon-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(page tessaphon tessaphon-cli)
    configure_file(${PROJECT_SOURCE_DIR}/docs/man/${page}.1 ${CMAKE_BINARY_DIR}/man/${page}.1 @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/man/${page}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()

if(TESSAPHON_GUI)
    install(TARGETS tessaphon RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES ${PROJECT_SOURCE_DIR}/data/tessaphon.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    install(FILES ${PROJECT_SOURCE_DIR}/data/tessaphon-mime.xml
            DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME tessaphon.xml)
    install(FILES ${PROJECT_SOURCE_DIR}/data/tessaphon.svg
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
    install(FILES ${TESSAPHON_ICON_PNG} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/256x256/apps)
endif()
