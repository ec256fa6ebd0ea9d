# Install rules and the CMake package: find_package(bkedittimecheck) gives the engine
# (bkedittimecheck::engine), the reference host (bkedittimecheck::host, one library per platform
# service behind it), the blockara program, and the installation root the host reads
# (bkedittimecheck_RESOURCE_DIR).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(BKETC_INCLUDE_SUBDIR ${CMAKE_INSTALL_INCLUDEDIR}/bkedittimecheck)
set(BKETC_RESOURCE_SUBDIR ${CMAKE_INSTALL_DATADIR}/bkedittimecheck/resources)
set(BKETC_PACKAGE_SUBDIR ${CMAKE_INSTALL_LIBDIR}/cmake/bkedittimecheck)

set(BKETC_HOST_TARGETS blockara_runtime blockara_xml blockara_trace blockara_prefs blockara_style
  blockara_signals blockara_model blockara_studio blockara_language blockara_package)
set(BKETC_EXPORTED_TARGETS bketc_options blockara_host bkedittimecheck_engine ${BKETC_HOST_TARGETS})

# Headers are included from the source root ("src/...", "host/..."); once installed, from the
# package's include folder.
foreach(target bkedittimecheck_engine ${BKETC_HOST_TARGETS})
  get_target_property(dirs ${target} INTERFACE_INCLUDE_DIRECTORIES)
  list(TRANSFORM dirs REPLACE "^${PROJECT_SOURCE_DIR}$"
       "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>;$<INSTALL_INTERFACE:${BKETC_INCLUDE_SUBDIR}>")
  set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${dirs}")
endforeach()
set_target_properties(bketc_options PROPERTIES EXPORT_NAME options)
set_target_properties(blockara_host PROPERTIES EXPORT_NAME host)
set_target_properties(bkedittimecheck_engine PROPERTIES EXPORT_NAME engine)

install(TARGETS ${BKETC_EXPORTED_TARGETS} EXPORT bkedittimecheckTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS blockara RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(tree src host)
  install(DIRECTORY ${tree}/ DESTINATION ${BKETC_INCLUDE_SUBDIR}/${tree}
          FILES_MATCHING PATTERN "*.h")
endforeach()
install(DIRECTORY resources/ DESTINATION ${BKETC_RESOURCE_SUBDIR})
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/bkedittimecheck/examples)
install(FILES docs/embedding.md docs/user-guide.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

install(EXPORT bkedittimecheckTargets NAMESPACE bkedittimecheck::
        DESTINATION ${BKETC_PACKAGE_SUBDIR})
configure_package_config_file(cmake/bkedittimecheckConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/bkedittimecheckConfig.cmake
  INSTALL_DESTINATION ${BKETC_PACKAGE_SUBDIR} PATH_VARS BKETC_RESOURCE_SUBDIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/bkedittimecheckConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/bkedittimecheckConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/bkedittimecheckConfigVersion.cmake
        DESTINATION ${BKETC_PACKAGE_SUBDIR})
