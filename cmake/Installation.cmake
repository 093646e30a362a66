# `cmake --install`: the program and what desktops know it by.
include(GNUInstallDirs)

# What windows, desktop entry, icon and metainfo have in common.
set(KESTROVE_IDENTIFIER dev.kestrove.Kestrove)
set(share ${PROJECT_SOURCE_DIR}/packaging/share)

install(TARGETS kestrove RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${share}/privacy-policy.html DESTINATION ${CMAKE_INSTALL_DATADIR}/kestrove)
install(FILES ${share}/${KESTROVE_IDENTIFIER}.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${share}/${KESTROVE_IDENTIFIER}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# Off until a user turns it on. Only the prefix /usr has its configuration outside of the prefix.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(configuration ${CMAKE_INSTALL_FULL_SYSCONFDIR})
else()
    set(configuration ${CMAKE_INSTALL_SYSCONFDIR})
endif()
install(FILES ${share}/autostart.desktop RENAME ${KESTROVE_IDENTIFIER}.desktop
        DESTINATION ${configuration}/xdg/autostart)

# The one drawing, and pictures of it for what does not draw.
set(icon ${PROJECT_SOURCE_DIR}/UI/Icons/Kestrove.svg)
set(hicolor ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES ${icon} RENAME ${KESTROVE_IDENTIFIER}.svg DESTINATION ${hicolor}/scalable/apps)
find_program(KESTROVE_RSVG_CONVERT rsvg-convert REQUIRED)
set(made)
foreach(side 16 22 24 32 48 64 128 256 512)
    set(picture ${PROJECT_BINARY_DIR}/icons/${side}.png)
    add_custom_command(OUTPUT ${picture} DEPENDS ${icon} VERBATIM
        COMMAND ${KESTROVE_RSVG_CONVERT} --width ${side} --height ${side} --output ${picture}
                ${icon})
    install(FILES ${picture} RENAME ${KESTROVE_IDENTIFIER}.png
            DESTINATION ${hicolor}/${side}x${side}/apps)
    list(APPEND made ${picture})
endforeach()

# Texts that Debian wants compressed; without names and times, so that equal trees pack equally.
find_program(KESTROVE_GZIP gzip REQUIRED)
function(kestrove_compressed source folder)
    get_filename_component(name ${source} NAME)
    set(result ${PROJECT_BINARY_DIR}/compressed/${name}.gz)
    add_custom_command(OUTPUT ${result} DEPENDS ${source} VERBATIM
        COMMAND ${KESTROVE_GZIP} -9nc ${source} > ${result})
    install(FILES ${result} DESTINATION ${folder})
    set(made ${made} ${result} PARENT_SCOPE)
endfunction()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/icons ${PROJECT_BINARY_DIR}/compressed)
kestrove_compressed(${share}/kestrove.1 ${CMAKE_INSTALL_MANDIR}/man1)

set(debian ${PROJECT_SOURCE_DIR}/packaging/debian)
kestrove_compressed(${debian}/changelog ${CMAKE_INSTALL_DOCDIR})
install(FILES ${debian}/copyright ${debian}/README.Debian DESTINATION ${CMAKE_INSTALL_DOCDIR})

add_custom_target(installed-files ALL DEPENDS ${made})
