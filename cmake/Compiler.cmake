# What every target of the house is compiled with. Warnings are errors.
add_library(coffrelune_compiler INTERFACE)
if(MSVC)
  # 4996: calls that this compiler alone calls outdated, as the one that tells the system's version.
  target_compile_options(coffrelune_compiler INTERFACE
    /W4 /WX /wd4996 /permissive- /utf-8 /EHsc)
else()
  target_compile_options(coffrelune_compiler INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 warns of overlapping copies inside std::string that cannot happen:
  # https://gcc.gnu.org/bugzilla/show_bug.cgi?id=105651
  target_compile_options(coffrelune_compiler INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # Only this compiler counts them among the conversions that -Wconversion is about.
  target_compile_options(coffrelune_compiler INTERFACE -Wno-sign-conversion)
endif()
if(WIN32)
  # Windows 10 is the oldest one that is supported. Its headers' min and max would spoil the
  # library's.
  target_compile_definitions(coffrelune_compiler INTERFACE
    _WIN32_WINNT=0x0A00 WINVER=0x0A00 NOMINMAX)
endif()
if(COFFRELUNE_SANITIZE)
  # The checks for undefined behaviour are for the program: in tests they would only find the macros
  # of the test library, and double what there is to compile.
  set(COFFRELUNE_UNDEFINED -fsanitize=undefined -fno-sanitize-recover=all)
  set(program $<NOT:$<BOOL:$<TARGET_PROPERTY:COFFRELUNE_IS_TEST>>>)
  target_compile_options(coffrelune_compiler INTERFACE
    -fsanitize=address -fno-omit-frame-pointer "$<${program}:${COFFRELUNE_UNDEFINED}>")
  target_link_options(coffrelune_compiler INTERFACE -fsanitize=address,undefined)
endif()
if(COFFRELUNE_FUZZ)
  # fuzzer-no-link: the program tells the fuzzer which of its branches an input has reached.
  target_compile_options(coffrelune_compiler INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
    # What each comparison saw would cost as much as all the rest; those of texts are seen anyhow.
    -fno-sanitize-coverage=trace-cmp)
  target_link_options(coffrelune_compiler INTERFACE -fsanitize=address,undefined)
endif()
