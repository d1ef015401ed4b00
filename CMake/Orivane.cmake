# Warnings sit on one interface target that our own targets link and third-party code does not.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
	set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

add_library(orivane_warnings INTERFACE)
target_compile_options(orivane_warnings INTERFACE
	-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
	-Wold-style-cast -Wcast-align -Wextra-semi
	-Wno-missing-field-initializers # designated initializers name what differs from the defaults
	$<$<BOOL:${ORIVANE_WARNINGS_AS_ERRORS}>:-Werror>)

# orivane_library(NAME [OBJECT] PUBLIC_LINKS ... PRIVATE_LINKS ... [EXCEPT FILE ...])
# One layer: every source file below its Private folder but those excepted. Its Public folder is visible to whoever links it, its
# Private folder to itself alone.
function(orivane_library NAME)
	cmake_parse_arguments(ARG "OBJECT" "" "EXCEPT;PUBLIC_LINKS;PRIVATE_LINKS" ${ARGN})
	file(GLOB_RECURSE SOURCES CONFIGURE_DEPENDS Private/*.cpp)
	foreach(FILE ${ARG_EXCEPT})
		list(REMOVE_ITEM SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/${FILE})
	endforeach()
	if(ARG_OBJECT)
		add_library(${NAME} OBJECT ${SOURCES})
	else()
		add_library(${NAME} STATIC ${SOURCES})
	endif()
	target_include_directories(${NAME}
		PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/Public
		PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/Private)
	target_link_libraries(${NAME} PUBLIC ${ARG_PUBLIC_LINKS} PRIVATE ${ARG_PRIVATE_LINKS} $<BUILD_INTERFACE:orivane_warnings>)
endfunction()

# orivane_test(NAME LINKS ... [LABELS ...] [MORE_SOURCES ...])
# One test program of every source file below the folder; ctest runs it as one test per case.
function(orivane_test NAME)
	cmake_parse_arguments(ARG "" "" "MORE_SOURCES;LINKS;LABELS" ${ARGN})
	file(GLOB_RECURSE SOURCES CONFIGURE_DEPENDS *.cpp)
	add_executable(${NAME} ${SOURCES} ${ARG_MORE_SOURCES})
	target_include_directories(${NAME} PRIVATE ${PROJECT_SOURCE_DIR}/Tests ${CMAKE_CURRENT_SOURCE_DIR})
	target_link_libraries(${NAME} PRIVATE ${ARG_LINKS} orivane_test_support orivane_warnings GTest::gtest_main)
	gtest_discover_tests(${NAME} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS "${ARG_LABELS}" TIMEOUT 300)
endfunction()
