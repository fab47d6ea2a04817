# Plays the demo's note tour and checks that it exits 0 having written every picture the README
# links, each one showing something the one before did not; and that the tour refuses to run
# without the other members who join the note.
set(pictures
    01-more-panel 02-new-note 03-card 04-others-joined 05-editor-open
    06-edited-sent 07-deadline-picker 08-deadline-set 09-after-deadline)

file(REMOVE_RECURSE "${OUT}")
execute_process(COMMAND "${DEMO}" --language en --tour "${OUT}" RESULT_VARIABLE result TIMEOUT 20)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "the tour ended with ${result}")
endif()
set(previous "")
foreach(name IN LISTS pictures)
    set(picture "${OUT}/${name}.png")
    if(NOT EXISTS "${picture}")
        message(FATAL_ERROR "the tour wrote no ${picture}")
    endif()
    file(SIZE "${picture}" size)
    if(size LESS 1000)
        message(FATAL_ERROR "${picture} is only ${size} bytes")
    endif()
    file(SHA256 "${picture}" hash)
    if(hash STREQUAL previous)
        message(FATAL_ERROR "${picture} shows the same screen as the step before")
    endif()
    set(previous "${hash}")
endforeach()
file(GLOB written "${OUT}/*.png")
list(LENGTH written count)
list(LENGTH pictures expected)
if(NOT count EQUAL expected)
    message(FATAL_ERROR "the tour wrote ${count} pictures, not ${expected}")
endif()

execute_process(COMMAND "${DEMO}" --seed off --tour "${OUT}-alone" RESULT_VARIABLE result
    OUTPUT_QUIET ERROR_QUIET TIMEOUT 20)
if(NOT result EQUAL 2)
    message(FATAL_ERROR "a tour without the other members ended with ${result}, not 2")
endif()
