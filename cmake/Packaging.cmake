# The Debian package `ostrafine` and its package of debug symbols, built by scripts/package.
set(CPACK_PACKAGE_NAME ostrafine)
set(CPACK_PACKAGE_VENDOR Ostrafine)
set(CPACK_PACKAGE_CONTACT "Ostrafine developers <developers@quorbel.com>")
set(CPACK_PACKAGE_HOMEPAGE_URL https://quorbel.com/ostrafine)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "live sound processor for everything the desktop plays")
set(CPACK_PACKAGE_DESCRIPTION
"Ostrafine takes everything the computer plays, runs it through an equalizer
and a chain of effects, and plays the result on the device you choose: ten
parametric bands, tone controls, harmonic bass, voice clarity, stereo width,
crosstalk shuffling, reverb, saturation, crossfeed, loudness and a look-ahead
limiter.
.
It works on PipeWire, installs no driver and changes no sound settings: when it
stops, normal sound is back by itself. The package holds the window (ostrafine)
and the program for terminals and scripts (ostrafine-cli).")
set(CPACK_STRIP_FILES OFF) # dpkg's tools move the symbols into their own package
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
# Run-time-only dependencies; dpkg-shlibdeps detects the linked libraries.
# scripts/check-qml-imports compares the QML modules with the window's imports.
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "pipewire (>= 0.3.65), wireplumber, qml6-module-qtqml, qml6-module-qtqml-models, \
qml6-module-qtqml-workerscript, qml6-module-qtquick, qml6-module-qtquick-layouts, qml6-module-qtquick-templates")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pipewire-pulse, qt6-wayland, rtkit, libglib2.0-bin")

# Mandatory documents of a Debian package; CompressDocuments.cmake adds the compressed ones.
install(FILES ${PROJECT_SOURCE_DIR}/data/debian/copyright DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/ostrafine)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/CompressDocuments.cmake)
set(CPACK_QUORBEL_CHANGELOG ${PROJECT_SOURCE_DIR}/data/debian/changelog)

include(CPack)
