# Debian's compiler for ARM with hard float, limited to what every ARMv7-A processor has. The
# libraries are Debian's armhf packages, which scripts/cross.sh installs.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7)
set(triplet arm-linux-gnueabihf)

set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)
set(CMAKE_STRIP ${triplet}-strip)
set(CMAKE_C_FLAGS_INIT "-march=armv7-a+fp")
set(CMAKE_CXX_FLAGS_INIT "-march=armv7-a+fp")

# Only this architecture's libraries are found; headers are shared by all architectures.
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})
set(CMAKE_FIND_ROOT_PATH /usr/${triplet} /usr/lib/${triplet})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
