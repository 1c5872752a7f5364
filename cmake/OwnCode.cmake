# How code of this project is compiled: C++17, hidden symbols, warnings, the sanitizers asked for.
function(own_code target)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 17
    CXX_STANDARD_REQUIRED ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
    -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=) # errors name our files from here on down
  if(LUMETRA_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(LUMETRA_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${LUMETRA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${LUMETRA_SANITIZE})
  endif()
endfunction()
