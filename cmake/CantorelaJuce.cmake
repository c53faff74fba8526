# The toolkit (JUCE) as one static library, for the editor window, the workbench
# and the score readers.
find_package(JUCE CONFIG REQUIRED)
find_package(Threads REQUIRED)

# JUCE's modules as one static library. Debian's JUCE uses the system's image,
# compression and font libraries.
add_library(cantorela_juce STATIC)
target_link_libraries(cantorela_juce
    PRIVATE juce::juce_gui_basics juce::juce_events juce::juce_graphics juce::juce_core juce::juce_data_structures)
set(CANTORELA_JUCE_DEFINITIONS
    JUCE_STANDALONE_APPLICATION=0
    JUCE_USE_CURL=0
    JUCE_WEB_BROWSER=0
    JUCE_MODAL_LOOPS_PERMITTED=1
    JUCE_DISPLAY_SPLASH_SCREEN=0
    JUCE_USE_XRANDR=1
    # The toolkit has no DirectWrite under mingw and says so; it draws text with GDI.
    $<$<BOOL:${WIN32}>:JUCE_USE_DIRECTWRITE=0>
    JUCE_GLOBAL_MODULE_SETTINGS_INCLUDED=1)
target_compile_definitions(cantorela_juce PUBLIC ${CANTORELA_JUCE_DEFINITIONS}
    $<IF:$<CONFIG:Debug>,DEBUG=1 _DEBUG=1,NDEBUG=1>)
target_include_directories(cantorela_juce SYSTEM PUBLIC /usr/share/juce/modules)
if(WIN32)
  # Windows draws text with its own fonts; the image libraries are our own builds
  # (scripts/windows-deps.sh), and the toolkit's module files add the system libraries.
  target_link_libraries(cantorela_juce PUBLIC png16 jpeg z Threads::Threads)
else()
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(FREETYPE REQUIRED IMPORTED_TARGET freetype2)
  target_link_libraries(cantorela_juce PUBLIC PkgConfig::FREETYPE jpeg png z ${CMAKE_DL_LIBS} Threads::Threads)
endif()
