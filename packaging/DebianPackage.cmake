# The .deb: `cpack -G DEB` in a release build, or scripts/check-package.sh, which also checks what it asks for.
#
# dpkg-shlibdeps finds what the programs are linked with. What they load as they run is named here: the QML modules
# imported by src/screens, and by those modules in turn; the reader of SVG pictures; libsecret, which the keychain opens
# by name; certificates; letters for the language that everything is said in. Desktop and icon caches are kept by the
# triggers of desktop-file-utils and of the icon theme.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumenpair)
set(CPACK_PACKAGE_VENDOR Lumenpair)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Lumenpair <packages@lumenpair.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Talk with your AI twin")
set(CPACK_PACKAGE_DESCRIPTION
  "A native client for a social service built around each person's AI twin:\nstreamed conversations in a window or a terminal, whose messages say what\nbecame of them, and a loopback service to try it all without an account.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${LMP_BUILD_NUMBER})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(loaded ca-certificates libsecret-1-0 libqt6svg6 qml6-module-qtqml qml6-module-qtqml-models
           qml6-module-qtqml-workerscript qml6-module-qtquick qml6-module-qtquick-layouts
           qml6-module-qtquick-templates qml6-module-qtquick-window
           "fonts-noto-cjk | fonts-wqy-microhei | fonts-wqy-zenhei | fonts-droid-fallback")
list(JOIN loaded ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
# A desktop has these; the program starts, with less to offer, where one is missing.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "desktop-file-utils, hicolor-icon-theme, xdg-utils, qt6-wayland, gnome-keyring | keepassxc | kwalletmanager")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "fcitx5-frontend-qt6 | ibus")
include(CPack)
