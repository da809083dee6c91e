# Installs the build into a temporary DESTDIR and checks that every file a desktop expects is at its
# standard place and passes its validator. Run by CTest: cmake -DBUILD=… -DSTAGE=… -P this file.
file(REMOVE_RECURSE "${STAGE}")
execute_process(COMMAND ${CMAKE_COMMAND} -E env DESTDIR=${STAGE} ${CMAKE_COMMAND} --install ${BUILD} --prefix /usr
                RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE err)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "cmake --install failed: ${err}")
endif()

set(root "${STAGE}/usr")
set(expected
    bin/quarle
    share/applications/org.quarle.Quarle.desktop
    share/metainfo/org.quarle.Quarle.metainfo.xml
    share/icons/hicolor/scalable/apps/quarle.svg
    share/man/man1/quarle.1.gz
    share/bash-completion/completions/quarle
    share/doc/quarle/copyright)
foreach(size 16 32 48 64 128 256)
    list(APPEND expected share/icons/hicolor/${size}x${size}/apps/quarle.png)
endforeach()
set(missing "")
foreach(f IN LISTS expected)
    if(NOT EXISTS "${root}/${f}")
        list(APPEND missing "${f}")
    endif()
endforeach()
if(NOT IS_DIRECTORY "${STAGE}/usr" OR missing)
    message(FATAL_ERROR "missing from the installed tree: ${missing}")
endif()

# The validators, where they are installed (tools/packages lists them).
foreach(check
        "desktop-file-validate;${root}/share/applications/org.quarle.Quarle.desktop"
        "appstreamcli;validate;--no-net;${root}/share/metainfo/org.quarle.Quarle.metainfo.xml")
    list(GET check 0 tool)
    find_program(found ${tool})
    if(found)
        execute_process(COMMAND ${check} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE out)
        if(NOT status EQUAL 0)
            message(FATAL_ERROR "${tool} rejects the installed file:\n${out}")
        endif()
    else()
        message(STATUS "${tool} is not installed: not validated")
    endif()
    unset(found CACHE)
    unset(found)
endforeach()
file(REMOVE_RECURSE "${STAGE}")
