# What a package holds: the command, the libraries with headers, and the installation root.
include(CMakePackageConfigHelpers)

install(TARGETS diagsrunner diagsplatform EXPORT diagsrunner-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
        NAMELINK_COMPONENT development)
install(FILES runner/DiagsRunner.h runner/Export.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/diagsrunner/runner COMPONENT development)
install(FILES parsers/TDiagnosticAction.h parsers/TDiagnosticResultMessage.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/diagsrunner/parsers COMPONENT development)
install(DIRECTORY platform/contract
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/diagsrunner/platform COMPONENT development
        FILES_MATCHING PATTERN "*.h")
install(FILES platform/cimxml/TServerOptions.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/diagsrunner/platform/cimxml COMPONENT development)
install(FILES platform/setup/ProviderCalls.h platform/setup/TPlatform.h
              platform/setup/TProviderStore.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/diagsrunner/platform/setup COMPONENT development)
install(FILES platform/services/TCoreLogger.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/diagsrunner/platform/services
        COMPONENT development)
install(DIRECTORY platform/cmpi/abi
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/diagsrunner/platform/cmpi COMPONENT development
        FILES_MATCHING PATTERN "*.h")

# What the messages about providers cite.
install(FILES docs/provider-rules.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)

install(DIRECTORY data/ DESTINATION ${DIAGSRUNNER_ROOT_DIR} COMPONENT runtime)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/diagsrunner)
install(EXPORT diagsrunner-targets NAMESPACE diagsrunner:: DESTINATION ${package_dir}
        COMPONENT development)
configure_package_config_file(cmake/diagsrunner-config.cmake.in
    ${PROJECT_BINARY_DIR}/diagsrunner-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/diagsrunner-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/diagsrunner-config.cmake
              ${PROJECT_BINARY_DIR}/diagsrunner-config-version.cmake
        DESTINATION ${package_dir} COMPONENT development)
configure_file(cmake/diagsrunner.pc.in ${PROJECT_BINARY_DIR}/diagsrunner.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/diagsrunner.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
