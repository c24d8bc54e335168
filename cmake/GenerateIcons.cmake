# Writes the C++ source that holds every picture of FOLDER. Usage:
#   cmake -DFOLDER=assets/icons -DOUTPUT=icons.cpp -P GenerateIcons.cmake
cmake_minimum_required(VERSION 3.25)

file(GLOB pictures ${FOLDER}/*.svg)
list(SORT pictures)
set(entries "")
set(names "")

macro(add_icon name file)
  if("${name}" IN_LIST names)
    message(FATAL_ERROR "Two pictures are called ${name}")
  endif()
  file(READ "${file}" drawing)
  string(APPEND entries "    {\"${name}\", R\"SVG(${drawing})SVG\"},\n")
  list(APPEND names "${name}")
endmacro()

foreach(picture IN LISTS pictures)
  get_filename_component(name "${picture}" NAME_WE)
  add_icon("${name}" "${picture}")
endforeach()

file(STRINGS ${FOLDER}/autres-noms.txt lines REGEX "^[^#]")
foreach(line IN LISTS lines)
  string(REGEX MATCH "^([^ ]+) ([^ ]+)$" matched "${line}")
  if(NOT matched OR NOT EXISTS "${FOLDER}/${CMAKE_MATCH_2}.svg")
    message(FATAL_ERROR "autres-noms.txt: ${line}")
  endif()
  add_icon("${CMAKE_MATCH_1}" "${FOLDER}/${CMAKE_MATCH_2}.svg")
endforeach()

file(WRITE "${OUTPUT}" "// Made from assets/icons by cmake/GenerateIcons.cmake.
#include \"views/wx/pictures.h\"

#include <array>

namespace coffrelune {

namespace {

struct Icon {
    std::string_view name;
    std::string_view drawing;
};

constexpr auto icons = std::to_array<Icon>({
${entries}});

}  // namespace

std::string_view iconSvg(std::string_view name) {
    for (const Icon& icon : icons) {
        if (icon.name == name) return icon.drawing;
    }
    return {};
}

}  // namespace coffrelune
")
