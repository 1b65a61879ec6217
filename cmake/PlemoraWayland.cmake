# plemora_wayland_protocol(<target> <file.xml>)
# Makes <file>_client.h and <file>_tables.h of a Wayland protocol; those who link the target include
# the first one with <>, and one C++ source the second one after it, inside extern "C".
find_program(PLEMORA_WAYLAND_SCANNER wayland-scanner REQUIRED)

function(plemora_wayland_protocol target protocol)
  cmake_path(ABSOLUTE_PATH protocol)
  cmake_path(GET protocol STEM name)
  set(made ${CMAKE_CURRENT_BINARY_DIR}/protocols)
  file(MAKE_DIRECTORY ${made})
  set(client ${made}/${name}_client.h)
  set(tables ${made}/${name}_tables.h)
  add_custom_command(OUTPUT ${client} ${tables}
    COMMAND ${PLEMORA_WAYLAND_SCANNER} client-header ${protocol} ${client}
    COMMAND ${PLEMORA_WAYLAND_SCANNER} private-code ${protocol} ${tables}
    DEPENDS ${protocol} VERBATIM)
  add_custom_target(${target}_made DEPENDS ${client} ${tables})
  add_library(${target} INTERFACE)
  add_dependencies(${target} ${target}_made)
  target_include_directories(${target} SYSTEM INTERFACE ${made})
endfunction()
