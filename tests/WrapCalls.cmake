# lmp_wrap_calls(NAME): the system calls of the program's own code go through support/FailingCalls.
function(lmp_wrap_calls NAME)
  foreach(call mkdir open flock fstat read write fsync close rename renameat2 unlink)
    target_link_options(${NAME} PRIVATE "LINKER:--wrap=${call}")
  endforeach()
endfunction()
