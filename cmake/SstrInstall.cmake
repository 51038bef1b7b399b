# What is installed, where, and the package by which other projects find it: find_package(sstr).
include(CMakePackageConfigHelpers)

set(sstr_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/sstr)

# The libraries. sstr_numbers travels with them, so that the host's inline vector arithmetic gives
# its users the same bits.
set_target_properties(sstr_numbers PROPERTIES EXPORT_NAME numbers)
install(TARGETS qc StaticStrength qmSSTRc sstr_numbers EXPORT sstrTargets)
install(EXPORT sstrTargets NAMESPACE sstr:: DESTINATION ${sstr_package_dir})
install(DIRECTORY host/include/qc DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES StaticStrength/qmStaticStrength.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

configure_package_config_file(cmake/sstrConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/sstrConfig.cmake
  INSTALL_DESTINATION ${sstr_package_dir} PATH_VARS CMAKE_INSTALL_DATADIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/sstrConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/sstrConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/sstrConfigVersion.cmake
  DESTINATION ${sstr_package_dir})

# The program, the human it knows, and what to read. Scenes name figures by relative path, so
# examples/ and figures/ stay side by side.
install(TARGETS sstr)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/sstr PATTERN "make_examples.sh" EXCLUDE)
install(DIRECTORY figures DESTINATION ${CMAKE_INSTALL_DATADIR}/sstr
  FILES_MATCHING PATTERN "*.urdf" PATTERN "*.roles.json" PATTERN "*.figure.json" PATTERN "README.md")
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
