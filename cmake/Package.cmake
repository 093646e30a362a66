# `cpack -G DEB`: what ./package makes of the preset `package`, whose prefix is /usr.
set(debian ${PROJECT_SOURCE_DIR}/packaging/debian)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrove)
set(CPACK_PACKAGE_CONTACT "The Kestrove developers <kestrove@kestrove.dev>")
# The autostart entry lies in /etc, outside of the prefix.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION TRUE)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${debian}/conffiles)
# What is linked is found out; this is what is not linked: Qt's reader of drawings, which it loads
# when it needs it, and letters for the texts, which are Japanese.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6, fonts-noto-cjk | fonts-japanese-gothic")
# Opens the privacy page.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "show one display or window live in a window to share")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Kestrove shows one display or window live in a window of its own. Share that
window once in a call, and choose meanwhile what the others see: the display
that you point at, that of the application you work in, or the displays and
windows that you ticked.
.
When a source has gone or you stop, no old picture is left. Kestrove sends
nothing over the network; what is shared is up to you and your call.
.
It needs an X11 desktop.")

include(CPack)
