# Writes an SPDX document: what the DLL is made of, in which versions, under which licences.
# cmake -D LIBRARY=... -D OUTPUT=... -D VERSION=... -D RAPIDJSON=rapidjson.h
#       [-D GCC_VERSION=... -D PREPROCESSOR=...]   of MinGW, whose runtime is linked in
#       -P WriteSpdx.cmake
cmake_minimum_required(VERSION 3.25)

# version_from_macros(RESULT TEXT MACRO...)
function(version_from_macros result text)
  set(numbers)
  foreach(macro IN LISTS ARGN)
    if(NOT text MATCHES "#define ${macro} ([0-9]+)")
      message(FATAL_ERROR "There is no ${macro}")
    endif()
    list(APPEND numbers ${CMAKE_MATCH_1})
  endforeach()
  list(JOIN numbers "." version)
  set(${result} ${version} PARENT_SCOPE)
endfunction()

function(append array value)
  string(JSON length LENGTH "${${array}}")
  string(JSON longer SET "${${array}}" ${length} "${value}")
  set(${array} "${longer}" PARENT_SCOPE)
endfunction()

# add_part(NAME VERSION LICENSE [LIBRARY-FILE])
macro(add_part name version license)
  set(package "{
    \"SPDXID\": \"SPDXRef-${name}\",
    \"name\": \"${name}\",
    \"versionInfo\": \"${version}\",
    \"downloadLocation\": \"NOASSERTION\",
    \"filesAnalyzed\": false,
    \"licenseConcluded\": \"${license}\",
    \"licenseDeclared\": \"${license}\",
    \"copyrightText\": \"NOASSERTION\"
  }")
  if(${ARGC} GREATER 3)
    string(JSON package SET "${package}" packageFileName "\"CommonPreferences.dll\"")
    string(JSON package SET "${package}" checksums
      "[{\"algorithm\": \"SHA256\", \"checksumValue\": \"${checksum}\"}]")
    add_relationship(DOCUMENT DESCRIBES ${name})
  else()
    add_relationship(CommonPreferences CONTAINS ${name})
  endif()
  append(packages "${package}")
endmacro()

macro(add_relationship from type to)
  append(relationships "{
    \"spdxElementId\": \"SPDXRef-${from}\",
    \"relationshipType\": \"${type}\",
    \"relatedSpdxElement\": \"SPDXRef-${to}\"
  }")
endmacro()

set(packages "[]")
set(relationships "[]")
file(SHA256 ${LIBRARY} checksum)
add_part(CommonPreferences ${VERSION} MIT ${LIBRARY})
file(READ ${RAPIDJSON} text)
version_from_macros(version "${text}"
  RAPIDJSON_MAJOR_VERSION RAPIDJSON_MINOR_VERSION RAPIDJSON_PATCH_VERSION)
add_part(RapidJSON ${version} MIT)
if(GCC_VERSION)
  add_part(GCC-runtime ${GCC_VERSION} "GPL-3.0-or-later WITH GCC-exception-3.1")
  execute_process(COMMAND ${PREPROCESSOR} -x c++ -E -dM -include _mingw_mac.h /dev/null
    OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  version_from_macros(version "${text}"
    __MINGW64_VERSION_MAJOR __MINGW64_VERSION_MINOR __MINGW64_VERSION_BUGFIX)
  add_part(MinGW-w64-runtime ${version} LicenseRef-MinGW-w64)
endif()

string(TIMESTAMP now "%Y-%m-%dT%H:%M:%SZ" UTC)
set(document "{
  \"spdxVersion\": \"SPDX-2.3\",
  \"dataLicense\": \"CC0-1.0\",
  \"SPDXID\": \"SPDXRef-DOCUMENT\",
  \"name\": \"CommonPreferences-${VERSION}\",
  \"documentNamespace\": \"https://spdx.org/spdxdocs/CommonPreferences-${VERSION}-${checksum}\",
  \"creationInfo\": { \"created\": \"${now}\", \"creators\": [\"Tool: CMake-${CMAKE_VERSION}\"] }
}")
string(JSON document SET "${document}" packages "${packages}")
string(JSON document SET "${document}" relationships "${relationships}")
if(GCC_VERSION)
  string(JSON document SET "${document}" hasExtractedLicensingInfos "[{
    \"licenseId\": \"LicenseRef-MinGW-w64\",
    \"name\": \"Licences of the MinGW-w64 runtime\",
    \"extractedText\": \"ZPL-2.1 and others: the whole text is in licenses/MinGW-w64.txt.\"
  }]")
endif()
file(WRITE ${OUTPUT} "${document}\n")
