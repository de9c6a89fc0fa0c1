# Install rules and the Debian package (cmake --build build --target package).
#
# The programs, the module and the private libraries live under /usr/lib/zordrivebench, the
# data under /usr/share/zordrivebench; links join them, so that every path the programs use
# is relative to the executable (see host/include/zorhost/InstallLayout.h):
#
#   /usr/bin/zordrivebench, zordrive-sim -> ../lib/zordrivebench/bin/...
#   /usr/lib/zordrivebench/bin/          the programs
#   /usr/lib/zordrivebench/lib/          libafx.so, libzorskin.so
#   /usr/lib/zordrivebench/modules/      QXParmira.so
#   /usr/lib/zordrivebench/devices, Config -> ../../share/zordrivebench/...
#   /usr/share/zordrivebench/devices/    device descriptions
#   /usr/share/zordrivebench/Config/     the module's configuration

set(parmira_root lib/zordrivebench)
set(parmira_share share/zordrivebench)

set_target_properties(zordrivebench zordrive-sim PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
set_target_properties(QXParmira PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
set_target_properties(afx zorskin PROPERTIES INSTALL_RPATH "$ORIGIN")

install(TARGETS zordrivebench zordrive-sim RUNTIME DESTINATION ${parmira_root}/bin)
install(TARGETS afx zorskin LIBRARY DESTINATION ${parmira_root}/lib)
install(TARGETS QXParmira LIBRARY DESTINATION ${parmira_root}/modules)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/devices/ DESTINATION ${parmira_share}/devices
    FILES_MATCHING PATTERN "*.json" PATTERN "README.md" PATTERN "tools" EXCLUDE
    PATTERN "Config" EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/devices/Config/ DESTINATION ${parmira_share}/Config
    PATTERN ".*" EXCLUDE)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/zordrivebench.desktop
    DESTINATION share/applications)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/zordrivebench.svg
    DESTINATION share/icons/hicolor/scalable/apps)

# Relative links, made in the staging tree at install time.
function(parmira_install_link target link)
    install(CODE "
        set(_link \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${link}\")
        get_filename_component(_dir \"\${_link}\" DIRECTORY)
        file(MAKE_DIRECTORY \"\${_dir}\")
        file(CREATE_LINK \"${target}\" \"\${_link}\" SYMBOLIC)
        message(STATUS \"Link: \${_link} -> ${target}\")")
endfunction()
parmira_install_link(../lib/zordrivebench/bin/zordrivebench bin/zordrivebench)
parmira_install_link(../lib/zordrivebench/bin/zordrive-sim bin/zordrive-sim)
parmira_install_link(../../share/zordrivebench/devices ${parmira_root}/devices)
parmira_install_link(../../share/zordrivebench/Config ${parmira_root}/Config)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zordrivebench)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "ZorDriveBench developers <zordrivebench@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Parameter tool for servo drives and inverters")
set(CPACK_PACKAGE_DESCRIPTION
    "ZorDriveBench shows, edits, compares, saves and downloads the parameters of servo\n"
    "drives and inverters, with simulated drives and a Modbus drive simulator.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
# Dependencies come from the libraries the programs link; the private ones are in the
# package itself.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/bin)
# The parameter names are Chinese; without a CJK font they show as boxes.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-wqy-microhei")
set(CPACK_STRIP_FILES ON)
include(CPack)
