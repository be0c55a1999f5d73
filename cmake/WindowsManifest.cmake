# scourmill_windows_manifest(TARGET): embeds packaging/windows/scourmill.manifest (long paths,
# supported versions, no elevation) in a Windows program; nothing elsewhere. MSVC's linker merges
# a .manifest source with its own; with the GNU tools it goes in as a resource.
if(WIN32 AND NOT MSVC)
    enable_language(RC)
endif()

function(scourmill_windows_manifest target)
    if(NOT WIN32)
        return()
    endif()
    if(MSVC)
        target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/packaging/windows/scourmill.manifest)
    else()
        target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/packaging/windows/manifest.rc)
    endif()
endfunction()
