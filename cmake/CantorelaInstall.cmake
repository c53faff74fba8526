# Installing as plug-ins are installed, and the packages made from that.
#
# Linux, under the prefix: the bundle in lib/vst3/ (/usr/lib/vst3 for the package), the
# workbench and lyric2phoneme in bin/, the README and notices in share/doc/. A user install
# puts the bundle where hosts look with -DCANTORELA_INSTALL_VST3DIR=$HOME/.vst3.
# Windows: everything side by side, the bundle in the VST3 layout, ready to be copied into
# Common Files\VST3.
#
# cpack makes a .deb on Linux and a .zip in the Windows cross-build (scripts/package.sh).
include(GNUInstallDirs)
include(CantorelaModuleInfo)

if(WIN32)
  set(CANTORELA_INSTALL_VST3DIR "." CACHE STRING "Folder for the module bundle, under the prefix or absolute")
  set(CANTORELA_INSTALL_BINDIR ".")
  set(CANTORELA_INSTALL_DOCDIR ".")
else()
  set(CANTORELA_INSTALL_VST3DIR "lib/vst3" CACHE STRING "Folder for the module bundle, under the prefix or absolute")
  set(CANTORELA_INSTALL_BINDIR ${CMAKE_INSTALL_BINDIR})
  set(CANTORELA_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/cantorela-beta-agent)
endif()

# --- What goes where ---------------------------------------------------------------------
if(TARGET CantorelaBetaAgent)
  get_filename_component(bundle_name ${CANTORELA_BUNDLE_DIR} NAME)
  get_target_property(module_dir CantorelaBetaAgent LIBRARY_OUTPUT_DIRECTORY)
  file(RELATIVE_PATH module_in_bundle ${CANTORELA_BUNDLE_DIR} ${module_dir})
  set(bundle ${CANTORELA_INSTALL_VST3DIR}/${bundle_name})
  install(TARGETS CantorelaBetaAgent LIBRARY DESTINATION ${bundle}/${module_in_bundle})
  install(FILES ${CANTORELA_BUNDLE_DIR}/Contents/Resources/moduleinfo.json DESTINATION ${bundle}/Contents/Resources)
endif()

foreach(program workbench lyric2phoneme sing)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CANTORELA_INSTALL_BINDIR})
  endif()
endforeach()

# Third-party notices travel with the binaries, whichever of them the tree has.
file(GLOB CANTORELA_NOTICES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/third-party-notices*.md)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/docs/install.md ${CANTORELA_NOTICES}
        DESTINATION ${CANTORELA_INSTALL_DOCDIR})

# --- Where the workbench looks for the module (workbench/loader/module_search.cpp) -------
if(TARGET workbench AND TARGET cantorela_workbench_loader AND TARGET CantorelaBetaAgent)
  # The installed bundle's folder as seen from the installed program.
  if(IS_ABSOLUTE ${CANTORELA_INSTALL_VST3DIR})
    set(vst3_from_program ${CANTORELA_INSTALL_VST3DIR})
  else()
    file(RELATIVE_PATH vst3_from_program /prefix/${CANTORELA_INSTALL_BINDIR} /prefix/${CANTORELA_INSTALL_VST3DIR})
  endif()
  target_compile_definitions(cantorela_workbench_loader PRIVATE
      CANTORELA_BUNDLE_NAME="${bundle_name}"
      CANTORELA_INSTALLED_VST3_FOLDER="${vst3_from_program}"
      CANTORELA_BUILD_PROGRAM_FOLDER="$<TARGET_FILE_DIR:workbench>"
      CANTORELA_BUILD_BUNDLE="${CANTORELA_BUNDLE_DIR}")
endif()

# --- Packages ------------------------------------------------------------------------------
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR ${CANTORELA_FACTORY_VENDOR})
set(CPACK_PACKAGE_HOMEPAGE_URL ${CANTORELA_FACTORY_URL})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Lyrics to phonemes for singing voice synthesisers: a VST3 service plug-in and its workbench")
set(CPACK_PACKAGE_DESCRIPTION
    "A service plug-in that a digital audio workstation loads: it finds the singing voice synthesisers \
in the host's project, turns the lyrics typed on notes into phonemes and hands each synthesiser its \
note list. With the workbench, a simulated host that runs the module on a song file, and lyric2phoneme, \
the converter on its own.")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
# scripts/package.sh builds the tree first; cpack need not walk the whole build again.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
set(CPACK_STRIP_FILES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_NAME CantorelaBetaAgent)
  set(CPACK_SYSTEM_NAME win64)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGE_NAME cantorela-beta-agent)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION sound)
  set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${CANTORELA_FACTORY_VENDOR} <cantorela@zelmor.example>")
  # The libraries the binaries link, found by dpkg-shlibdeps; fonts for the window and the
  # workbench's piano roll (kana and kanji from VL Gothic); the singing voice's engine data
  # (Festival's Scheme library, the voice, the lexicons its set-up loads) for sing.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core, festival, festvox-kallpc16k, festlex-cmu, festlex-poslex")
  set(CPACK_DEBIAN_PACKAGE_SUGGESTS fonts-vlgothic)
endif()
include(CPack)
