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

# orivane_library(NAME SOURCES ... PUBLIC_LINKS ... PRIVATE_LINKS ...)
# One layer. Its Public folder is visible to whoever links it, its Private folder to itself alone.
function(orivane_library NAME)
	cmake_parse_arguments(ARG "OBJECT" "" "SOURCES;PUBLIC_LINKS;PRIVATE_LINKS" ${ARGN})
	if(ARG_OBJECT)
		add_library(${NAME} OBJECT ${ARG_SOURCES})
	else()
		add_library(${NAME} STATIC ${ARG_SOURCES})
	endif()
	target_include_directories(${NAME}
		PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/Public
		PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/Private)
	target_link_libraries(${NAME} PUBLIC ${ARG_PUBLIC_LINKS} PRIVATE ${ARG_PRIVATE_LINKS} $<BUILD_INTERFACE:orivane_warnings>)
endfunction()

# orivane_test(NAME SOURCES ... LINKS ... [LABELS ...])
# One test program; ctest runs it as one test per case.
function(orivane_test NAME)
	cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;LABELS" ${ARGN})
	add_executable(${NAME} ${ARG_SOURCES})
	target_include_directories(${NAME} PRIVATE ${PROJECT_SOURCE_DIR}/Tests ${CMAKE_CURRENT_SOURCE_DIR})
	target_link_libraries(${NAME} PRIVATE ${ARG_LINKS} orivane_test_support orivane_warnings GTest::gtest_main)
	gtest_discover_tests(${NAME} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS "${ARG_LABELS}" TIMEOUT 300)
endfunction()
