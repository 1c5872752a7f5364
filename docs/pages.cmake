# Makes the pages in the working folder from the Doxyfile there. Looks for Doxygen only now, so that
# it can be installed at any time.
find_program(doxygen doxygen NO_CACHE)
if(NOT doxygen)
  message(FATAL_ERROR "docs: doxygen is not installed")
endif()
file(REMOVE_RECURSE html) # otherwise deleted pages would stay
execute_process(COMMAND ${doxygen} Doxyfile COMMAND_ERROR_IS_FATAL ANY)

# Removes lists that no page links to, and Doxygen's scripts, styles and icons, which ours replace.
file(GLOB lists html/annotated.html html/classes.html html/functions*.html html/pages.html
     html/dir_*.html html/*-members.html)
file(REMOVE ${lists})
file(GLOB files html/*.js html/*.css html/*.png html/*.svg)
foreach(file IN LISTS files)
  get_filename_component(name ${file} NAME)
  if(NOT EXISTS ${CMAKE_CURRENT_LIST_DIR}/theme/${name} AND
     NOT EXISTS ${CMAKE_CURRENT_LIST_DIR}/images/${name})
    file(REMOVE ${file})
  endif()
endforeach()

# Code style in the text of a link would be shown as a tag.
file(GLOB pages html/*.html)
foreach(page IN LISTS pages)
  file(STRINGS ${page} tags REGEX "&lt;code&gt;")
  if(tags)
    message(FATAL_ERROR "docs: ${page} has code style in a link: ${tags}")
  endif()
endforeach()
