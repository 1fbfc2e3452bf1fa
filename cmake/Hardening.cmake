# What the compiler and the linker do against memory errors, for every target: files of others are read by the window
# as well as by the root remover. scripts/check-hardening looks for all of it in the programs that were built.

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_compile_options(-fstack-protector-strong -fstack-clash-protection
                    $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)  # which takes an optimising compiler
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i.86)$")
  add_compile_options(-fcf-protection=full)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  add_compile_options(-mbranch-protection=standard)
endif()
add_link_options(-Wl,-z,relro,-z,now -Wl,-z,noexecstack)
