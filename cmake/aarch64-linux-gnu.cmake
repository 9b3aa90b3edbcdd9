# Debian's cross compiler for aarch64. ACECONV_CROSS_ROOT is a folder with the libraries of that
# processor, as its packages have them; without it they are the foreign packages of the system.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ACECONV_CROSS_ROOT)
set(CMAKE_FIND_ROOT_PATH ${ACECONV_CROSS_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(ENV{PKG_CONFIG_LIBDIR} ${ACECONV_CROSS_ROOT}/usr/lib/aarch64-linux-gnu/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${ACECONV_CROSS_ROOT})
