# wx::base: wxBase alone (wide text, directories, shared libraries), which needs no display.
# Used by this build and installed beside TavoConfig.cmake for those who link the library. CMake's own module makes no
# target and leaves its answer in wxWidgets_* variables: the function keeps them from a caller who looks for wx himself.
function(tavo_find_wx_base)
    if(TARGET wx::base)
        return()
    endif()
    find_package(wxWidgets 3.2 QUIET COMPONENTS base)
    if(NOT wxWidgets_FOUND)
        return()
    endif()
    add_library(wx::base INTERFACE IMPORTED GLOBAL)
    target_include_directories(wx::base SYSTEM INTERFACE ${wxWidgets_INCLUDE_DIRS})
    target_compile_definitions(wx::base INTERFACE ${wxWidgets_DEFINITIONS})
    target_compile_options(wx::base INTERFACE ${wxWidgets_CXX_FLAGS})
    target_link_libraries(wx::base INTERFACE ${wxWidgets_LIBRARIES})
endfunction()
tavo_find_wx_base()
