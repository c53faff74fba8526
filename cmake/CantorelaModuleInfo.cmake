# What the module says about itself, in one place: the factory reads these values from a
# generated header, and hosts that scan without loading read them from the bundle's
# Contents/Resources/moduleinfo.json. The class's version is the project's version.
set(CANTORELA_FACTORY_VENDOR "Zelmor Corporation")
set(CANTORELA_FACTORY_URL "https://www.zelmor.example/cantorela")
set(CANTORELA_FACTORY_EMAIL "")
set(CANTORELA_FACTORY_FLAGS 24) # kComponentNonDiscardable | kUnicode
set(CANTORELA_CLASS_ID 13EA3FBBE8FB4FC5AF9D5329A091EB19)
set(CANTORELA_CLASS_CATEGORY "Service")
set(CANTORELA_CLASS_NAME "Cantorela Beta")
set(CANTORELA_CLASS_CARDINALITY 1)
set(CANTORELA_CLASS_FLAGS 0)
set(CANTORELA_CLASS_VERSION ${PROJECT_VERSION})
set(CANTORELA_CLASS_SDK_VERSION "4.2")

# Writes the header into <generated>/agent/module_info.h and the bundle's moduleinfo.json.
function(cantorela_module_info generated bundle)
  get_filename_component(CANTORELA_BUNDLE_NAME ${bundle} NAME_WE)
  # The class id as the four 32-bit words of INLINE_UID.
  foreach(word 0 1 2 3)
    math(EXPR start "${word} * 8")
    string(SUBSTRING ${CANTORELA_CLASS_ID} ${start} 8 CANTORELA_CLASS_ID_${word})
  endforeach()
  # The flags as moduleinfo.json names them.
  foreach(flag "CLASSES_DISCARDABLE;1" "COMPONENT_NON_DISCARDABLE;8" "UNICODE;16")
    list(GET flag 0 name)
    list(GET flag 1 bit)
    math(EXPR set "${CANTORELA_FACTORY_FLAGS} & ${bit}")
    if(set)
      set(CANTORELA_FLAG_${name} true)
    else()
      set(CANTORELA_FLAG_${name} false)
    endif()
  endforeach()
  set(source ${PROJECT_SOURCE_DIR}/agent)
  configure_file(${source}/module_info.h.in ${generated}/agent/module_info.h @ONLY)
  configure_file(${source}/moduleinfo.json.in ${bundle}/Contents/Resources/moduleinfo.json @ONLY)
endfunction()
