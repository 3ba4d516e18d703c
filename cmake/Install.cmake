# Where everything goes, and the Debian package.
include(GNUInstallDirs)

set(id com.vornack.quenthisar)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
set(pages ${CMAKE_INSTALL_DOCDIR})

# Debian wants these compressed.
find_program(gzip gzip REQUIRED)
function(quenthisar_compress source name destination)
    set(compressed ${CMAKE_BINARY_DIR}/${name}.gz)
    execute_process(COMMAND ${gzip} -9nc ${PROJECT_SOURCE_DIR}/${source}
        OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${compressed} DESTINATION ${destination})
endfunction()

install(TARGETS quenthisar DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS quenthisar-guard DESTINATION ${CMAKE_INSTALL_LIBEXECDIR})
install(FILES assets/${id}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES assets/${id}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES assets/icons/${id}.svg DESTINATION ${icons}/scalable/apps)
install(FILES assets/icons/${id}-symbolic.svg DESTINATION ${icons}/symbolic/apps)
install(FILES assets/copyright SECURITY.md docs/dongle.md DESTINATION ${pages})
quenthisar_compress(CHANGELOG.md changelog ${pages})
quenthisar_compress(assets/debian-changelog changelog.Debian ${pages})
quenthisar_compress(assets/quenthisar.1 quenthisar.1 ${CMAKE_INSTALL_MANDIR}/man1)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quenthisar)
set(CPACK_PACKAGE_VENDOR "The Quenthisar developers")
set(CPACK_PACKAGE_CONTACT "The Quenthisar developers <quenthisar@vornack.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "share keyboard and mouse through Bluetooth dongles")
set(CPACK_PACKAGE_DESCRIPTION
"Push the pointer over a screen edge, and keys and motion go to the machine
behind it; hold Control, Alt and Super together to come back. The other
machine needs a small Bluetooth LE dongle and no software: it works at a
login screen, in a BIOS, on a locked-down computer.
.
It needs an X11 session.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The hooks' shell, and the daemon that reaches dongles.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "zsh, bluez")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core | fonts-cantarell | fonts-noto-core")
include(CPack)
