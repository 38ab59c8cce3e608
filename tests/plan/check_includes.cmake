# Fails when a file of a library includes a header of another that its target does not link, directly or through what
# that one links.
#
#   cmake -D links=<file> -D root=<source directory> -P check_includes.cmake
#
# A line of <links> is "<folder>: <linked target>...". A library's target has the name of its folder.
cmake_minimum_required(VERSION 3.25)

file(STRINGS ${links} lines)
set(folders "")
foreach(line ${lines})
  string(REGEX MATCH "^([^:]+): ?(.*)$" matched "${line}")
  list(APPEND folders ${CMAKE_MATCH_1})
  string(REPLACE " " ";" linked_by_${CMAKE_MATCH_1} "${CMAKE_MATCH_2}")
endforeach()

# collect(<variable> <folder>): the folder and all that it may include.
function(collect variable folder)
  set(reached ${${variable}})
  list(APPEND reached ${folder})
  foreach(next ${linked_by_${folder}})
    if(next IN_LIST folders AND NOT next IN_LIST reached)
      collect(reached ${next})
    endif()
  endforeach()
  set(${variable} ${reached} PARENT_SCOPE)
endfunction()

set(checked 0)
set(faults "")
foreach(folder ${folders})
  set(allowed "")
  collect(allowed ${folder})
  file(GLOB_RECURSE sources ${root}/${folder}/*.cpp ${root}/${folder}/*.h)
  foreach(source ${sources})
    file(STRINGS ${source} includes REGEX "^ *# *include *\"")
    foreach(line ${includes})
      math(EXPR checked "${checked} + 1")
      string(REGEX REPLACE "^[^\"]*\"([^/\"]*).*" "\\1" used "${line}")
      if(NOT used IN_LIST allowed)
        string(REPLACE "${root}/" "" shown "${source}")
        string(APPEND faults "${shown}: ${line}: ${folder} does not link ${used}\n")
      endif()
    endforeach()
  endforeach()
endforeach()
if(checked EQUAL 0)
  message(FATAL_ERROR "no include was found below ${root}")
endif()
if(faults)
  message(FATAL_ERROR "${faults}")
endif()
message(STATUS "${checked} includes follow the links")
