# How code of this project is compiled: C++17, hidden symbols, warnings, the sanitizers asked for,
# and floating-point arithmetic that gives the same on every processor.
function(lumetra_target target)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 17
    CXX_STANDARD_REQUIRED ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /fp:precise $<$<BOOL:${LUMETRA_WARNINGS_AS_ERRORS}>:/WX>)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
      $<$<BOOL:${LUMETRA_WARNINGS_AS_ERRORS}>:-Werror>
      -ffp-contract=off
      # OpenCV's atomic addition is a macro, which Clang sees in our code as one of C.
      $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wno-c11-extensions>
      -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=) # errors name our files from here on down
  endif()
  if(LUMETRA_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${LUMETRA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${LUMETRA_SANITIZE})
  endif()
endfunction()

# A host that asks for no build type and no flags would get pixel code 20 to 80 times slower.
set(pixel_flags "")
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES AND NOT CMAKE_CXX_FLAGS)
  separate_arguments(pixel_flags NATIVE_COMMAND "${CMAKE_CXX_FLAGS_RELEASE}")
  message(STATUS "Lumetra: no build type is set, so its code is optimised (${CMAKE_CXX_FLAGS_RELEASE})")
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64|i[3-6]86)$" AND NOT MSVC)
  list(APPEND pixel_flags -msse4.1)
endif()

# No code of ours looks at floating-point exceptions, so that comparisons can be made side by side.
if(NOT MSVC)
  list(APPEND pixel_flags -fno-trapping-math)
endif()

# What code that walks over pixels is compiled with besides.
function(lumetra_pixel_target target)
  target_compile_options(${target} PRIVATE ${pixel_flags})
endfunction()
