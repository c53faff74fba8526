# Our own code compiles clean under -Wall -Wextra; third-party sources are built without them.
function(cantorela_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
endfunction()
