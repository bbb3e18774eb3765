# Release builds are hardened, the HTTP library included: the network in a bus is hostile. Flags
# that a compiler or processor does not support are left out; tests/checks/hardening.py shows the
# result. Sanitizer and fuzzing builds have their own checks, which these flags would disturb.
option(WEBCTRL_HARDENING "Harden release builds" ON)
include(CheckCXXCompilerFlag)

if(WEBCTRL_HARDENING AND CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT WEBCTRL_SANITIZE
   AND NOT WEBCTRL_BUILD_FUZZ)
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection=full)
    string(MAKE_C_IDENTIFIER "WEBCTRL_HAS${flag}" has)
    check_cxx_compiler_flag(${flag} ${has})
    if(${has})
      add_compile_options(${flag})
    endif()
  endforeach()
  # Level 3 also checks sizes that are only known at run time; older compilers treat it as 2.
  add_compile_options(-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3)
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)

  # A static executable can be position-independent only with a C library built for that.
  if(NOT CMAKE_EXE_LINKER_FLAGS MATCHES "-static")
    include(CheckPIESupported)
    check_pie_supported()
    set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  endif()
endif()
